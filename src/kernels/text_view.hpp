// Texts in memory: their characters, their equality, their order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quorin::kernels {

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

inline bool same(TextView left, TextView right) noexcept {
    if (left.length != right.length) return false;
    if (left.compact && right.compact) {
        const std::size_t length = left.length;
        if (length <= 8) return length == 0 || short_text(left) == short_text(right);
        const auto* a = static_cast<const std::uint8_t*>(left.characters);
        const auto* b = static_cast<const std::uint8_t*>(right.characters);
        // Both ends first: for up to sixteen characters that is all.
        const std::uint64_t ends =
            (eight_bytes(a) ^ eight_bytes(b)) | (eight_bytes(a + length - 8) ^ eight_bytes(b + length - 8));
        return ends == 0 && (length <= 16 || std::memcmp(a + 8, b + 8, length - 16) == 0);
    }
    if (left.width == right.width) {
        return std::memcmp(left.characters, right.characters, left.length * static_cast<std::size_t>(left.width)) == 0;
    }
    return compare(left, right) == 0;
}

}  // namespace quorin::kernels
