#include "exportable_utils/transform/object_table.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <type_traits>

#include "core/column.hpp"
#include "python/inputs/column_source.hpp"
#include "python/inputs/object_slots.hpp"
#include "python/new_text.hpp"

namespace quorin::transform {

namespace {

// A range of rows of one column, and their destination.
struct Part {
    ArrayColumn column;
    Mask mask;
    char* out;  // the slot of the first row
    std::ptrdiff_t out_stride;
};

template <class ObjectAt>
void write(const Part& part, const Replacement& replacement, ObjectAt object_at) {
    const char* mask = part.mask.first;
    char* out = part.out;
    for (std::size_t row = 0; row < part.column.rows; ++row, mask += part.mask.stride, out += part.out_stride) {
        const bool replaced = (*mask != 0) != replacement.inverted;
        Ref object = replaced ? Ref::share(replacement.filling) : object_at(row);
        *reinterpret_cast<PyObject**>(out) = object.give();
    }
}

Ref object_of(bool value) {
    return Ref::truth(value);
}
Ref object_of(double value) {
    return Ref::take(PyFloat_FromDouble(value));
}
Ref object_of(float value) {
    return object_of(static_cast<double>(value));
}
template <class Integer>
Ref object_of(Integer value) {
    if constexpr (std::is_signed_v<Integer>) {
        return Ref::take(PyLong_FromLongLong(value));
    } else {
        return Ref::take(PyLong_FromUnsignedLongLong(value));
    }
}

// A null element counts as None.
void write_shared(const Part& part, const Replacement& replacement) {
    const ArrayColumn& column = part.column;
    write(part, replacement, [&](std::size_t row) {
        if (row + core::prefetch_distance < column.rows) {
            __builtin_prefetch(column.object(row + core::prefetch_distance), 1);
        }
        PyObject* value = column.object(row);
        return Ref::share(value == nullptr ? Py_None : value);
    });
}

void write_texts(const Part& part, const Replacement& replacement) {
    const ArrayTextCells cells(part.column);
    write(part, replacement, [&](std::size_t row) {
        core::TextView text{};
        cells.read(row, text);
        return new_text(text);
    });
}

void write_part(const Part& part, const Replacement& replacement) {
    if (part.column.storage == Storage::objects) {
        write_shared(part, replacement);
    } else if (part.column.storage == Storage::fixed_text) {
        write_texts(part, replacement);
    } else {
        core::with_number_type(part.column, [&](auto type) {
            write(part, replacement,
                  [&](std::size_t row) { return object_of(core::load<decltype(type)>(part.column, row)); });
            return true;
        });
    }
}

// The result, and usually the table, is stored row by row: this many rows of all columns stay in the cache.
constexpr std::size_t rows_together = 256;

}  // namespace

std::optional<Table> open_table(Object X) noexcept {
    if (!is_exact_array(X)) return std::nullopt;
    PyArrayObject* array = as_array(X);
    const int dimensions = PyArray_NDIM(array);
    if (dimensions != 1 && dimensions != 2) return std::nullopt;
    const std::optional<ArrayColumn> first = first_column(X);
    if (!first) return std::nullopt;
    if (dimensions == 1) return Table{*first, 0, 1, 1};
    return Table{*first, PyArray_STRIDE(array, 1), static_cast<std::size_t>(PyArray_DIM(array, 1)), 2};
}

Ref new_objects_like(const TableMemory& memory) {
    const std::array<npy_intp, 2> shape{static_cast<npy_intp>(memory.first.rows), static_cast<npy_intp>(memory.width)};
    return new_objects(std::span(shape).first(static_cast<std::size_t>(memory.dimensions)));
}

void write_rows(const Table& table, const Replacement& replacement, Object Y, std::size_t first, std::size_t last) {
    const npy_intp row_size = PyArray_STRIDE(as_array(Y), 0);
    const std::size_t step = table.width == 1 ? last - first : rows_together;
    for (std::size_t row = first; row < last; row += step) {
        const auto offset = static_cast<std::ptrdiff_t>(row);
        for (std::size_t j = 0; j < table.width; ++j) {
            const Mask& mask = replacement.masks[j];
            char* out = PyArray_BYTES(as_array(Y)) + offset * row_size + static_cast<npy_intp>(j * sizeof(PyObject*));
            write_part({rows_of(table.column(j), row, std::min(last, row + step)),
                        {mask.first + offset * mask.stride, mask.stride},
                        out,
                        row_size},
                       replacement);
        }
    }
}

std::size_t rows_in_block(const TableMemory& memory) noexcept {
    return std::max(std::size_t{1}, rows_between_signals / memory.width);
}

}  // namespace quorin::transform
