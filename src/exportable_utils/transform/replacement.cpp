#include "exportable_utils/transform/replacement_native.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

Ref mask_of(Object Xcol, Object reference_values_list_col, Object invert_flag) {
    const bool invert = truth(invert_flag);
    Ref mask = global("numpy_isin"_py)({Xcol, reference_values_list_col});
    return invert ? inverted(mask) : std::move(mask);
}

}  // namespace

constinit const Definition numpy_putmask{
    .name = "numpy_putmask",
    .parameters = {{"X"}, {"replace_values_mask"}, {"filling_value"}},
    .doc = R"(Copies an array into an object array, with a value put where a mask is true.

Parameters
----------
X : numpy.ndarray
replace_values_mask : array_like of bool
filling_value : object
    A sequence is used element by element, as `numpy.putmask` does.

Returns
-------
numpy.ndarray of object
    Always new.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_putmask
>>> numpy_putmask(np.array([1, 2]), [True, False], "?")
array(['?', 2], dtype=object)
)",
    .body = [](Object X, Object replace_values_mask, Object filling_value) -> Ref {
        if (Ref Y = native_putmask(X, replace_values_mask, filling_value)) return Y;
        Ref Y = X.attr("astype"_py)({&PyBaseObject_Type});
        global("np"_py).attr("putmask"_py)({Y, replace_values_mask, filling_value});
        return Y;
    },
};

constinit const Definition numpy_replace_values{
    .name = "numpy_replace_values",
    .parameters = {{"X"}, {"filling_value"}, {"reference_values_list"}, {"invert_flag", false}},
    .doc = R"(Puts a value in place of the entries that match reference values.

:param X: Input matrix
:param reference_values_list: reference list of lists of known values for each column. if it is a 1-dimensional list, then
it is applicable to each column
:param filling_value: special value assigned array entries that match the reference values
:param invert_flag: If True replace the values NOT in the reference values list. Default False

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
    Never written into.
filling_value : object
reference_values_list : list
    One list for all columns, or, where its first element is a list, one for each.
invert_flag : bool

Returns
-------
numpy.ndarray of object, shape (n, m) or (n,), or `X` itself
    `X` itself for an empty list, and for one dimension without a match.

Raises
------
IndexError
    For fewer lists than columns, and for one dimension without rows.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_replace_values
>>> numpy_replace_values(np.array([[1, 2], [3, 1]]), -1, [1])
array([[-1, 2],
       [3, -1]], dtype=object)
)",
    .body = [](Object X, Object filling_value, Object reference_values_list, Object invert_flag) -> Ref {
        if (Ref Y = native_replace_values(X, filling_value, reference_values_list, invert_flag)) return Y;
        if (!truth(reference_values_list)) return Ref::share(X);
        const bool list2_flag = is_instance(item(reference_values_list, 0), &PyList_Type);
        const Ref num_rows = row_count(X);
        const Ref num_columns = equal(X.attr("ndim"_py), 1) ? whole(1) : column_count(X);
        Ref Y = global("np"_py).attr("empty"_py)({tuple({num_rows, num_columns})}, {{"dtype"_py, &PyBaseObject_Type}});
        const Ref every_row = every();
        const Py_ssize_t columns = count(num_columns);
        for (Py_ssize_t j = 0; j < columns; ++j) {
            const bool flat = equal(X.attr("ndim"_py), 1);
            const Ref Xcol = flat ? Ref::share(X) : matrix_column(X, j);
            // Not used, but an array without rows fails here.
            const Ref Ycol = flat ? item(Y, j) : Ref::share(Y);
            const Ref reference_values_list_col =
                list2_flag ? item(reference_values_list, j) : Ref::share(reference_values_list);
            const Ref replace_values_mask = mask_of(Xcol, reference_values_list_col, invert_flag);
            const bool any = truth(global("np"_py).attr("any"_py)({replace_values_mask}));
            const bool whole_result = equal(X.attr("ndim"_py), 1);
            Ref column =
                any ? global("numpy_putmask"_py)({Xcol, replace_values_mask, filling_value}) : Ref::share(Xcol);
            if (whole_result) {
                Y = std::move(column);
            } else {
                set_item(Y, tuple({every_row, j}), column);
            }
        }
        return Y;
    },
};

}  // namespace quorin::transform
