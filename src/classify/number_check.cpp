#include <optional>

#include "classify/classify.hpp"
#include "columns/markers.hpp"
#include "interp/operations.hpp"
#include "interp/originals.hpp"
#include "interp/space.hpp"
#include "interp/table.hpp"

namespace quorin::classify {

namespace {

// A column of texts, and a list in which only texts can be met. Nothing is asked of foreign code, so that looking at
// the rows behind the first that is no number would show nowhere.
std::optional<bool> native_isintstr(Object X, Object missing_values_reference_list) {
    if (!originals_in_place()) return std::nullopt;
    const std::optional<columns::Column> column = columns::flat_column(X, columns::Storage::objects);
    if (!column) return std::nullopt;
    const std::optional<columns::Markers> missing = columns::plain_markers(missing_values_reference_list);
    if (!missing) return std::nullopt;
    const columns::ObjectCells cells(*column);
    bool flag = true;
    for (std::size_t row = 0; row < column->rows; ++row) {
        cells.prefetch(row + kernels::prefetch_distance);
        kernels::TextView text{};
        if (cells.read(row, text) != kernels::Cell::text) return std::nullopt;
        if (missing->texts.find(text) != 0) continue;
        switch (kernels::classify_number(text)) {
            case kernels::NumberText::integer:
                break;
            case kernels::NumberText::ask:
                return std::nullopt;
            case kernels::NumberText::real:
            case kernels::NumberText::none:
                flag = false;
                break;
        }
    }
    return flag;
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
