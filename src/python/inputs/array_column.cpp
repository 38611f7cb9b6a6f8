#include "python/inputs/array_column.hpp"

#include <cstdlib>

namespace quorin {

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

const core::CharacterTables character_tables{is_alphanumeric, translated};

std::optional<ArrayColumn> first_column(Object X) noexcept {
    PyArrayObject* array = as_array(X);
    if (PyArray_SIZE(array) == 0 || !PyArray_ISALIGNED(array) || !PyArray_ISNOTSWAPPED(array)) return std::nullopt;
    const std::optional<Storage> storage = storage_of(PyArray_TYPE(array));
    if (!storage) return std::nullopt;
    const int type = PyArray_TYPE(array);
    return ArrayColumn{
        {{PyArray_BYTES(array), PyArray_STRIDE(array, 0), static_cast<std::size_t>(PyArray_DIM(array, 0))},
         *storage,
         static_cast<std::size_t>(PyArray_ITEMSIZE(array)),
         PyTypeNum_ISINTEGER(type) && PyTypeNum_ISSIGNED(type)},
        array,
        {}};
}

std::optional<ArrayColumn> single_column(Object X) noexcept {
    if (!is_exact_array(X)) return std::nullopt;
    PyArrayObject* array = as_array(X);
    const int dimensions = PyArray_NDIM(array);
    if (dimensions != 1 && !(dimensions == 2 && PyArray_DIM(array, 1) == 1)) return std::nullopt;
    return first_column(X);
}

std::optional<ArrayColumn> flat_column(Object X) noexcept {
    std::optional<ArrayColumn> column = single_column(X);
    if (column && PyArray_NDIM(column->array) != 1) column.reset();
    return column;
}

std::optional<ArrayColumn> flat_column(Object X, Storage storage) noexcept {
    std::optional<ArrayColumn> column = flat_column(X);
    if (column && column->storage != storage) column.reset();
    return column;
}

bool rows_are_disjoint(const ArrayColumn& column) noexcept {
    return column.rows == 1 || static_cast<std::size_t>(std::abs(column.stride)) >= column.width;
}

std::optional<core::TextView> ObjectCells::uncommon_text(PyObject* value) noexcept {
    if (value == nullptr || !PyUnicode_CheckExact(value)) return std::nullopt;
    return text_view_of(value);
}

}  // namespace quorin
