// The distinct numbers of a column in ascending order, as numpy.unique() gives them.
#pragma once

#include <optional>

#include "exportable_utils/distinct/distinct_values.hpp"

namespace quorin::distinct {

// numpy.unique(column[~mask], return_counts=True), for columns of numbers. Nothing for any other column.
//
// Which one of several equal numbers stands for them shows where they are zeros of both signs or NaNs: floats are
// therefore sorted by numpy itself, in the order in which it would be given them.
std::optional<ValuesAndCounts> distinct_numbers(const ArrayColumn& column, ExcludedRows left_out);

// The same of column.astype(float).
std::optional<ValuesAndCounts> distinct_as_float64(const ArrayColumn& column, ExcludedRows left_out);

}  // namespace quorin::distinct
