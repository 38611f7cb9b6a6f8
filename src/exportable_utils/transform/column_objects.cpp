#include "exportable_utils/transform/column_objects.hpp"

#include "core/column.hpp"
#include "python/new_text.hpp"

namespace quorin::transform {

namespace {

template <class ObjectAt>
void write(const ArrayColumn& column, const Replaced& replaced, char* out, std::ptrdiff_t stride, ObjectAt object_at) {
    for (std::size_t row = 0; row < column.rows; ++row, out += stride) {
        Ref object = replaced.at(row) ? Ref::share(replaced.filling) : object_at(row);
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

// A place that nothing was put into yet counts as None.
void write_shared(const ArrayColumn& column, const Replaced& replaced, char* out, std::ptrdiff_t stride) {
    write(column, replaced, out, stride, [&](std::size_t row) {
        if (row + core::prefetch_distance < column.rows) {
            __builtin_prefetch(column.object(row + core::prefetch_distance), 1);
        }
        PyObject* value = column.object(row);
        return Ref::share(value == nullptr ? Py_None : value);
    });
}

void write_texts(const ArrayColumn& column, const Replaced& replaced, char* out, std::ptrdiff_t stride) {
    const ArrayTextCells cells(column);
    write(column, replaced, out, stride, [&](std::size_t row) {
        core::TextView text{};
        cells.read(row, text);
        return new_text(text);
    });
}

}  // namespace

void write_objects(const ArrayColumn& column, const Replaced& replaced, char* out, std::ptrdiff_t stride) {
    if (column.storage == Storage::objects) {
        write_shared(column, replaced, out, stride);
    } else if (column.storage == Storage::fixed_text) {
        write_texts(column, replaced, out, stride);
    } else {
        core::with_number_type(column, [&](auto type) {
            write(column, replaced, out, stride,
                  [&](std::size_t row) { return object_of(core::load<decltype(type)>(column, row)); });
            return true;
        });
    }
}

}  // namespace quorin::transform
