// Array transforms and conversions.
#pragma once

#include "python/routine.hpp"

namespace quorin::transform {

extern const Definition numpy_select_columns;
extern const Definition numpy_flatten_column;
extern const Definition numpy_remove_second_dim;
extern const Definition numpy_permute_array;

extern const Definition numpy_floatstr2float;
extern const Definition numpy_boolean2float;
extern const Definition convert_float32;
extern const Definition numpy_column_float2str;

extern const Definition numpy_replace_values;
extern const Definition numpy_putmask;

extern const Definition compress_string;
extern const Definition compress_str_column;

}  // namespace quorin::transform
