#include "kernels/text_facts.hpp"

namespace quorin::kernels {

namespace {

bool is_ascii(TextView text) noexcept {
    for (std::size_t i = 0; i < text.length; ++i) {
        if (character(text, i) > 0x7f) return false;
    }
    return true;
}

bool is_ascii_alphanumeric(std::uint32_t c) noexcept {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// A number text starts with white space, a sign, a dot or a digit; words for infinity and NaN hold no dot and are
// plain.
bool may_start_number(std::uint32_t c) noexcept {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == ' ' || (c >= '\t' && c <= '\r');
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
TextClass classify_translated(TextView text, const Script& script) noexcept {
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

}  // namespace

TextClass classify_text(TextView text, const Script& script) noexcept {
    if (text.length == 0) return TextClass::plain;
    const std::uint32_t first = character(text, 0);
    if (first <= 0x7f && !may_start_number(first)) return TextClass::plain;
    if (!is_ascii(text)) return classify_translated(text, script);
    return from_grammar(text);
}

bool is_lone(TextView text, const Script& script) noexcept {
    if (text.length != 1) return text.length == 0;
    const std::uint32_t c = character(text, 0);
    return c <= 0x7f ? !is_ascii_alphanumeric(c) : !script.is_alphanumeric(c);
}

bool MarkerSet::add(TextView text) noexcept {
    if (size_ == most_markers || text.length > longest_possible) return false;
    lengths_ |= 1U << text.length;
    texts_[size_++] = text;
    return true;
}

std::uint32_t MarkerSet::find_slowly(TextView text) const noexcept {
    std::uint32_t found = 0;
    for (std::size_t i = 0; i < size_; ++i) {
        if (same(texts_[i], text)) found |= 1U << i;
    }
    return found;
}

}  // namespace quorin::kernels
