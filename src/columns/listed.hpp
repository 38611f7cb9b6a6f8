// `element in list`, for the cells of a column and a list of markers. Unlike numpy_isin() this knows no nulls: None is
// in a list that holds None, and NaN in one that holds the same object.
#pragma once

#include <optional>

#include "columns/markers.hpp"

namespace quorin::columns {

inline bool is_listed(kernels::TextView text, const Markers& list) noexcept {
    return list.texts.find(text) != 0;
}

inline bool is_listed(double value, const Markers& list) noexcept {
    return !list.numbers.empty() && list.bits_of_number(value) != 0;
}

// For None and for NaN.
bool is_same_null_listed(PyObject* null, const Markers& list) noexcept;

// For an exact int or bool; nothing where the numbers are too large to compare.
std::optional<bool> is_integer_listed(PyObject* integer, const Markers& list) noexcept;

// Walks over an object array. `visitor` is told each element that is not in the list, as one of
//     on_text(row, TextView), on_float(row, double), on_integer(row, PyObject*)
// and each that is by on_listed(row); it gives false to give up. An element that is none of these, or a None that is
// not listed, gives up as well: false.
template <class Visitor>
bool visit_unlisted(const Column& column, const Markers& list, Visitor& visitor) {
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + kernels::prefetch_distance);
        kernels::TextView text{};
        bool listed = false;
        bool done = true;
        const kernels::Cell cell = cells.read(row, text);
        if (cell == kernels::Cell::text) {
            listed = is_listed(text, list);
            if (!listed) done = visitor.on_text(row, text);
        } else {
            PyObject* value = column.object(row);
            if (value == nullptr) return false;
            if (cell == kernels::Cell::null) {
                listed = list.null_bits != 0 && is_same_null_listed(value, list);
                if (!listed) done = value != Py_None && visitor.on_float(row, PyFloat_AS_DOUBLE(value));
            } else if (PyFloat_CheckExact(value)) {
                const double number = PyFloat_AS_DOUBLE(value);
                listed = is_listed(number, list);
                if (!listed) done = visitor.on_float(row, number);
            } else if (PyLong_CheckExact(value) || PyBool_Check(value)) {
                const std::optional<bool> in_list = is_integer_listed(value, list);
                if (!in_list) return false;
                listed = *in_list;
                if (!listed) done = visitor.on_integer(row, value);
            } else {
                return false;
            }
        }
        if (listed) done = visitor.on_listed(row);
        if (!done) return false;
    }
    return true;
}

// The same for an array of fixed-width text, whose elements no marker but a text equals.
template <class Visitor>
bool visit_unlisted_texts(const Column& column, const Markers& list, Visitor& visitor) {
    const FixedTextCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        kernels::TextView text{};
        cells.read(row, text);
        if (!(is_listed(text, list) ? visitor.on_listed(row) : visitor.on_text(row, text))) return false;
    }
    return true;
}

}  // namespace quorin::columns
