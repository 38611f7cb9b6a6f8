// Long columns in blocks of rows, with signals answered between the blocks.
#pragma once

#include <optional>

#include "python/inputs/array_column.hpp"
#include "python/signals.hpp"

namespace quorin {

// The rows first <= row < last of a column, as a column.
inline ArrayColumn rows_of(const ArrayColumn& column, std::size_t first, std::size_t last) noexcept {
    ArrayColumn part = column;
    part.data = column.at(first);
    part.rows = last - first;
    return part;
}

// The memory of the column that flat_column() opens, without a borrow: to compare with and to allocate by, not to read.
inline std::optional<core::Column> flat_memory(Object X) noexcept {
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column) return std::nullopt;
    return static_cast<const core::Column&>(*column);
}

// The same for a column that a routine may write into: it is writeable and no two rows share memory.
inline std::optional<core::Column> writable_memory(Object X) noexcept {
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column || PyArray_ISWRITEABLE(column->array) == 0 || !rows_are_disjoint(*column)) return std::nullopt;
    return static_cast<const core::Column&>(*column);
}

// Calls work(part, first) for consecutive blocks of rows of X; `first` is the row in X of the first row of `part`.
// Answers signals between blocks, with nothing borrowed. `work` returns false to give up. Returns false if `work` did,
// or if X no longer is the column that `memory` describes.
template <class Work>
bool in_column_blocks(Object X, const core::Column& memory, Work work, Where where = Where::current()) {
    const auto block = [&](std::size_t first, std::size_t last) {
        const std::optional<ArrayColumn> column = flat_column(X);
        return column && column->is_same_memory(memory) && work(rows_of(*column, first, last), first);
    };
    return in_blocks(memory.rows, block, rows_between_signals, where);
}

}  // namespace quorin
