// Views of texts in memory: characters, equality, order.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quorin::core {

enum class Encoding : std::uint8_t {
    fixed_width,   // each character takes TextView::width bytes
    padded_ascii,  // ASCII; the 16 bytes before the first character are readable; little-endian machines only
    ascii,
    utf8
};

// A text is a sequence of units: characters of a fixed width, or the bytes of UTF-8.
//
// UTF-8 must be valid, which is_valid_utf8() checks: kernels return unspecified results for other bytes, but do not
// read beyond the text.
struct TextView {
    const void* characters;
    std::size_t size;  // number of units
    int width;         // bytes per unit: 1, 2 or 4
    Encoding encoding = Encoding::fixed_width;

    // With padding, one load reads the last eight characters of any text.
    [[nodiscard]] bool is_padded() const noexcept { return encoding == Encoding::padded_ascii; }
    // May be false for an ASCII text in another encoding.
    [[nodiscard]] bool is_ascii() const noexcept { return is_padded() || encoding == Encoding::ascii; }
    [[nodiscard]] bool is_utf8() const noexcept { return encoding == Encoding::utf8; }
    [[nodiscard]] const std::uint8_t* bytes() const noexcept { return static_cast<const std::uint8_t*>(characters); }
};

// An ASCII text of one to eight characters. The last one is in the highest byte; bytes below the first are arbitrary.
struct ShortText {
    std::uint64_t bytes;
    std::size_t length;
    // The first character in the lowest byte, zeros above the last.
    // NOLINTNEXTLINE(clang-analyzer-core.BitwiseShift): length > 0
    [[nodiscard]] std::uint64_t value() const noexcept { return bytes >> (64 - 8 * length); }
};

inline std::uint32_t unit(TextView text, std::size_t i) noexcept {
    switch (text.width) {
        case 1:
            return static_cast<const std::uint8_t*>(text.characters)[i];
        case 2:
            return static_cast<const std::uint16_t*>(text.characters)[i];
        default:
            return static_cast<const std::uint32_t*>(text.characters)[i];
    }
}

// A character and its number of units.
struct Decoded {
    std::uint32_t character;
    std::size_t size;
};

constexpr std::size_t longest_in_utf8 = 4;

// The first character of `left` bytes of UTF-8, left != 0.
inline Decoded decode_utf8(const std::uint8_t* at, std::size_t left) noexcept {
    const std::uint32_t lead = *at;
    if (lead < 0x80) return {lead, 1};
    const std::size_t wanted = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    const std::size_t size = wanted < left ? wanted : left;
    std::uint32_t character = lead & (0x7fU >> wanted);
    for (std::size_t i = 1; i < size; ++i) character = character << 6U | (at[i] & 0x3fU);
    return {character, size};
}

// The character that starts at unit `i`.
inline Decoded decode(TextView text, std::size_t i) noexcept {
    if (text.is_utf8()) return decode_utf8(text.bytes() + i, text.size - i);
    return {unit(text, i), 1};
}

// Requires a text that is not empty.
inline std::uint32_t first_character(TextView text) noexcept {
    return decode(text, 0).character;
}

inline bool is_one_character(TextView text) noexcept {
    if (text.size <= 1 || !text.is_utf8()) return text.size == 1;
    return text.size <= longest_in_utf8 && decode(text, 0).size == text.size;
}

// The number of characters.
std::size_t length_of(TextView text) noexcept;

// Whether the bytes are UTF-8 as Unicode defines it: no surrogates, no overlong forms, nothing above U+10FFFF.
bool is_valid_utf8(const void* bytes, std::size_t size) noexcept;

inline std::uint64_t eight_bytes(const void* at) noexcept {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, at, sizeof bytes);
    return bytes;
}

constexpr std::uint64_t every_byte = 0x0101010101010101;
constexpr std::uint64_t beyond_ascii = 0x80 * every_byte;

// ShortText::value() of a padded text of one to eight characters.
inline std::uint64_t short_text(TextView text) noexcept {
    return eight_bytes(text.bytes() + text.size - 8) >> (64 - 8 * text.size);
}

// A key that sorts as the text does. Texts with equal keys can differ only in NUL characters at their end.
inline std::uint64_t ascending_key(ShortText text) noexcept {
    return __builtin_bswap64(text.value());
}

// Masks of the bytes of a padded text of up to sixteen characters, in the last eight bytes and in the eight before
// them. A table, because compilers select a shift with a branch, which is often mispredicted.
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

// compare() if a text is UTF-8. This and the next function take the members of the texts: gcc would keep a TextView
// that is passed whole in memory, on the common paths too.
int compare_utf8(const void* left, std::size_t left_size, int left_width, Encoding left_encoding, const void* right,
                 std::size_t right_size, int right_width, Encoding right_encoding) noexcept;

// same() unless both texts are padded. Not inlined, because it would take registers from the paths of padded texts.
bool same_unpadded(const void* left, std::size_t left_size, int left_width, Encoding left_encoding, const void* right,
                   std::size_t right_size, int right_width, Encoding right_encoding) noexcept;

// Compares by units: returns a number < 0, 0 or > 0. This is the order by code point if both texts are UTF-8 or neither
// is.
inline int compare_units(TextView left, TextView right) noexcept {
    const std::size_t common = left.size < right.size ? left.size : right.size;
    if (common != 0) {
        const std::uint32_t a = unit(left, 0);
        const std::uint32_t b = unit(right, 0);
        if (a != b) return a < b ? -1 : 1;
    }
    if (left.width == 1 && right.width == 1) {
        const int order = common == 0 ? 0 : std::memcmp(left.characters, right.characters, common);
        if (order != 0) return order;
    } else {
        for (std::size_t i = 0; i < common; ++i) {
            const std::uint32_t a = unit(left, i);
            const std::uint32_t b = unit(right, i);
            if (a != b) return a < b ? -1 : 1;
        }
    }
    return left.size == right.size ? 0 : left.size < right.size ? -1 : 1;
}

// Compares by code point, as the interpreter does: returns a number < 0, 0 or > 0.
inline int compare(TextView left, TextView right) noexcept {
    if (left.is_utf8() || right.is_utf8()) {
        return compare_utf8(left.characters, left.size, left.width, left.encoding, right.characters, right.size,
                            right.width, right.encoding);
    }
    return compare_units(left, right);
}

// Whether two padded texts of the same size are equal.
inline bool same_padded(const void* left, const void* right, std::size_t size) noexcept {
    const auto* a = static_cast<const std::uint8_t*>(left);
    const auto* b = static_cast<const std::uint8_t*>(right);
    if (size > 16) return std::memcmp(a, b, size) == 0;
    const std::uint64_t last = eight_bytes(a + size - 8) ^ eight_bytes(b + size - 8);
    const std::uint64_t before = eight_bytes(a + size - 16) ^ eight_bytes(b + size - 16);
    return ((last & end_masks[size].last) | (before & end_masks[size].before)) == 0;
}

// Whether texts in the same encoding are equal. ASCII counts as the same encoding as one-byte characters and as UTF-8.
inline bool same_units(const TextView& left, const TextView& right) noexcept {
    if (left.size != right.size) return false;
    if (left.is_padded() && right.is_padded()) return same_padded(left.characters, right.characters, left.size);
    // An empty text may have a null pointer, which memcmp() does not allow.
    const std::size_t bytes = left.size * static_cast<std::size_t>(left.width);
    return left.width == right.width && (bytes == 0 || std::memcmp(left.characters, right.characters, bytes) == 0);
}

inline bool same(TextView left, TextView right) noexcept {
    if (left.is_padded() && right.is_padded()) {
        return left.size == right.size && same_padded(left.characters, right.characters, left.size);
    }
    return same_unpadded(left.characters, left.size, left.width, left.encoding, right.characters, right.size,
                         right.width, right.encoding);
}

}  // namespace quorin::core
