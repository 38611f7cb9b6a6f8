// Tests of the characters of category labels, and removal of white space.
#pragma once

#include <cstddef>

#include "core/cells/cells.hpp"
#include "core/gather/text_facts.hpp"

namespace quorin::core {

// str.isalnum()
bool is_alphanumeric(TextView text, const CharacterTables& tables) noexcept;

// Writes "".join(text.split()), in the same encoding, and returns its size in units. `out` must have room for the whole
// text and may be the text itself.
std::size_t remove_white_space(TextView text, const CharacterTables& tables, void* out) noexcept;

// Whether the text can be encoded in UTF-8: it has no surrogate and no character above U+10FFFF.
bool is_encodable(TextView text) noexcept;

// The text without NUL characters at its end, which fixed-width storage drops.
inline TextView without_zeros_at_end(TextView text) noexcept {
    while (text.size != 0 && unit(text, text.size - 1) == 0) --text.size;
    return text;
}

}  // namespace quorin::core
