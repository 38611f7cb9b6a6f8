// Replacement straight from memory. All of these give nothing where they cannot answer, with no effect left behind.
#pragma once

#include "python/ref.hpp"

namespace quorin::transform {

Ref native_putmask(Object X, Object replace_values_mask, Object filling_value);
Ref native_replace_values(Object X, Object filling_value, Object reference_values_list, Object invert_flag);

}  // namespace quorin::transform
