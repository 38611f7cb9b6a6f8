// Which texts the interpreter's int() and float() accept, and what that makes of them in a column.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/text/text_view.hpp"

namespace quorin::core {

enum class NumberText {
    none,     // neither accepts it
    integer,  // int() and float() accept it
    real,     // float() alone accepts it
    ask       // only the interpreter can say: not ASCII, or more digits than every digit limit allows
};

NumberText classify_number(TextView text) noexcept;

// What only the interpreter knows about characters beyond ASCII.
struct CharacterTables {
    bool (*is_alphanumeric)(std::uint32_t character);
    // The digit's value, ' ' for white space, or -1: as the number parsers translate a character.
    int (*translated)(std::uint32_t character);
};

// What the C locale's isspace() accepts. The separators \x1c to \x1f, white space elsewhere in the interpreter, are
// none for the number parsers.
template <class Character>
bool is_space(Character c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

enum class TextClass { plain, integer, real, unsettled };

// A number text starts with white space, a sign, a dot or a digit; words for infinity and NaN hold no dot and are
// plain.
constexpr std::array<bool, 256> may_start_number = [] {
    std::array<bool, 256> may{};
    for (const char c : std::string_view{"0123456789.-+ \t\n\v\f\r"}) may[static_cast<std::uint8_t>(c)] = true;
    return may;
}();

// Eight ASCII characters looked at together. Of a character c, (c ^ '0') + 0x76 has the highest bit set unless c is a
// digit, and never overflows into its neighbour.
constexpr std::uint64_t every_byte = 0x0101010101010101;
constexpr std::uint64_t bits_of_others(std::uint64_t bytes) noexcept {
    // What lies before a text need not be ASCII, but must not overflow either.
    const std::uint64_t less_zero = (bytes ^ '0' * every_byte) & 0x7f * every_byte;
    return (less_zero + 0x76 * every_byte) & 0x80 * every_byte;
}

// The highest bit of each character that is no digit, the first one lowest.
inline std::uint64_t others_of(ShortText text) noexcept {
    return bits_of_others(text.bytes) >> (64 - 8 * text.length);
}

// What the common notations of numbers settle without the whole grammar: digits with a sign before them and a dot among
// them; `unsettled` for anything else.
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

// A text in its parts: where it is handed on whole, gcc keeps it in memory also where nothing is handed on.
TextClass classify_uncommon(const void* characters, std::size_t length, int width, bool compact,
                            const CharacterTables& script) noexcept;

// The same for any compact text; most in use are short.
inline TextClass classify_common(TextView text) noexcept {
    const auto* at = static_cast<const std::uint8_t*>(text.characters);
    const std::uint8_t* const end = at + text.length;
    if (text.length == 0) return TextClass::plain;
    if (text.length <= 8) return classify_short({eight_bytes(end - 8), text.length});
    constexpr std::size_t longest = 32;
    if (!may_start_number[*at]) return TextClass::plain;
    if (text.length > longest) return TextClass::unsettled;
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

// `unsettled` for texts of more digits than every limit of the interpreter allows.
inline TextClass classify_text(TextView text, const CharacterTables& script) noexcept {
    if (text.length == 0) return TextClass::plain;
    if (text.compact) {
        const TextClass common = classify_common(text);
        if (common != TextClass::unsettled) return common;
    }
    return classify_uncommon(text.characters, text.length, text.width, text.compact, script);
}

}  // namespace quorin::core
