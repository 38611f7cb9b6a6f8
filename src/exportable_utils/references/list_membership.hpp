// `element in list`, for the cells of a column and a list of markers. Unlike numpy_isin() this knows no nulls: None is
// in a list that holds None, and NaN in one that holds the same object.
#pragma once

#include <optional>

#include "exportable_utils/references/references.hpp"

namespace quorin::references {

inline bool is_listed(core::TextView text, const References& list) noexcept {
    return list.texts.find(text) != 0;
}

inline bool is_listed(double value, const References& list) noexcept {
    return !list.numbers.empty() && list.bits_of_number(value) != 0;
}

// For None and for NaN.
bool is_same_null_listed(PyObject* null, const References& list) noexcept;

// For an exact int or bool; nothing where the numbers are too large to compare.
std::optional<bool> is_integer_listed(PyObject* integer, const References& list) noexcept;

// Walks over an object array. `visitor` is told each element that is not in the list, as one of
//     on_text(row, TextView), on_float(row, double), on_integer(row, PyObject*)
// and each that is by on_listed(row); it gives false to give up. An element that is none of these, or a None that is
// not listed, gives up as well: false.
template <class Visitor>
bool visit_unlisted(const ArrayColumn& column, const References& list, Visitor& visitor) {
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        bool listed = false;
        bool done = true;
        const core::Cell cell = cells.read(row, text);
        if (cell == core::Cell::text) {
            listed = is_listed(text, list);
            if (!listed) done = visitor.on_text(row, text);
        } else {
            PyObject* value = column.object(row);
            if (value == nullptr) return false;
            if (cell == core::Cell::null) {
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
bool visit_unlisted_texts(const ArrayColumn& column, const References& list, Visitor& visitor) {
    const ArrayTextCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        core::TextView text{};
        cells.read(row, text);
        if (!(is_listed(text, list) ? visitor.on_listed(row) : visitor.on_text(row, text))) return false;
    }
    return true;
}

}  // namespace quorin::references
