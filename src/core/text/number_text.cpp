#include "core/text/number_text.hpp"

#include <array>
#include <bit>
#include <cstdint>

namespace quorin::core {

namespace {

// int() raises for texts with more digits than a limit. An application can set the limit, but not below this number.
constexpr std::size_t always_allowed_digits = 640;

template <class Character>
struct Scanner {
    const Character* at;
    const Character* end;

    [[nodiscard]] bool more() const noexcept { return at != end; }
    [[nodiscard]] bool digit() const noexcept { return more() && *at >= '0' && *at <= '9'; }

    bool skip(char wanted) noexcept {
        if (!more() || *at != static_cast<Character>(wanted)) return false;
        ++at;
        return true;
    }
    // Skips a letter in either case.
    bool skip_letter(char wanted) noexcept { return skip(wanted) || skip(static_cast<char>(wanted - 'a' + 'A')); }
    bool skip_word(const char* word) noexcept {
        const Character* const start = at;
        for (; *word != '\0'; ++word) {
            if (!skip_letter(*word)) {
                at = start;
                return false;
            }
        }
        return true;
    }
    void skip_sign() noexcept {
        if (!skip('+')) skip('-');
    }
    // Skips digits with single underscores between them and returns the number of digits. Stops at a misplaced
    // underscore, which no rule of the grammar accepts.
    std::size_t skip_digits() noexcept {
        std::size_t digits = 0;
        while (digit()) {
            ++at;
            ++digits;
            if (more() && *at == '_' && at + 1 != end && at[1] >= '0' && at[1] <= '9') ++at;
        }
        return digits;
    }
};

template <class Character>
bool is_ascii(const Character* at, const Character* end) noexcept {
    for (; at != end; ++at) {
        if (*at > 0x7f) return false;
    }
    return true;
}

// Grammar, after white space on both sides has been removed:
//   [sign] (inf | infinity | nan)   letters in either case
//   [sign] (digits [. [digits]] | . digits) [(e | E) [sign] digits]
template <class Character>
NumberText parse(const Character* begin, const Character* end) noexcept {
    while (begin != end && is_space(*begin)) ++begin;
    while (begin != end && is_space(end[-1])) --end;
    Scanner<Character> scan{begin, end};
    scan.skip_sign();
    if (scan.skip_word("inf")) {
        scan.skip_word("inity");
        return scan.more() ? NumberText::none : NumberText::real;
    }
    if (scan.skip_word("nan")) return scan.more() ? NumberText::none : NumberText::real;

    std::size_t digits = scan.skip_digits();
    if (!scan.more() && digits != 0) {
        return digits <= always_allowed_digits ? NumberText::integer : NumberText::ask;
    }
    if (scan.skip('.')) digits += scan.skip_digits();
    if (digits == 0) return NumberText::none;
    if (scan.skip_letter('e')) {
        scan.skip_sign();
        if (scan.skip_digits() == 0) return NumberText::none;
    }
    return scan.more() ? NumberText::none : NumberText::real;
}

// Returns `ask` if a character is not ASCII: it may be a digit or white space that the interpreter translates to ASCII.
template <class Character>
NumberText classify(TextView text) noexcept {
    const auto* begin = static_cast<const Character*>(text.characters);
    const auto* end = begin + text.size;
    if (!text.is_ascii() && !is_ascii(begin, end)) return NumberText::ask;
    return parse(begin, end);
}

}  // namespace

NumberText classify_number(TextView text) noexcept {
    switch (text.width) {
        case 1:
            return classify<std::uint8_t>(text);
        case 2:
            return classify<std::uint16_t>(text);
        case 4:
            return classify<std::uint32_t>(text);
        default:
            return NumberText::ask;
    }
}

namespace {

bool is_ascii(TextView text) noexcept {
    for (std::size_t i = 0; i < text.size; ++i) {
        if (unit(text, i) > 0x7f) return false;
    }
    return true;
}

bool has_dot(TextView text) noexcept {
    for (std::size_t i = 0; i < text.size; ++i) {
        if (unit(text, i) == '.') return true;
    }
    return false;
}

TextClass from_grammar(TextView text) noexcept {
    switch (classify_number(text)) {
        case NumberText::integer:
            return TextClass::integer;
        case NumberText::real:
            return has_dot(text) ? TextClass::real : TextClass::plain;
        case NumberText::ask:
            return TextClass::unsettled;
        case NumberText::none:
            break;
    }
    return TextClass::plain;
}

// Translates digits and white space beyond ASCII to ASCII, as int() and float() do. A text with any other character
// beyond ASCII is plain.
TextClass classify_translated(TextView text, const CharacterTables& tables) noexcept {
    constexpr std::size_t longest = 400;
    if (length_of(text) > longest) return TextClass::unsettled;
    std::array<std::uint8_t, longest> translated;
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size;) {
        const Decoded decoded = decode(text, i);
        const int ascii = tables.translated(decoded.character);
        if (ascii < 0) return TextClass::plain;
        translated[length++] = static_cast<std::uint8_t>(ascii);
        i += decoded.size;
    }
    return from_grammar({translated.data(), length, 1});
}

// A short text with padding before it.
struct Padded {
    static constexpr std::size_t most = 32;
    std::array<std::uint8_t, 16 + most> bytes;
};

// Copies an ASCII text of at most Padded::most characters. Returns false for other texts.
template <class Character>
bool pad(TextView text, Padded& padded) noexcept {
    if (text.size > Padded::most || std::endian::native != std::endian::little) return false;
    const auto* from = static_cast<const Character*>(text.characters);
    std::uint8_t* to = padded.bytes.data() + 16;
    Character all = 0;
    for (std::size_t i = 0; i < text.size; ++i) {
        all = static_cast<Character>(all | from[i]);
        to[i] = static_cast<std::uint8_t>(from[i]);
    }
    return all <= 0x7f;
}

TextClass classify_padded(TextView text) noexcept {
    Padded padded;
    const bool done = text.width == 4   ? pad<std::uint32_t>(text, padded)
                      : text.width == 2 ? pad<std::uint16_t>(text, padded)
                                        : pad<std::uint8_t>(text, padded);
    if (!done) return TextClass::unsettled;
    return classify_common({padded.bytes.data() + 16, text.size, 1, Encoding::padded_ascii});
}

}  // namespace

TextClass classify_uncommon(const void* characters, std::size_t size, int width, Encoding encoding,
                            const CharacterTables& tables) noexcept {
    const TextView text{characters, size, width, encoding};
    if (!text.is_padded()) {
        const std::uint32_t first = unit(text, 0);
        if (first <= 0x7f && !may_start_number[first]) return TextClass::plain;
        const TextClass common = classify_padded(text);
        if (common != TextClass::unsettled) return common;
        if (!is_ascii(text)) return classify_translated(text, tables);
    }
    return from_grammar(text);
}

}  // namespace quorin::core
