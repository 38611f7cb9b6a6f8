#include "columns/column.hpp"

#include <cstdlib>

namespace quorin::columns {

namespace {

bool is_alphanumeric(std::uint32_t character) {
    return Py_UNICODE_ISALNUM(character) != 0;
}

int translated(std::uint32_t character) {
    if (character < 127) return static_cast<int>(character);
    if (Py_UNICODE_ISSPACE(character)) return ' ';
    const int digit = Py_UNICODE_TODECIMAL(character);
    return digit < 0 ? -1 : '0' + digit;
}

std::optional<Storage> storage_of(int type) noexcept {
    switch (type) {
        case NPY_OBJECT:
            return Storage::objects;
        case NPY_UNICODE:
            return Storage::fixed_text;
        case NPY_DOUBLE:
            return Storage::float64;
        case NPY_FLOAT:
            return Storage::float32;
        case NPY_BOOL:
            return Storage::boolean;
        default:
            break;
    }
    if (PyTypeNum_ISINTEGER(type)) return Storage::integer;
    return std::nullopt;
}

}  // namespace

const kernels::Script script{is_alphanumeric, translated};

std::optional<Column> first_column(Object X) noexcept {
    PyArrayObject* array = as_array(X);
    if (PyArray_SIZE(array) == 0 || !PyArray_ISALIGNED(array) || !PyArray_ISNOTSWAPPED(array)) return std::nullopt;
    const std::optional<Storage> storage = storage_of(PyArray_TYPE(array));
    if (!storage) return std::nullopt;
    return Column{array,
                  *storage,
                  PyArray_BYTES(array),
                  PyArray_STRIDE(array, 0),
                  static_cast<std::size_t>(PyArray_DIM(array, 0)),
                  static_cast<std::size_t>(PyArray_ITEMSIZE(array))};
}

std::optional<Column> plain_column(Object X) noexcept {
    if (!is_exact_array(X)) return std::nullopt;
    PyArrayObject* array = as_array(X);
    const int dimensions = PyArray_NDIM(array);
    if (dimensions != 1 && !(dimensions == 2 && PyArray_DIM(array, 1) == 1)) return std::nullopt;
    return first_column(X);
}

std::optional<Column> flat_column(Object X) noexcept {
    std::optional<Column> column = plain_column(X);
    if (column && PyArray_NDIM(column->array) != 1) column.reset();
    return column;
}

std::optional<Column> flat_column(Object X, Storage storage) noexcept {
    std::optional<Column> column = flat_column(X);
    if (column && column->storage != storage) column.reset();
    return column;
}

bool rows_lie_apart(const Column& column) noexcept {
    return column.rows == 1 || static_cast<std::size_t>(std::abs(column.stride)) >= column.width;
}

std::optional<kernels::TextView> ObjectCells::uncommon_text(PyObject* value) noexcept {
    if (value == nullptr || !PyUnicode_CheckExact(value)) return std::nullopt;
    return view_of(value);
}

}  // namespace quorin::columns
