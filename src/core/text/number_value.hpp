// The value of a number text.
#pragma once

#include "core/text/number_text.hpp"

namespace quorin::core {

// Sets `value` to float(text), exact to the last bit. Returns false if it cannot: for texts that are not numbers, for
// words such as "inf", underscores between digits and numbers with many digits.
bool value_of_number(TextView text, double& value) noexcept;

}  // namespace quorin::core
