// A column as it lies in memory, for native routes.
#pragma once

#include <bit>
#include <cmath>
#include <optional>

#include "interp/numpy.hpp"
#include "kernels/cells.hpp"
#include "kernels/fixed_text.hpp"
#include "kernels/text_facts.hpp"

namespace quorin::columns {

enum class Storage { objects, fixed_text, float64, float32, integer, boolean };

// The array must stay alive and unchanged as long as this is used: until foreign code can run, and that it can whenever
// a list or a tuple is made, which may start the collector.
struct Column {
    PyArrayObject* array;
    Storage storage;
    const char* data;
    std::ptrdiff_t stride;
    std::size_t rows;
    std::size_t width;  // bytes of one element

    [[nodiscard]] const char* at(std::size_t row) const noexcept {
        return data + static_cast<std::ptrdiff_t>(row) * stride;
    }
    [[nodiscard]] PyObject* object(std::size_t row) const noexcept {
        return *reinterpret_cast<PyObject* const*>(at(row));
    }
};

// The first column of X, which is an exact array of one dimension or more, if it is not empty and its dtype is known.
std::optional<Column> first_column(Object X) noexcept;

// The column that numpy_flatten_column() makes of an array of shape (n,) or (n, 1); nothing for anything but an exact,
// non-empty array of a known dtype.
std::optional<Column> plain_column(Object X) noexcept;

// The same for an array of one dimension only, and of one storage where that matters.
std::optional<Column> flat_column(Object X) noexcept;
std::optional<Column> flat_column(Object X, Storage storage) noexcept;

// Rows that share memory would see what is written into one another.
bool rows_lie_apart(const Column& column) noexcept;

// Null as pandas means it, among the types that native routes know.
inline bool is_plain_null(PyObject* value) noexcept {
    return value == Py_None || (PyFloat_CheckExact(value) && std::isnan(PyFloat_AS_DOUBLE(value)));
}

inline bool is_exact_text(PyObject* value) noexcept {
    return value != nullptr && PyUnicode_CheckExact(value);
}

// Elements of an object array, as far as kernels over texts know them.
class ObjectCells {
  public:
    explicit ObjectCells(const Column& column) noexcept : column_(column) {}
    [[nodiscard]] std::size_t size() const noexcept { return column_.rows; }
    // Of a compact ASCII text, the line of its header and that of its first characters, which may be one and the same.
    // To gcc a call that does nothing but prefetch has no effect and can go, unless it is inlined before that is known.
    [[gnu::always_inline]] void prefetch(std::size_t row) const noexcept {
        if (row >= column_.rows) return;
        const char* object = reinterpret_cast<const char*>(column_.object(row));
        __builtin_prefetch(object);
        __builtin_prefetch(object + sizeof(PyASCIIObject));
    }
    // A text that an old interpreter has yet to bring together has length 0 until then.
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t length) const noexcept {
        PyObject* value = column_.object(row);
        return value != nullptr && PyUnicode_CheckExact(value) &&
               static_cast<std::size_t>(reinterpret_cast<const PyASCIIObject*>(value)->length) > length;
    }
    [[nodiscard]] bool glance(std::size_t row, kernels::ShortText& text) const noexcept {
        PyObject* value = column_.object(row);
        if (value == nullptr || !PyUnicode_CheckExact(value)) return false;
        const auto* header = reinterpret_cast<const PyASCIIObject*>(value);
        const auto length = static_cast<std::size_t>(header->length);
        if (!(header->state.compact & header->state.ascii) || length - 1 >= 8) return false;
        const char* end = reinterpret_cast<const char*>(value) + sizeof(PyASCIIObject) + length;
        text = {kernels::eight_bytes(end - 8), length};
        return std::endian::native == std::endian::little;
    }
    kernels::Cell read(std::size_t row, kernels::TextView& text) const noexcept {
        PyObject* value = column_.object(row);
        if (value != nullptr && PyUnicode_CheckExact(value)) {
            // The characters of a compact text follow its header, which is longer unless all of them are ASCII.
            const auto* header = reinterpret_cast<const PyASCIIObject*>(value);
            if (header->state.compact) {
                const bool ascii = header->state.ascii;
                const char* characters = reinterpret_cast<const char*>(value) +
                                         (ascii ? sizeof(PyASCIIObject) : sizeof(PyCompactUnicodeObject));
                text = {characters, static_cast<std::size_t>(header->length), static_cast<int>(header->state.kind),
                        ascii && std::endian::native == std::endian::little};
                return kernels::Cell::text;
            }
        } else if (value != nullptr && is_plain_null(value)) {
            return kernels::Cell::null;
        }
        const std::optional<kernels::TextView> uncommon = uncommon_text(value);
        if (!uncommon) return kernels::Cell::other;
        text = *uncommon;
        return kernels::Cell::text;
    }

  private:
    static std::optional<kernels::TextView> uncommon_text(PyObject* value) noexcept;
    Column column_;
};

// Elements of an array of fixed-width text.
class FixedTextCells : public kernels::FixedText {
  public:
    explicit FixedTextCells(const Column& column) noexcept
        : FixedText(column.data, column.stride, column.rows, column.width / sizeof(std::uint32_t)) {}
};

// The view of an exact str, or nothing where its characters do not lie side by side.
inline std::optional<kernels::TextView> view_of(PyObject* text) noexcept {
#if PY_VERSION_HEX < 0x030C0000
    if (!is_ready_text(text)) return std::nullopt;
#endif
    const Characters characters = characters_of(text);
    return kernels::TextView{characters.data, static_cast<std::size_t>(characters.length), characters.width};
}

extern const kernels::Script script;

}  // namespace quorin::columns
