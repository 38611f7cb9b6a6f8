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

// The units that a key consists of. Keys must sort as the texts do.
enum class KeyUnits {
    bytes,       // all units fit in a byte
    characters,  // units of up to four bytes
    none         // the texts have units that cannot be compared: all keys are equal
};

bool has_bytes_only(TextView text) noexcept {
    if (text.width == 1) return true;
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < text.size; ++i) all |= unit(text, i);
    return all <= 0xffU;
}

KeyUnits key_units(const std::vector<DistinctText>& texts) noexcept {
    const auto bit = [](Encoding encoding) { return 1U << static_cast<unsigned>(encoding); };
    const unsigned mixed = bit(Encoding::utf8) | bit(Encoding::fixed_width);
    bool bytes = true;
    unsigned encodings = 0;
    for (const DistinctText& entry : texts) {
        bytes = bytes && has_bytes_only(entry.text);
        encodings |= bit(entry.text.encoding);
    }
    if ((encodings & mixed) == mixed) return KeyUnits::none;
    return bytes ? KeyUnits::bytes : KeyUnits::characters;
}

// The length of the common prefix of all texts, in units.
std::size_t common_start(const std::vector<DistinctText>& texts) noexcept {
    const TextView first = texts.front().text;
    std::size_t common = first.size;
    for (const DistinctText& other : texts) {
        if (common == 0) break;
        common = std::min(common, other.text.size);
        std::size_t i = 0;
        while (i < common && unit(other.text, i) == unit(first, i)) ++i;
        common = i;
    }
    return common;
}

std::uint64_t first_highest(std::uint64_t bytes) noexcept {
    return std::endian::native == std::endian::little ? __builtin_bswap64(bytes) : bytes;
}

// Packs the units from `start` on, eight bytes or two characters, into a number that sorts as they do. Missing units
// are 0, so texts with equal keys may differ.
std::uint64_t leading_units(TextView text, std::size_t start, KeyUnits units) noexcept {
    if (units == KeyUnits::none) return 0;
    const bool bytes = units == KeyUnits::bytes;
    if (text.is_padded() && bytes) {
        const std::uint8_t* from = text.bytes() + start;
        const std::size_t left = text.size - start;
        if (left >= 8) return first_highest(eight_bytes(from));
        if (left == 0) return 0;
        return first_highest(eight_bytes(from + left - 8) >> (64 - 8 * left));
    }
    const std::size_t most = bytes ? 8 : 2;
    const unsigned bits = bytes ? 8 : 32;
    std::uint64_t key = 0;
    for (std::size_t i = start; i < start + most; ++i) key = key << bits | (i < text.size ? unit(text, i) : 0U);
    return key;
}

unsigned byte_of(std::uint64_t key, std::size_t place) noexcept {
    return static_cast<unsigned>(key >> (8 * (7 - place))) & 0xffU;
}

// Assigns buckets in the order of the keys and returns their number. The bucket is a mixed-radix number whose digits
// are the leading bytes of the key, ranked among the byte values that occur in that place: a place with 26 letters
// takes 26 buckets, not 256.
std::size_t assign_buckets(std::vector<Entry>& keyed) noexcept {
    constexpr std::size_t values = 256;
    // Enough buckets for one key or none in most of them; 2^24 times one more place of 2^8 values fits in 32 bits.
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

// One pass of a stable radix sort by bucket.
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
    const KeyUnits units = key_units(texts);
    const std::size_t start = units == KeyUnits::none ? 0 : common_start(texts);
    std::vector<Entry> keyed(texts.size());
    for (std::uint32_t number = 0; number < texts.size(); ++number) {
        keyed[number] = {leading_units(texts[number].text, start, units), number, 0};
    }
    // For fewer texts std::sort() alone is faster.
    constexpr std::size_t few = 512;
    if (keyed.size() > few) sort_by_bucket(keyed, assign_buckets(keyed));
    const auto less = [&](const Entry& left, const Entry& right) {
        if (left.key != right.key) return left.key < right.key;
        const TextView a = texts[left.number].text;
        const TextView b = texts[right.number].text;
        return (units == KeyUnits::none ? compare(a, b) : compare_units(a, b)) < 0;
    };
    for (auto begin = keyed.begin(); begin != keyed.end();) {
        auto end = begin + 1;
        while (end != keyed.end() && end->bucket == begin->bucket) ++end;
        if (end - begin > 1) std::sort(begin, end, less);
        begin = end;
    }
    std::vector<std::uint32_t> order(keyed.size());
    std::transform(keyed.begin(), keyed.end(), order.begin(), [](const Entry& entry) { return entry.number; });
    return order;
}

}  // namespace quorin::core
