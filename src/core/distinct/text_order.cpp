#include "core/distinct/text_order.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace quorin::core {

namespace {

struct Entry {
    std::uint64_t key;
    std::uint32_t number;
    std::uint32_t bucket;
};

std::size_t common_start(const std::vector<DistinctText>& texts) noexcept {
    const TextView first = texts.front().text;
    std::size_t common = first.length;
    for (const DistinctText& other : texts) {
        if (common == 0) break;
        common = std::min(common, other.text.length);
        std::size_t i = 0;
        while (i < common && character(other.text, i) == character(first, i)) ++i;
        common = i;
    }
    return common;
}

bool fits_bytes(const DistinctText& entry) noexcept {
    const TextView text = entry.text;
    if (text.width == 1) return true;
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < text.length; ++i) all |= character(text, i);
    return all <= 0xffU;
}

std::uint64_t first_highest(std::uint64_t bytes) noexcept {
    return std::endian::native == std::endian::little ? __builtin_bswap64(bytes) : bytes;
}

// The characters from `start` on as one number that sorts as they do: eight of a byte each or two of four bytes. A text
// that ends is filled up with zeros, so equal keys settle nothing.
std::uint64_t leading_characters(TextView text, std::size_t start, bool narrow) noexcept {
    if (text.compact && narrow) {
        const auto* characters = static_cast<const std::uint8_t*>(text.characters) + start;
        const std::size_t left = text.length - start;
        if (left >= 8) return first_highest(eight_bytes(characters));
        if (left == 0) return 0;
        return first_highest(eight_bytes(characters + left - 8) >> (64 - 8 * left));
    }
    const std::size_t characters = narrow ? 8 : 2;
    const unsigned bits = narrow ? 8 : 32;
    std::uint64_t key = 0;
    for (std::size_t i = start; i < start + characters; ++i) {
        key = key << bits | (i < text.length ? character(text, i) : 0U);
    }
    return key;
}

unsigned byte_of(std::uint64_t key, std::size_t place) noexcept {
    return static_cast<unsigned>(key >> (8 * (7 - place))) & 0xffU;
}

// Buckets in the order of the keys: the first bytes as digits of a number, each in the scale of the values that occur
// in its place. So the 26 letters of a place take 26 buckets and not 256. Gives how many buckets there are.
std::size_t assign_buckets(std::vector<Entry>& keyed) noexcept {
    constexpr std::size_t values = 256;
    // So many that most hold one key or none, and few enough that one more place does not exceed 32 bits.
    const std::size_t wanted = std::min(4 * keyed.size(), std::size_t{1} << 24U);
    std::size_t buckets = 1;
    for (std::size_t place = 0; place < 8 && buckets < wanted; ++place) {
        std::array<std::uint32_t, values> rank{};
        for (const Entry& entry : keyed) rank[byte_of(entry.key, place)] = 1;
        std::uint32_t occur = 0;
        for (std::uint32_t& value : rank) occur += std::exchange(value, value == 0 ? 0 : occur);
        if (occur == 1) continue;
        for (Entry& entry : keyed) entry.bucket = entry.bucket * occur + rank[byte_of(entry.key, place)];
        buckets *= occur;
    }
    return buckets;
}

// Stable, by some bits of the bucket.
void distribute(const std::vector<Entry>& from, std::vector<Entry>& to, unsigned shift, std::size_t digits) {
    std::vector<std::uint32_t> places(digits);
    const auto digit = [&](const Entry& entry) { return (entry.bucket >> shift) & (digits - 1); };
    for (const Entry& entry : from) ++places[digit(entry)];
    std::uint32_t before = 0;
    for (std::uint32_t& place : places) before += std::exchange(place, before);
    for (const Entry& entry : from) to[places[digit(entry)]++] = entry;
}

void sort_by_bucket(std::vector<Entry>& keyed, std::size_t buckets) {
    constexpr unsigned bits = 11;
    std::vector<Entry> other(keyed.size());
    for (unsigned shift = 0; shift < static_cast<unsigned>(std::bit_width(buckets - 1)); shift += bits) {
        distribute(keyed, other, shift, std::size_t{1} << bits);
        keyed.swap(other);
    }
}

}  // namespace

std::vector<std::uint32_t> ascending(const std::vector<DistinctText>& texts) {
    if (texts.empty()) return {};
    const std::size_t start = common_start(texts);
    const bool narrow = std::all_of(texts.begin(), texts.end(), fits_bytes);
    std::vector<Entry> keyed;
    keyed.reserve(texts.size());
    for (std::uint32_t number = 0; number < texts.size(); ++number) {
        keyed.push_back({leading_characters(texts[number].text, start, narrow), number, 0});
    }
    // Below this number a sort by comparing has few steps.
    constexpr std::size_t few = 512;
    if (keyed.size() > few) sort_by_bucket(keyed, assign_buckets(keyed));
    const auto less = [&](const Entry& left, const Entry& right) {
        if (left.key != right.key) return left.key < right.key;
        return compare(texts[left.number].text, texts[right.number].text) < 0;
    };
    for (auto begin = keyed.begin(); begin != keyed.end();) {
        auto end = begin + 1;
        while (end != keyed.end() && end->bucket == begin->bucket) ++end;
        if (end - begin > 1) std::sort(begin, end, less);
        begin = end;
    }
    std::vector<std::uint32_t> order;
    order.reserve(keyed.size());
    for (const Entry& entry : keyed) order.push_back(entry.number);
    return order;
}

}  // namespace quorin::core
