// The static methods of FCplus: what a column or a whole table holds.
#pragma once

#include "interp/routine.hpp"

namespace quorin::features {

extern const Definition is_column_constant;
extern const Definition is_column_string_in_datetime_format;
extern const Definition is_column_epoch;
extern const Definition is_column_longitude;
extern const Definition is_column_latitude;
extern const Definition is_column_distance;

}  // namespace quorin::features
