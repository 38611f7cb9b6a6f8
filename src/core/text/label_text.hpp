// Labels of categories: which characters they hold, and how they read without white space.
#pragma once

#include <cstddef>

#include "core/cells/cells.hpp"
#include "core/gather/text_facts.hpp"

namespace quorin::core {

// str.isalnum()
bool is_alphanumeric(TextView text, const CharacterTables& tables) noexcept;

// "".join(text.split()): writes what is left, in the same encoding, and returns its size in units. `out` has room for
// the whole text and may be the text itself.
std::size_t remove_white_space(TextView text, const CharacterTables& tables, void* out) noexcept;

// Whether the text can be encoded in UTF-8: it holds no surrogates and no numbers above U+10FFFF.
bool is_encodable(TextView text) noexcept;

// The text without NUL characters at its end, as fixed-width storage drops them.
inline TextView without_zeros_at_end(TextView text) noexcept {
    while (text.size != 0 && unit(text, text.size - 1) == 0) --text.size;
    return text;
}

}  // namespace quorin::core
