#include "core/references/reference_texts.hpp"

#include <algorithm>

namespace quorin::core {

namespace {

// False where the text is none of one to eight ASCII characters.
bool ascii_value(TextView text, std::uint64_t& value) noexcept {
    if (text.length - 1 >= 8) return false;
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < text.length; ++i) {
        const std::uint32_t c = character(text, i);
        all |= c;
        value |= std::uint64_t{c} << (8 * i);
    }
    return all <= 0x7f;
}

}  // namespace

bool ReferenceTexts::add(const TextView& text) noexcept {
    if (texts_.size() == most_references || text.length > longest_possible) return false;
    if (text.length == 0) {
        empty_ |= ReferenceBits{1} << texts_.size();
    } else {
        const std::uint64_t others = has_length(text.length) ? firsts_[text.length] : 0;
        firsts_[text.length] = others | std::uint64_t{1} << (character(text, 0) & 63U);
    }
    lengths_ |= 1U << text.length;
    longest_ = std::max(longest_, text.length);
    // Field by field: what was written so a moment ago the processor cannot read as a whole yet.
    texts_.push_back({text.characters, text.length, text.width});
    std::uint64_t value = 0;
    values_.push_back(ascii_value(text, value) ? Value{value, text.length} : Value{0, 0});
    return true;
}

ReferenceBits ReferenceTexts::find_slowly(const void* characters, std::size_t length, int width) const noexcept {
    const TextView text{characters, length, width};
    std::uint64_t value = 0;
    if (ascii_value(text, value)) return find_value(value, length);
    ReferenceBits found = 0;
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        if (same(texts_[i], text)) found |= ReferenceBits{1} << i;
    }
    return found;
}

}  // namespace quorin::core
