#include "kernels/text_facts.hpp"

#include <algorithm>
#include <bit>

namespace quorin::kernels {

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
                            const Script& script) noexcept {
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

bool MarkerSet::add(TextView text) noexcept {
    if (size_ == most_markers || text.length > longest_possible) return false;
    lengths_ |= 1U << text.length;
    longest_ = std::max(longest_, text.length);
    firsts_[text.length] |= std::uint64_t{1} << (text.length == 0 ? 0 : character(text, 0) & 63U);
    texts_[size_++] = text;
    return true;
}

std::uint32_t MarkerSet::find_slowly(const void* characters, std::size_t length, int width) const noexcept {
    const TextView text{characters, length, width};
    std::uint32_t found = 0;
    for (std::size_t i = 0; i < size_; ++i) {
        if (same(texts_[i], text)) found |= 1U << i;
    }
    return found;
}

}  // namespace quorin::kernels
