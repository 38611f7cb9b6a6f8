// A column that is borrowed several times; foreign code may run between two borrows.
#pragma once

#include <optional>

#include "python/inputs/array_column.hpp"
#include "python/signals.hpp"

namespace quorin {

// The rows `first` to `last` - 1 of a column.
inline ArrayColumn rows_of(const ArrayColumn& column, std::size_t first, std::size_t last) noexcept {
    ArrayColumn part = column;
    part.data = column.at(first);
    part.rows = last - first;
    return part;
}

// Identifies a column without borrowing it: a route reads rows() and storage(), allocates what it needs, and then
// borrows. The caller keeps the array alive.
//
//     const std::optional<ColumnSource> column = ColumnSource::single(X);
//     if (!column) return {};                            // not a column that native routes read
//     Ref mask = new_zeros(column->rows(), NPY_BOOL);    // foreign code
//     const bool done = column->in_blocks(
//         [&](const ArrayColumn& column, std::size_t first, std::size_t last) { ...; return true; });
class ColumnSource {
  public:
    // The column of single_column(), from an array of shape (n,) or (n, 1).
    static std::optional<ColumnSource> single(Object X) noexcept { return ColumnSource(X, -1).if_known(); }
    // The column of flat_column().
    static std::optional<ColumnSource> flat(Object X) noexcept {
        if (!is_exact_array(X) || PyArray_NDIM(as_array(X)) != 1) return std::nullopt;
        return single(X);
    }
    // The same if it is writeable and no two of its rows share memory.
    static std::optional<ColumnSource> flat_writable(Object X) noexcept;
    // Column j of an array of two dimensions.
    static std::optional<ColumnSource> of_table(Object X, npy_intp j) noexcept { return ColumnSource(X, j).if_known(); }

    [[nodiscard]] Object array() const noexcept { return array_; }
    [[nodiscard]] std::size_t rows() const noexcept { return before_.rows; }
    [[nodiscard]] Storage storage() const noexcept { return before_.storage; }
    [[nodiscard]] std::size_t width() const noexcept { return before_.width; }
    // The column when the source was made. Its memory may have been freed: do not read it.
    [[nodiscard]] const core::Column& layout() const noexcept { return before_; }

    // The array's dtype, owned. Empty if the column has changed.
    [[nodiscard]] Ref dtype() const noexcept {
        const std::optional<ArrayColumn> column = borrow();
        return column ? Ref::share(reinterpret_cast<PyObject*>(PyArray_DESCR(column->array))) : Ref();
    }
    // Borrows the column; nullopt if its memory, shape or type has changed since the source was made.
    [[nodiscard]] std::optional<ArrayColumn> borrow() const noexcept {
        if (is_known_vector()) return ArrayColumn{before_, as_array(array_), {}};
        std::optional<ArrayColumn> column = look();
        if (column && !column->is_same_memory(before_)) column.reset();
        return column;
    }

    // Calls use(column, first, last) for consecutive ranges of rows and borrows the column for each of them. Answers
    // signals between two ranges, with nothing borrowed. Returns false if `use` does or if the column has changed.
    template <class Use>
    bool in_blocks(Use use, Where where = Where::current()) const {
        const auto use_block = [&](std::size_t first, std::size_t last) {
            const std::optional<ArrayColumn> column = borrow();
            return column && use(*column, first, last);
        };
        return quorin::in_blocks(rows(), use_block, where);
    }

  private:
    ColumnSource(Object X, npy_intp j) noexcept : array_(X), j_(j) {}
    // Whether the array has one dimension and is the unchanged column of this source. Cheaper than look() and a
    // comparison.
    [[nodiscard]] bool is_known_vector() const noexcept {
        PyArrayObject* array = as_array(array_);
        return j_ < 0 && is_exact_array(array_) && PyArray_NDIM(array) == 1 && PyArray_BYTES(array) == before_.data &&
               static_cast<std::size_t>(PyArray_DIM(array, 0)) == before_.rows &&
               PyArray_STRIDE(array, 0) == before_.stride && PyArray_TYPE(array) == type_ &&
               static_cast<std::size_t>(PyArray_ITEMSIZE(array)) == before_.width && PyArray_ISALIGNED(array) &&
               PyArray_ISNOTSWAPPED(array);
    }
    [[nodiscard]] std::optional<ArrayColumn> look() const noexcept;
    std::optional<ColumnSource> if_known() noexcept {
        const std::optional<ArrayColumn> column = look();
        if (!column) return std::nullopt;
        before_ = *column;
        type_ = PyArray_TYPE(as_array(array_));
        return *this;
    }

    Object array_;
    npy_intp j_;  // column of a table; -1 for an array that is one column
    core::Column before_{};
    int type_ = -1;  // the dtype's number
};

// A column that stays borrowed during a long loop, except while signals are answered.
class LongBorrow {
  public:
    explicit LongBorrow(const ColumnSource& source) noexcept : source_(source), column_(source.borrow()) {}
    // Empty if the column has changed.
    [[nodiscard]] const std::optional<ArrayColumn>& column() const noexcept { return column_; }
    // Answers signals with nothing borrowed. Returns false if the column has changed. Call it every few milliseconds.
    bool pause(Where where = Where::current()) {
        column_.reset();
        timer_.poll(where);
        column_ = source_.borrow();
        return column_.has_value();
    }

  private:
    ColumnSource source_;
    std::optional<ArrayColumn> column_;
    SignalTimer timer_;
};

}  // namespace quorin
