// The distinct numbers of a column in ascending order, as numpy.unique() returns them.
#pragma once

#include <optional>

#include "exportable_utils/distinct/distinct_values.hpp"

namespace quorin::distinct {

// numpy.unique(column[~mask], return_counts=True) of a column of numbers. Nothing for any other column.
//
// Which of several equal numbers numpy returns can be seen if they are zeros of both signs or NaN. Floats are therefore
// sorted by numpy itself, in the order in which numpy.unique() sorts them.
std::optional<ValuesAndCounts> distinct_numbers(const ColumnSource& column, const ExcludedRows& excluded);

// The same of column.astype(float), for a column of floats.
std::optional<ValuesAndCounts> distinct_as_float64(const ColumnSource& column, const ExcludedRows& excluded);

}  // namespace quorin::distinct
