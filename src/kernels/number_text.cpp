#include "kernels/number_text.hpp"

#include <cstdint>

namespace quorin::kernels {

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

// What the C locale's isspace() accepts. The separators \x1c to \x1f, white space elsewhere in the interpreter, are
// none for the number parsers.
template <class Character>
bool is_space(Character c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

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

}  // namespace quorin::kernels
