#include "core/text/text_view.hpp"

namespace quorin::core {

std::size_t length_of(TextView text) noexcept {
    if (!text.is_utf8()) return text.size;
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size; ++length) i += decode(text, i).size;
    return length;
}

namespace {

// Whether comparing units orders the texts by code point, as it does for the bytes of two UTF-8 texts.
bool have_comparable_units(TextView left, TextView right) noexcept {
    return left.is_utf8() == right.is_utf8() || left.is_ascii() || right.is_ascii();
}

int compare_decoded(TextView left, TextView right) noexcept {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < left.size && j < right.size) {
        const Decoded a = decode(left, i);
        const Decoded b = decode(right, j);
        if (a.character != b.character) return a.character < b.character ? -1 : 1;
        i += a.size;
        j += b.size;
    }
    return static_cast<int>(i < left.size) - static_cast<int>(j < right.size);
}

}  // namespace

int compare_utf8(const void* left, std::size_t left_size, int left_width, Encoding left_encoding, const void* right,
                 std::size_t right_size, int right_width, Encoding right_encoding) noexcept {
    const TextView a{left, left_size, left_width, left_encoding};
    const TextView b{right, right_size, right_width, right_encoding};
    return have_comparable_units(a, b) ? compare_units(a, b) : compare_decoded(a, b);
}

bool same_unpadded(const void* left, std::size_t left_size, int left_width, Encoding left_encoding, const void* right,
                   std::size_t right_size, int right_width, Encoding right_encoding) noexcept {
    const TextView a{left, left_size, left_width, left_encoding};
    const TextView b{right, right_size, right_width, right_encoding};
    if (!have_comparable_units(a, b)) return compare_decoded(a, b) == 0;
    if (left_width == right_width) return same_units(a, b);
    return left_size == right_size && compare_decoded(a, b) == 0;
}

namespace {

// The size of the first character of `left` bytes, left != 0; 0 if it is not valid.
std::size_t valid_character(const std::uint8_t* at, std::size_t left) noexcept {
    const std::uint8_t lead = *at;
    if (lead < 0x80) return 1;
    const std::size_t size = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    if (lead < 0xc2 || lead > 0xf4 || size > left) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if ((at[i] & 0xc0U) != 0x80) return 0;
    }
    // The second byte excludes overlong forms, surrogates and code points above U+10FFFF.
    const std::uint8_t second = at[1];
    const bool allowed = lead == 0xe0   ? second >= 0xa0
                         : lead == 0xed ? second < 0xa0
                         : lead == 0xf0 ? second >= 0x90
                         : lead == 0xf4 ? second < 0x90
                                        : true;
    return allowed ? size : 0;
}

}  // namespace

bool is_valid_utf8(const void* bytes, std::size_t size) noexcept {
    const auto* at = static_cast<const std::uint8_t*>(bytes);
    while (size != 0) {
        if (size >= 8 && (eight_bytes(at) & beyond_ascii) == 0) {
            at += 8;
            size -= 8;
            continue;
        }
        const std::size_t one = valid_character(at, size);
        if (one == 0) return false;
        at += one;
        size -= one;
    }
    return true;
}

}  // namespace quorin::core
