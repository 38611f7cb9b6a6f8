#include "core/text/number_text.hpp"

#include <array>
#include <bit>
#include <cstdint>

namespace quorin::core {

namespace {

// int() refuses texts with more digits than a limit that applications may set, but never below this number.
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
    // A letter in either case.
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
    // Digits with single underscores between them; gives how many digits there are. A misplaced underscore is left
    // standing, where nothing that may follow accepts it.
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

// Grammar, after white space on both sides is gone:
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

// Characters beyond ASCII may be digits or white space of another script, which the interpreter translates first.
template <class Character>
NumberText classify(TextView text) noexcept {
    const auto* begin = static_cast<const Character*>(text.characters);
    const auto* end = begin + text.length;
    if (!text.compact && !is_ascii(begin, end)) return NumberText::ask;
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
    for (std::size_t i = 0; i < text.length; ++i) {
        if (character(text, i) > 0x7f) return false;
    }
    return true;
}

bool has_dot(TextView text) noexcept {
    for (std::size_t i = 0; i < text.length; ++i) {
        if (character(text, i) == '.') return true;
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

// Digits and white space of every script become ASCII first, as the number parsers do; any other character beyond ASCII
// makes the text a plain one.
TextClass classify_translated(TextView text, const CharacterTables& script) noexcept {
    constexpr std::size_t longest = 400;
    if (text.length > longest) return TextClass::unsettled;
    std::array<std::uint8_t, longest> translated{};
    for (std::size_t i = 0; i < text.length; ++i) {
        const std::uint32_t c = character(text, i);
        const int ascii = script.translated(c);
        if (ascii < 0) return TextClass::plain;
        translated[i] = static_cast<std::uint8_t>(ascii);
    }
    return from_grammar({translated.data(), text.length, 1});
}

// Room for what classify_common() looks at, and for what it may read before.
struct Narrowed {
    std::array<std::uint8_t, 16 + 32> bytes;
};

// The compact text of the same characters, where they are few and ASCII.
template <class Character>
bool narrow(TextView text, Narrowed& narrowed) noexcept {
    if (text.length > narrowed.bytes.size() - 16 || std::endian::native != std::endian::little) return false;
    const auto* from = static_cast<const Character*>(text.characters);
    std::uint8_t* to = narrowed.bytes.data() + 16;
    Character all = 0;
    for (std::size_t i = 0; i < text.length; ++i) {
        all = static_cast<Character>(all | from[i]);
        to[i] = static_cast<std::uint8_t>(from[i]);
    }
    return all <= 0x7f;
}

TextClass classify_narrowed(TextView text) noexcept {
    Narrowed narrowed;
    const bool done = text.width == 4   ? narrow<std::uint32_t>(text, narrowed)
                      : text.width == 2 ? narrow<std::uint16_t>(text, narrowed)
                                        : narrow<std::uint8_t>(text, narrowed);
    if (!done) return TextClass::unsettled;
    return classify_common({narrowed.bytes.data() + 16, text.length, 1, true});
}

}  // namespace

TextClass classify_uncommon(const void* characters, std::size_t length, int width, bool compact,
                            const CharacterTables& script) noexcept {
    const TextView text{characters, length, width, compact};
    if (!text.compact) {
        const std::uint32_t first = character(text, 0);
        if (first <= 0x7f && !may_start_number[first]) return TextClass::plain;
        const TextClass common = classify_narrowed(text);
        if (common != TextClass::unsettled) return common;
        if (!is_ascii(text)) return classify_translated(text, script);
    }
    return from_grammar(text);
}

}  // namespace quorin::core
