// How kernels see the cells of a column, wherever they lie.
//
// A kernel over texts is a template over a `Cells` type that offers
//     std::size_t size() const
//     Cell read(std::size_t row, TextView& text) const   what the cell is; `text` is set for a text
//     void prefetch(std::size_t row) const               a hint that the row will be read soon
//     bool longer_than(std::size_t row, std::size_t length) const
//         whether it is a text of more characters, where that is quick to see: false tells nothing
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kernels/number_text.hpp"

namespace quorin::kernels {

enum class Cell {
    text,
    null,  // no value: None, NaN
    other  // of no kind that the kernels know
};

// Far enough that memory answers in time, near enough that the cache still holds what it answered.
constexpr std::size_t prefetch_distance = 64;

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
