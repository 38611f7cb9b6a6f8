// The distinct texts of a column in ascending order, as numpy.unique() gives them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "columns/column.hpp"

namespace quorin::columns {

struct DistinctText {
    std::size_t row;  // of its first occurrence
    npy_intp count;
};

// Nothing where an element is no text. Hashed first, so that only the distinct texts are sorted.
std::optional<std::vector<DistinctText>> distinct_texts(const Column& column);

// Arrays of these texts, of the column's dtype, and of their counts.
Ref texts_of(const Column& column, const std::vector<DistinctText>& distinct);
Ref counts_of(const std::vector<DistinctText>& distinct);

// How many different numbers a column holds; `enough` where it holds at least as many. Nothing for a column of objects
// or texts. NaN counts as one.
std::optional<std::size_t> count_distinct_numbers(const Column& column, std::size_t enough);

}  // namespace quorin::columns
