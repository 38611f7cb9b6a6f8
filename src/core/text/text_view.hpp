// Texts in memory: their characters, their equality, their order.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quorin::core {

// Characters side by side, `width` bytes (1, 2 or 4) each.
struct TextView {
    const void* characters;
    std::size_t length;
    int width;
    // Of one byte each and ASCII alone, with sixteen bytes before the first that may be read as well, whatever they
    // hold; on little-endian machines only. So the last eight characters of a text, however short, are one read away.
    bool compact = false;
};

// An ASCII text of one to eight characters: the last of them in the highest byte, anything below the first.
struct ShortText {
    std::uint64_t bytes;
    std::size_t length;
    // The first character lowest, zeros above the last.
    [[nodiscard]] std::uint64_t value() const noexcept { return bytes >> (64 - 8 * length); }
};

inline std::uint32_t character(TextView text, std::size_t i) noexcept {
    switch (text.width) {
        case 1:
            return static_cast<const std::uint8_t*>(text.characters)[i];
        case 2:
            return static_cast<const std::uint16_t*>(text.characters)[i];
        default:
            return static_cast<const std::uint32_t*>(text.characters)[i];
    }
}

inline std::uint64_t eight_bytes(const void* at) noexcept {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, at, sizeof bytes);
    return bytes;
}

// The characters of a compact text of one to eight, the first one lowest, and zeros above them.
inline std::uint64_t short_text(TextView text) noexcept {
    const auto* characters = static_cast<const std::uint8_t*>(text.characters);
    return eight_bytes(characters + text.length - 8) >> (64 - 8 * text.length);
}

// Sorts as the text does, except that texts of the same key may differ in zeros at their end.
inline std::uint64_t ascending_key(ShortText text) noexcept {
    return __builtin_bswap64(text.value());
}

// By code point, as the interpreter orders texts: below 0, 0 or above 0.
inline int compare(TextView left, TextView right) noexcept {
    const std::size_t common = left.length < right.length ? left.length : right.length;
    if (common != 0) {
        const std::uint32_t a = character(left, 0);
        const std::uint32_t b = character(right, 0);
        if (a != b) return a < b ? -1 : 1;
    }
    if (left.width == 1 && right.width == 1) {
        const int order = common == 0 ? 0 : std::memcmp(left.characters, right.characters, common);
        if (order != 0) return order;
    } else {
        for (std::size_t i = 0; i < common; ++i) {
            const std::uint32_t a = character(left, i);
            const std::uint32_t b = character(right, i);
            if (a != b) return a < b ? -1 : 1;
        }
    }
    return left.length == right.length ? 0 : left.length < right.length ? -1 : 1;
}

// The bytes of a compact text of up to sixteen characters among the eight before its end and the eight before those. A
// look into a table, because compilers make jumps of a choice between shifts, and the lengths of texts are
// unpredictable.
struct EndMasks {
    std::uint64_t last;
    std::uint64_t before;
};
constexpr std::array<EndMasks, 17> end_masks = [] {
    std::array<EndMasks, 17> masks{};
    const auto highest = [](std::size_t bytes) {
        return bytes == 0 ? 0 : bytes < 8 ? ~std::uint64_t{0} << (64 - 8 * bytes) : ~std::uint64_t{0};
    };
    for (std::size_t size = 0; size < masks.size(); ++size)
        masks[size] = {highest(size), highest(size < 8 ? 0 : size - 8)};
    return masks;
}();

// Compact texts of the same length.
inline bool same_compact(const void* left, const void* right, std::size_t length) noexcept {
    const auto* a = static_cast<const std::uint8_t*>(left);
    const auto* b = static_cast<const std::uint8_t*>(right);
    if (length > 16) return std::memcmp(a, b, length) == 0;
    const std::uint64_t last = eight_bytes(a + length - 8) ^ eight_bytes(b + length - 8);
    const std::uint64_t before = eight_bytes(a + length - 16) ^ eight_bytes(b + length - 16);
    return ((last & end_masks[length].last) | (before & end_masks[length].before)) == 0;
}

inline bool same(TextView left, TextView right) noexcept {
    if (left.length != right.length) return false;
    if (left.compact && right.compact) return same_compact(left.characters, right.characters, left.length);
    if (left.width == right.width) {
        // No characters need not have an address.
        const std::size_t size = left.length * static_cast<std::size_t>(left.width);
        return size == 0 || std::memcmp(left.characters, right.characters, size) == 0;
    }
    return compare(left, right) == 0;
}

}  // namespace quorin::core
