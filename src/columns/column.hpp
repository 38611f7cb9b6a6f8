// A column as it lies in memory, for native routes.
#pragma once

#include <cmath>
#include <optional>

#include "interp/numpy.hpp"
#include "kernels/cells.hpp"
#include "kernels/text_facts.hpp"

namespace quorin::columns {

enum class Storage { objects, fixed_text, float64, float32, integer, boolean };

// The array must stay alive and unchanged as long as this is used: until foreign code can run.
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

// The column that numpy_flatten_column() makes of an array of shape (n,) or (n, 1); nothing for anything but an exact,
// non-empty array of a known dtype.
std::optional<Column> plain_column(Object X) noexcept;

// Elements of an object array, as far as kernels over texts know them.
class ObjectCells {
  public:
    explicit ObjectCells(const Column& column) noexcept : column_(column) {}
    [[nodiscard]] std::size_t size() const noexcept { return column_.rows; }
    void prefetch(std::size_t row) const noexcept {
        if (row >= column_.rows) return;
        const char* object = reinterpret_cast<const char*>(column_.object(row));
        __builtin_prefetch(object);
        __builtin_prefetch(object + sizeof(PyObject) + 3 * sizeof(void*));
    }
    kernels::Cell read(std::size_t row, kernels::TextView& text) const noexcept;

  private:
    Column column_;
};

// Elements of an array of fixed-width text, four bytes a character, filled up with zeros.
class FixedTextCells {
  public:
    explicit FixedTextCells(const Column& column) noexcept : column_(column) {}
    [[nodiscard]] std::size_t size() const noexcept { return column_.rows; }
    void prefetch(std::size_t /*row*/) const noexcept {}
    kernels::Cell read(std::size_t row, kernels::TextView& text) const noexcept {
        const auto* characters = reinterpret_cast<const std::uint32_t*>(column_.at(row));
        std::size_t length = column_.width / sizeof(std::uint32_t);
        while (length > 0 && characters[length - 1] == 0) --length;
        text = {characters, length, 4};
        return kernels::Cell::text;
    }

  private:
    Column column_;
};

// Null as pandas means it, among the types that native routes know.
inline bool is_plain_null(PyObject* value) noexcept {
    return value == Py_None || (PyFloat_CheckExact(value) && std::isnan(PyFloat_AS_DOUBLE(value)));
}

// The view of an exact str, or nothing where its characters do not lie side by side.
std::optional<kernels::TextView> view_of(PyObject* text) noexcept;

extern const kernels::Script script;

}  // namespace quorin::columns
