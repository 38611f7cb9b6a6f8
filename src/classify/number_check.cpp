#include "classify/classify.hpp"
#include "interp/operations.hpp"
#include "interp/space.hpp"
#include "interp/table.hpp"

namespace quorin::classify {

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
