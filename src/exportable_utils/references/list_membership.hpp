// `element in list`, for the cells of a column and a list of reference values. Unlike in numpy_isin(), nulls are
// compared by identity: a NaN is in a list only if the identical object is.
#pragma once

#include <optional>

#include "exportable_utils/references/references.hpp"

namespace quorin::references {

inline bool is_listed(core::TextView text, const References& references) noexcept {
    return references.texts.find(text) != 0;
}

inline bool is_listed(double value, const References& references) noexcept {
    return !references.numbers.empty() && references.bits_of_number(value) != 0;
}

// The same for None and NaN.
bool is_same_null_listed(PyObject* null, const References& references) noexcept;

// The same for an exact int or bool. Returns nullopt if the numbers are too large to compare.
std::optional<bool> is_integer_listed(PyObject* integer, const References& references) noexcept;

// Visits the rows of a column of objects: calls on_listed(row) for each element that is in the list, and for each other
// element one of
//     on_text(row, TextView), on_float(row, double), on_integer(row, PyObject*).
// Returns false, to give up, if one of these does, and at an element of another type or a None that is not listed. The
// column is borrowed: the visitor must not run foreign code.
template <class Visitor>
bool visit_unlisted(const ArrayColumn& column, const References& references, Visitor& visitor) {
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        bool listed = false;
        bool done = true;
        const core::Cell cell = cells.read(row, text);
        if (cell == core::Cell::text) {
            listed = is_listed(text, references);
            if (!listed) done = visitor.on_text(row, text);
        } else {
            PyObject* value = column.object(row);
            if (value == nullptr) return false;
            if (cell == core::Cell::null) {
                listed = references.null_bits != 0 && is_same_null_listed(value, references);
                if (!listed) done = value != Py_None && visitor.on_float(row, PyFloat_AS_DOUBLE(value));
            } else if (PyFloat_CheckExact(value)) {
                const double number = PyFloat_AS_DOUBLE(value);
                listed = is_listed(number, references);
                if (!listed) done = visitor.on_float(row, number);
            } else if (PyLong_CheckExact(value) || PyBool_Check(value)) {
                const std::optional<bool> in_list = is_integer_listed(value, references);
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

// The same for a column of fixed-width text, whose elements can only equal references that are texts.
template <class Visitor>
bool visit_unlisted_texts(const ArrayColumn& column, const References& references, Visitor& visitor) {
    const ArrayTextCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        core::TextView text{};
        cells.read(row, text);
        if (!(is_listed(text, references) ? visitor.on_listed(row) : visitor.on_text(row, text))) return false;
    }
    return true;
}

}  // namespace quorin::references
