#include "columns/objects.hpp"

#include "columns/numbers.hpp"

namespace quorin::columns {

namespace {

template <class ObjectAt>
void write(const Column& column, const Replaced& replaced, char* out, std::ptrdiff_t stride, ObjectAt object_at) {
    for (std::size_t row = 0; row < column.rows; ++row, out += stride) {
        Ref object = replaced.at(row) ? Ref::share(replaced.filling) : object_at(row);
        *reinterpret_cast<PyObject**>(out) = object.give();
    }
}

// A text of one character is one of those that the interpreter keeps.
constexpr std::size_t shortest_made = 2;

Ref text_of(const std::uint32_t* characters, std::size_t length) {
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < length; ++i) all |= characters[i];
    if (all > 0x7f || length < shortest_made) {
        return Ref::take(PyUnicode_FromKindAndData(PyUnicode_4BYTE_KIND, characters, static_cast<Py_ssize_t>(length)));
    }
    Ref text = Ref::take(PyUnicode_New(static_cast<Py_ssize_t>(length), 0x7f));
    auto* to = reinterpret_cast<std::uint8_t*>(text.get()) + sizeof(PyASCIIObject);
    for (std::size_t i = 0; i < length; ++i) to[i] = static_cast<std::uint8_t>(characters[i]);
    return text;
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
void write_shared(const Column& column, const Replaced& replaced, char* out, std::ptrdiff_t stride) {
    write(column, replaced, out, stride, [&](std::size_t row) {
        if (row + kernels::prefetch_distance < column.rows) {
            __builtin_prefetch(column.object(row + kernels::prefetch_distance), 1);
        }
        PyObject* value = column.object(row);
        return Ref::share(value == nullptr ? Py_None : value);
    });
}

void write_texts(const Column& column, const Replaced& replaced, char* out, std::ptrdiff_t stride) {
    const FixedTextCells cells(column);
    write(column, replaced, out, stride, [&](std::size_t row) {
        kernels::TextView text{};
        cells.read(row, text);
        return text_of(static_cast<const std::uint32_t*>(text.characters), text.length);
    });
}

}  // namespace

void write_objects(const Column& column, const Replaced& replaced, char* out, std::ptrdiff_t stride) {
    if (column.storage == Storage::objects) {
        write_shared(column, replaced, out, stride);
    } else if (column.storage == Storage::fixed_text) {
        write_texts(column, replaced, out, stride);
    } else if (column.storage == Storage::boolean) {
        write(column, replaced, out, stride, [&](std::size_t row) { return Ref::truth(*column.at(row) != 0); });
    } else {
        with_number_type(column, [&](auto type) {
            write(column, replaced, out, stride,
                  [&](std::size_t row) { return object_of(load<decltype(type)>(column, row)); });
            return true;
        });
    }
}

}  // namespace quorin::columns
