// The distinct numbers of a column in ascending order, as numpy.unique() returns them.
#pragma once

#include <optional>

#include "exportable_utils/distinct/distinct_values.hpp"

namespace quorin::distinct {

// numpy.unique(column[~mask], return_counts=True) of a column of numbers. Returns nullopt to give up.
//
// If zeros of both signs or different NaN occur, the result depends on which of several equal numbers the sort puts
// first. Floats are therefore sorted by numpy itself, with the algorithm of numpy.unique().
std::optional<ValuesAndCounts> distinct_numbers(const ColumnSource& column, const ExcludedRows& excluded);

// The same for column.astype(float), for a column of floats.
std::optional<ValuesAndCounts> distinct_as_float64(const ColumnSource& column, const ExcludedRows& excluded);

}  // namespace quorin::distinct
