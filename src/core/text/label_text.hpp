// Category labels: what a label consists of, and the label without its white space.
#pragma once

#include <cstddef>

#include "core/cells/cells.hpp"
#include "core/gather/text_facts.hpp"

namespace quorin::core {

// str.isalnum()
bool is_alphanumeric(TextView text, const CharacterTables& script) noexcept;

// "".join(text.split()): writes what is left, in characters of the same width, and tells how many those are. `out` has
// room for the whole text and may be where the text itself lies.
std::size_t remove_white_space(TextView text, const CharacterTables& script, void* out) noexcept;

// Whether all of these are characters that have bytes in UTF-8: no surrogates, nothing beyond the last plane.
bool is_encodable(TextView text) noexcept;

// The text without zeros at its end, which fixed-width storage takes for room that is not used.
inline TextView without_zeros_at_end(TextView text) noexcept {
    while (text.length != 0 && character(text, text.length - 1) == 0) --text.length;
    return text;
}

}  // namespace quorin::core
