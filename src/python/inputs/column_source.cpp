#include "python/inputs/column_source.hpp"

namespace quorin {

std::optional<ColumnSource> ColumnSource::flat_writable(Object X) noexcept {
    std::optional<ColumnSource> source = flat(X);
    const std::optional<ArrayColumn> column = source ? source->borrow() : std::nullopt;
    if (!column || PyArray_ISWRITEABLE(column->array) == 0 || !rows_are_disjoint(*column)) source.reset();
    return source;
}

std::optional<ArrayColumn> ColumnSource::look() const noexcept {
    if (j_ < 0) return single_column(array_);
    if (!is_exact_array(array_)) return std::nullopt;
    PyArrayObject* array = as_array(array_);
    if (PyArray_NDIM(array) != 2 || j_ >= PyArray_DIM(array, 1)) return std::nullopt;
    std::optional<ArrayColumn> column = first_column(array_);
    if (column) column->data += j_ * PyArray_STRIDE(array, 1);
    return column;
}

}  // namespace quorin
