// Determines which texts int() and float() accept, and the class of a text in a column.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/text/text_view.hpp"

namespace quorin::core {

enum class NumberText {
    none,     // neither accepts the text
    integer,  // int() and float() accept the text
    real,     // only float() accepts the text
    ask       // only the interpreter can decide: not ASCII, or more digits than every digit limit allows
};

NumberText classify_number(TextView text) noexcept;

// The interpreter's tables of characters beyond ASCII.
struct CharacterTables {
    bool (*is_alphanumeric)(std::uint32_t character);
    // The ASCII character to which int() and float() translate a character: a digit, ' ' for white space, or -1.
    int (*translated)(std::uint32_t character);
};

// isspace() of the C locale. Unlike str.isspace(), int() and float() do not accept the separators \x1c to \x1f.
template <class Character>
bool is_space(Character c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

enum class TextClass { plain, integer, real, unsettled };

// A number text starts with white space, a sign, a dot or a digit. "inf" and "nan" have no dot and are therefore plain.
constexpr std::array<bool, 256> may_start_number = [] {
    std::array<bool, 256> may{};
    for (const char c : std::string_view{"0123456789.-+ \t\n\v\f\r"}) may[static_cast<std::uint8_t>(c)] = true;
    return may;
}();

// For each of eight ASCII characters c: the highest bit of (c ^ '0') + 0x76, which is set unless c is a digit. The sum
// does not overflow into the next byte.
constexpr std::uint64_t bits_of_others(std::uint64_t bytes) noexcept {
    // Bytes before the text are arbitrary; clearing their highest bit prevents an overflow.
    const std::uint64_t less_zero = (bytes ^ '0' * every_byte) & 0x7f * every_byte;
    return (less_zero + 0x76 * every_byte) & beyond_ascii;
}

// The highest bit of each byte of text.value() that is not a digit.
inline std::uint64_t others_of(ShortText text) noexcept {
    return bits_of_others(text.bytes) >> (64 - 8 * text.length);
}

// Classifies digits with an optional sign and an optional dot, and texts that cannot be numbers. Returns `unsettled`
// for any other notation.
inline TextClass classify_short(ShortText text) noexcept {
    std::uint64_t others = others_of(text);
    if (others == 0) return TextClass::integer;
    const std::uint64_t value = text.value();
    const auto first = static_cast<std::uint8_t>(value);
    if (!may_start_number[first]) return TextClass::plain;
    std::size_t digits = text.length;
    if (first == '-' || first == '+') {
        others ^= 0x80U;
        --digits;
        if (others == 0) return digits == 0 ? TextClass::plain : TextClass::integer;
    }
    if ((others & (others - 1)) != 0) return TextClass::unsettled;
    const auto other = static_cast<std::uint8_t>(value >> (static_cast<unsigned>(__builtin_ctzll(others)) - 7U));
    if (other != '.') return TextClass::unsettled;
    return digits == 1 ? TextClass::plain : TextClass::real;
}

// The general case of classify_text(). Takes the members of the text: gcc would keep a TextView that is passed whole in
// memory, on the common paths too.
TextClass classify_uncommon(const void* characters, std::size_t size, int width, Encoding encoding,
                            const CharacterTables& tables) noexcept;

// The same as classify_short() for any padded text.
inline TextClass classify_common(TextView text) noexcept {
    const std::uint8_t* at = text.bytes();
    const std::uint8_t* const end = at + text.size;
    if (text.size == 0) return TextClass::plain;
    if (text.size <= 8) return classify_short({eight_bytes(end - 8), text.size});
    constexpr std::size_t longest = 32;
    if (!may_start_number[*at]) return TextClass::plain;
    if (text.size > longest) return TextClass::unsettled;
    at += static_cast<unsigned>(*at == '-') | static_cast<unsigned>(*at == '+');
    bool dot = false;
    while (at != end) {
        const auto left = static_cast<std::size_t>(end - at);
        const ShortText some{eight_bytes(left < 8 ? end - 8 : at), left < 8 ? left : 8};
        if (const std::uint64_t others = others_of(some); others != 0) {
            if (dot || (others & (others - 1)) != 0) return TextClass::unsettled;
            if (at[static_cast<unsigned>(__builtin_ctzll(others)) / 8] != '.') return TextClass::unsettled;
            dot = true;
        }
        at += some.length;
    }
    return dot ? TextClass::real : TextClass::integer;
}

// Returns `unsettled` if only the interpreter can decide: for more digits than every digit limit allows, and for more
// than 400 characters if one is not ASCII.
inline TextClass classify_text(TextView text, const CharacterTables& tables) noexcept {
    if (text.size == 0) return TextClass::plain;
    if (text.is_padded()) {
        const TextClass common = classify_common(text);
        if (common != TextClass::unsettled) return common;
    }
    return classify_uncommon(text.characters, text.size, text.width, text.encoding, tables);
}

}  // namespace quorin::core
