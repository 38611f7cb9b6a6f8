#include <cmath>
#include <optional>

#include "core/column.hpp"
#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/references/list_membership.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

// Whether int() takes every element; gives up where it would raise anything but ValueError.
class IntegerTest {
  public:
    [[nodiscard]] bool passed() const noexcept { return passed_; }
    static bool on_listed(std::size_t /*row*/) noexcept { return true; }
    static bool on_integer(std::size_t /*row*/, PyObject* /*value*/) noexcept { return true; }
    bool on_float(std::size_t /*row*/, double value) noexcept {
        if (std::isnan(value)) passed_ = false;
        return !std::isinf(value);
    }
    bool on_text(std::size_t /*row*/, core::TextView text) {
        switch (core::classify_text(text, character_tables)) {
            case core::TextClass::integer:
                return true;
            case core::TextClass::unsettled:
                return ask(text);
            case core::TextClass::real:
            case core::TextClass::plain:
                break;
        }
        passed_ = false;
        return true;
    }

  private:
    bool ask(core::TextView text) {
        const Ref copy =
            Ref::adopt(PyUnicode_FromKindAndData(text.width, text.characters, static_cast<Py_ssize_t>(text.size)));
        if (copy && Ref::adopt(PyLong_FromUnicodeObject(copy.get(), 10))) return true;
        const bool refused = PyErr_ExceptionMatches(PyExc_ValueError) != 0;
        PyErr_Clear();
        passed_ = false;
        return refused;
    }
    bool passed_ = true;
};

// Nothing is asked of foreign code, so that looking at the rows behind the first that is no number would show nowhere.
std::optional<bool> native_isintstr(Object X, Object missing_values_reference_list) {
    if (!originals_in_place()) return std::nullopt;
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column) return std::nullopt;
    const std::optional<references::References> missing =
        references::read_references(missing_values_reference_list, *column);
    if (!missing) return std::nullopt;
    IntegerTest test;
    switch (column->storage) {
        case Storage::objects:
            if (!references::visit_unlisted(*column, *missing, test)) return std::nullopt;
            break;
        case Storage::fixed_text:
            if (!references::visit_unlisted_texts(*column, *missing, test)) return std::nullopt;
            break;
        case Storage::float64:
            for (std::size_t row = 0; row < column->rows; ++row) {
                const double value = core::load<double>(*column, row);
                if (!references::is_listed(value, *missing) && !test.on_float(row, value)) return std::nullopt;
            }
            break;
        case Storage::float32:
            return std::nullopt;
        case Storage::integer:
        case Storage::boolean:
            break;
    }
    return test.passed();
}

}  // namespace

constinit const Definition numpy_isintstr{
    .name = "numpy_isintstr",
    .parameters = {{"X"}, {"missing_values_reference_list", None}},
    .doc = R"(Returns true if a 1-d numpy array consists of ints/floats or strings that represent ints/floats,
excluding the missing values.

:param X: 1-d numpy array of strings or ints/floats
:param missing_values_reference_list: list of missing values
:return: true or false

What counts as a number is `isint`'s to say. Every row is looked at, also behind the first that is none.

Parameters
----------
X : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional
    Values to pass over, matched by equality; none by default.

Returns
-------
bool

Raises
------
TypeError, OverflowError
    Whatever `isint` raises: for None, for an infinite float.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_isintstr
>>> numpy_isintstr(np.array(["1", "?", "30"], dtype=object), ["?"])
True
)",
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        if (const auto flag = native_isintstr(X, missing_values_reference_list)) return Ref::truth(*flag);
        const Ref l_missing_values_reference_list = or_new_list(missing_values_reference_list);
        bool flag = true;
        const Py_ssize_t rows = count(row_count(X));
        for (Py_ssize_t i = 0; i < rows; ++i) {
            if (contains(l_missing_values_reference_list, item(X, i))) continue;
            if (!truth(global("isint"_py)({item(X, i)}))) flag = false;
        }
        return Ref::truth(flag);
    },
};

}  // namespace quorin::classify
