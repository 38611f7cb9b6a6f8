#include "kernels/text_order.hpp"

#include <algorithm>
#include <cstring>

#include "kernels/key_order.hpp"

namespace quorin::kernels {

namespace {

__extension__ using Product = unsigned __int128;

std::uint64_t mixed(std::uint64_t value) noexcept {
    constexpr std::uint64_t odd = 0x9e3779b97f4a7c15ULL;
    const auto product = static_cast<Product>(value) * odd;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

std::uint64_t load(const unsigned char* bytes, std::size_t size) noexcept {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes, size);
    return value;
}

std::size_t common_start(const std::vector<TextView>& texts) noexcept {
    std::size_t common = texts.front().length;
    for (const TextView& text : texts) {
        common = std::min(common, text.length);
        std::size_t i = 0;
        while (i < common && character(text, i) == character(texts.front(), i)) ++i;
        common = i;
    }
    return common;
}

bool fits_bytes(const TextView& text) noexcept {
    if (text.width == 1) return true;
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < text.length; ++i) all |= character(text, i);
    return all <= 0xffU;
}

std::uint64_t key_of_bytes(const unsigned char* bytes, std::size_t length, std::size_t start) noexcept {
    if (start >= length) return 0;
    const std::size_t left = length - start;
    std::uint64_t key = 0;
    if (left >= 8) {
        key = load(bytes + start, 8);
    } else if (length >= 8) {
        key = load(bytes + length - 8, 8) >> (64 - 8 * left);
    } else {
        for (std::size_t i = 0; i < left; ++i) key |= static_cast<std::uint64_t>(bytes[start + i]) << (8 * i);
    }
    return __builtin_bswap64(key);
}

// The characters from `start` on as one number that sorts as they do: eight of a byte each or two of four bytes. A text
// that ends is filled up with zeros, so equal keys settle nothing.
std::uint64_t key_of(TextView text, std::size_t start, bool narrow) noexcept {
    if (narrow && text.width == 1) {
        return key_of_bytes(static_cast<const unsigned char*>(text.characters), text.length, start);
    }
    const std::size_t characters = narrow ? 8 : 2;
    const unsigned bits = narrow ? 8 : 32;
    std::uint64_t key = 0;
    for (std::size_t i = start; i < start + characters; ++i) {
        key = key << bits | (i < text.length ? character(text, i) : 0U);
    }
    return key;
}

}  // namespace

std::uint64_t hash_text(TextView text) noexcept {
    const auto* bytes = static_cast<const unsigned char*>(text.characters);
    const std::size_t size = text.length * static_cast<std::size_t>(text.width);
    std::uint64_t hash = mixed(size + 1);
    if (size > 8) {
        // The last eight bytes may overlap those before them.
        const auto* const last = bytes + size - 8;
        for (; bytes < last; bytes += 8) hash = mixed(hash ^ eight_bytes(bytes));
        return mixed(hash ^ eight_bytes(last));
    }
    if (size == 0) return hash;
    if (size == 8) return mixed(hash ^ eight_bytes(bytes));
    return mixed(hash ^ (text.compact ? short_text(text) : load(bytes, size)));
}

void TextTable::grow() {
    constexpr std::size_t factor = 4;
    std::vector<Slot> old(slots_.size() * factor, empty);
    old.swap(slots_);
    for (const Slot& entry : old) {
        if (entry.number == none) continue;
        const std::uint64_t hash = static_cast<std::uint64_t>(entry.hash) << 32U | low_bits_[entry.number];
        std::size_t slot = hash & (slots_.size() - 1);
        while (slots_[slot].number != none) slot = (slot + 1) & (slots_.size() - 1);
        slots_[slot] = entry;
    }
}

std::vector<std::uint32_t> ascending(const std::vector<TextView>& texts) {
    if (texts.empty()) return {};
    const std::size_t start = common_start(texts);
    const bool narrow = std::all_of(texts.begin(), texts.end(), fits_bytes);
    std::vector<Keyed> keyed;
    keyed.reserve(texts.size());
    for (std::uint32_t number = 0; number < texts.size(); ++number) {
        keyed.push_back({key_of(texts[number], start, narrow), number});
    }
    sort_by_key(keyed);
    for (auto from = keyed.begin(); from != keyed.end();) {
        auto to = from + 1;
        while (to != keyed.end() && to->key == from->key) ++to;
        if (to - from > 1) {
            std::sort(from, to, [&](const Keyed& left, const Keyed& right) {
                return compare(texts[left.number], texts[right.number]) < 0;
            });
        }
        from = to;
    }
    std::vector<std::uint32_t> order;
    order.reserve(keyed.size());
    for (const Keyed& entry : keyed) order.push_back(entry.number);
    return order;
}

}  // namespace quorin::kernels
