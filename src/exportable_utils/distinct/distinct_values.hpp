// The distinct values of a column.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "python/inputs/array_column.hpp"

namespace quorin::distinct {

struct DistinctRow {
    std::size_t row;  // of the first occurrence
    npy_intp count;
};

// The rows that are not taken. Their mask stays with the caller.
class ExcludedRows {
  public:
    ExcludedRows() noexcept = default;
    ExcludedRows(Object mask, std::size_t marked) noexcept
        : marked_(marked), marks_(marked == 0 ? nullptr : PyArray_BYTES(as_array(mask))) {}
    [[nodiscard]] std::size_t marked() const noexcept { return marked_; }
    // A byte for each row; null where none is left out.
    [[nodiscard]] const char* marks() const noexcept { return marks_; }
    [[nodiscard]] bool has(std::size_t row) const noexcept { return marks_ != nullptr && marks_[row] != 0; }

  private:
    std::size_t marked_ = 0;
    const char* marks_ = nullptr;
};

struct ValuesAndCounts {
    Ref values;
    Ref counts;
};

// numpy.unique(column[~mask], return_counts=True). Texts, and numbers in an array of objects, are hashed first, so that
// only the distinct ones are sorted. Nothing where numpy's sort would fail, or where it would be free to choose among
// objects that are equal and yet not the same: 1, 1.0 and True; 0.0 and -0.0.
std::optional<ValuesAndCounts> distinct_values(const ArrayColumn& column, ExcludedRows left_out);

// An array of these values, of the column's dtype.
Ref values_of(const ArrayColumn& column, const std::vector<DistinctRow>& distinct);

// How many different values numpy.unique() finds in a column of numbers, whatever its dtype; `enough` where it finds at
// least as many. Nothing for a column of texts, and for objects with a null or anything else among them. NaN counts as
// one.
std::optional<std::size_t> count_distinct_numbers(const ArrayColumn& column, std::size_t enough);

// The same for a column of texts.
std::optional<std::size_t> count_distinct_texts(const ArrayColumn& column, std::size_t enough);

}  // namespace quorin::distinct
