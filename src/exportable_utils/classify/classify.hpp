// Column type inference: numpy_whatis and related routines.
#pragma once

#include "python/routine.hpp"

namespace quorin::classify {

extern const Definition numpy_whatis;

extern const Definition numpy_get_categories_into_list;
extern const Definition numpy_get_categories;

extern const Definition numpy_isintstr;

extern const Definition numpy_is_column_monotonic_increasing;
extern const Definition numpy_is_column_monotonic_decreasing;
extern const Definition numpy_is_column_datetime;

}  // namespace quorin::classify
