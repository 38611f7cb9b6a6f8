// Conversions straight from memory. All of these give nothing where they cannot answer, with no effect left behind.
#pragma once

#include "python/ref.hpp"

namespace quorin::transform {

Ref native_floatstr2float(Object X, Object missing_values_reference_list);
Ref native_boolean2float(Object X, Object missing_values_reference_list);

}  // namespace quorin::transform
