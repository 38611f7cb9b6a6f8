// Copies tables into arrays of objects and replaces some elements by another object.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "python/inputs/array_column.hpp"

namespace quorin::transform {

// The memory layout of an array of one or two dimensions. Not a borrow: used to allocate and to detect changes.
struct TableMemory {
    core::Column first;  // the first column
    std::ptrdiff_t column_stride = 0;
    std::size_t width = 1;
    int dimensions = 1;
};

// The same, borrowed.
struct Table {
    ArrayColumn first;
    std::ptrdiff_t column_stride;
    std::size_t width;
    int dimensions;

    [[nodiscard]] TableMemory memory() const noexcept { return {first, column_stride, width, dimensions}; }
    [[nodiscard]] bool is_same_memory(const TableMemory& before) const noexcept {
        return first.is_same_memory(before.first) && column_stride == before.column_stride && width == before.width &&
               dimensions == before.dimensions;
    }
    [[nodiscard]] ArrayColumn column(std::size_t j) const noexcept {
        ArrayColumn found = first;
        found.data += static_cast<std::ptrdiff_t>(j) * column_stride;
        return found;
    }
};

// Borrows X; nullopt unless X is an exact, non-empty array of one or two dimensions whose dtype is known.
std::optional<Table> open_table(Object X) noexcept;

// A byte for each row of a column.
struct Mask {
    const char* first;
    std::ptrdiff_t stride;
};

// The elements that are replaced by `filling`: those whose byte in the mask of their column is not 0, or is 0 if
// `inverted`.
struct Replacement {
    std::span<const Mask> masks;  // one for each column
    bool inverted;
    Object filling;
};

// A new array of objects, all null, of the same shape as the table.
Ref new_objects_like(const TableMemory& memory);

// Writes the objects that numpy's astype(object) makes for the rows first <= row < last into null elements of `Y`, an
// array of objects of the same shape in C order.
void write_rows(const Table& table, const Replacement& replacement, Object Y, std::size_t first, std::size_t last);

// The number of rows to write between two polls for signals.
std::size_t rows_in_block(const TableMemory& memory) noexcept;

}  // namespace quorin::transform
