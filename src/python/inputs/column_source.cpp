#include "python/inputs/column_source.hpp"

namespace quorin {

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
