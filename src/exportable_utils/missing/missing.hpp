// Missing-value detection: matching against reference values, indicator masks, distinct values.
#pragma once

#include "python/routine.hpp"

namespace quorin::missing {

extern const Definition numpy_compute_missing_indicator;
extern const Definition numpy_isin;
extern const Definition indicator_mask;
extern const Definition get_unique_values;

}  // namespace quorin::missing
