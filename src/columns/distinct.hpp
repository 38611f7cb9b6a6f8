// The distinct values of a column.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "columns/column.hpp"

namespace quorin::columns {

struct Distinct {
    std::size_t row;  // of the first occurrence
    npy_intp count;
};

// Ascending, as numpy.unique() gives them, for texts, and for numbers in an array of objects. Hashed first, so that
// only the distinct values are sorted. Nothing where numpy's sort would fail or would be free to choose among values
// that are equal and yet not the same: 1, 1.0 and True; 0.0 and -0.0.
std::optional<std::vector<Distinct>> ascending_values(const Column& column);

// Arrays of these values, of the column's dtype, and of their counts.
Ref values_of(const Column& column, const std::vector<Distinct>& distinct);
Ref counts_of(const std::vector<Distinct>& distinct);

// How many different values numpy.unique() finds in a column of numbers, whatever its dtype; `enough` where it finds at
// least as many. Nothing for a column of texts, and for objects with a null or anything else among them. NaN counts as
// one.
std::optional<std::size_t> count_distinct_numbers(const Column& column, std::size_t enough);

// The same for a column of texts.
std::optional<std::size_t> count_distinct_texts(const Column& column, std::size_t enough);

}  // namespace quorin::columns
