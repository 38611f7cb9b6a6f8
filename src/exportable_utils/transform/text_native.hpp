// Numbers to text straight from memory. These give nothing where they cannot answer, with no effect left behind.
#pragma once

#include "python/ref.hpp"

namespace quorin::transform {

// X.astype(str)
Ref native_float2str(Object X);

// Writes into X and gives it back.
Ref native_slow_float2str(Object X);

}  // namespace quorin::transform
