// The value of a number text.
#pragma once

#include "core/text/number_text.hpp"

namespace quorin::core {

// Sets `value` to float(text), exact to the last bit. False if that is not known here: for texts that are not numbers,
// words, underscores between digits, numbers with many digits.
bool value_of_number(TextView text, double& value) noexcept;

}  // namespace quorin::core
