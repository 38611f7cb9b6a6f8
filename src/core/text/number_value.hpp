// The value of a number text, without the interpreter.
#pragma once

#include "core/text/number_text.hpp"

namespace quorin::core {

// Sets `value` to what float() gives for the text, to the last bit. False where that is not settled here: for texts
// that are no numbers, for words, for underscores between digits, for notations out of the ordinary.
bool value_of_number(TextView text, double& value) noexcept;

}  // namespace quorin::core
