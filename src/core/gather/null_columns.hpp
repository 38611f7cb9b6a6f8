// Nulls in a table of floats, read in the order in which it lies in memory.
#pragma once

#include <cstddef>
#include <vector>

namespace quorin::core {

// Strides in bytes.
struct FloatTable {
    const char* data;
    std::size_t rows;
    std::size_t columns;
    std::ptrdiff_t row_stride;
    std::ptrdiff_t column_stride;
};

// For each column whether it holds a null. With `one_is_enough` the search ends with the first one found.
template <class Float>
std::vector<bool> null_columns(const FloatTable& table, bool one_is_enough);

}  // namespace quorin::core
