#include "columns/objects.hpp"

#include <array>
#include <bit>
#include <cstring>

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
constexpr std::size_t longest_made = 64;

// The characters as one byte each, read and written two at a time. False where one of them is not ASCII.
bool narrow(const std::uint32_t* characters, std::size_t length, std::array<char, longest_made>& narrowed) noexcept {
    std::uint64_t all = 0;
    std::size_t i = 0;
    for (; i + 2 <= length; i += 2) {
        const std::uint64_t two = kernels::eight_bytes(characters + i);
        all |= two;
        const auto bytes = static_cast<std::uint16_t>(two | two >> 24U);
        std::memcpy(narrowed.data() + i, &bytes, sizeof bytes);
    }
    if (i < length) {
        all |= characters[i];
        narrowed[i] = static_cast<char>(characters[i]);
    }
    constexpr std::uint64_t beyond_ascii = ~std::uint64_t{0x0000007f0000007f};
    return (all & beyond_ascii) == 0;
}

Ref text_of(const std::uint32_t* characters, std::size_t length) {
    std::array<char, longest_made> narrowed;
    if (std::endian::native != std::endian::little || length < shortest_made || length > longest_made ||
        !narrow(characters, length, narrowed)) {
        return Ref::take(PyUnicode_FromKindAndData(PyUnicode_4BYTE_KIND, characters, static_cast<Py_ssize_t>(length)));
    }
    Ref text = Ref::take(PyUnicode_New(static_cast<Py_ssize_t>(length), 0x7f));
    std::memcpy(reinterpret_cast<char*>(text.get()) + sizeof(PyASCIIObject), narrowed.data(), length);
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
