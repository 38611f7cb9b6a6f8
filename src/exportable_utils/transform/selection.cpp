#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

void warn(const Operand& text) {
    global("logger"_py).attr("warning"_py)({text.object});
}

// The condition index < 0 and index >= x_numelts holds for no number, so numpy reports an index that is out of range.
// It may hold for an object with its own operators; the message then raises TypeError, because the counter i is an int.
bool warned_of_range(Object columns_indices_list, Object x_numelts) {
    const Ref indices = iterate(columns_indices_list);
    Py_ssize_t i = 0;
    while (const Ref index = next(indices)) {
        if (less(index, 0) && truth(compare(index, Py_GE, x_numelts))) {
            Ref text = add("numpy_select_columns(): train_sample_columns_index_list "_py, i);
            text = add(add(text, "th index is "_py), index);
            text = add(add(text, ": this is out of dataset column range [0,"_py), x_numelts);
            warn(add(text, "-1]"_py));
            warn("No column selection will occur."_py);
            return true;
        }
        ++i;
    }
    return false;
}

}  // namespace

constinit const Definition numpy_select_columns{
    .name = "numpy_select_columns",
    .parameters = {{"X"}, {"columns_indices_list"}},
    .doc = R"(Picks columns out of a data matrix.

Parameters
----------
X : numpy.ndarray of shape (n, m), or list
    A list is selected from along its only axis; one of a single element counts as a single column.
columns_indices_list : list of int
    Columns in the order wanted; repeats and negative indices as numpy takes them. Anything but a non-empty list
    selects nothing.

Returns
-------
Y : numpy.ndarray, list or `X` itself
    The selection, or `X` where none takes place.
columns_selected_flag : bool
    Whether one took place.

Raises
------
IndexError
    For an index out of range and for a one-dimensional array.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_select_columns
>>> numpy_select_columns(np.arange(6).reshape(2, 3), [2, 0])
(array([[2, 0],
       [5, 3]]), True)
)",
    .body = [](Object X, Object columns_indices_list) -> Ref {
        if (columns_indices_list.is_none() || !is_instance(columns_indices_list, &PyList_Type) ||
            !truth(columns_indices_list)) {
            return tuple({X, false});
        }
        const bool from_list = is_instance(X, &PyList_Type);
        const Ref x_ndim = from_list ? whole(length(X)) : X.attr("ndim"_py);
        const Ref x_numelts = from_list ? whole(length(X)) : column_count(X);
        if (equal(x_ndim, 1)) {
            warn("numpy_select_columns(): Input array has only one column. No column selection will occur."_py);
            return tuple({X, false});
        }
        if (warned_of_range(columns_indices_list, x_numelts)) return tuple({X, false});
        if (from_list) {
            const Ref array = global("np"_py).attr("array"_py)({X});
            return tuple({list_of(item(array, columns_indices_list)), true});
        }
        const Ref every_row = every();
        return tuple({item(X, tuple({every_row, columns_indices_list})), true});
    },
};

constinit const Definition numpy_flatten_column{
    .name = "numpy_flatten_column",
    .parameters = {{"X"}, {"remove_second_dim", true}},
    .doc = R"(Brings a column of one-element arrays down to one dimension.

Parameters
----------
X : numpy.ndarray of shape (n, 1) or (n,), or list of arrays
remove_second_dim : bool
    Pass the flattened array through `numpy_remove_second_dim`.

Returns
-------
numpy.ndarray of shape (n,), or `X` itself
    `X` itself unless its first element is an array whose first dimension is 1.

Raises
------
IndexError
    For an empty `X`.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_flatten_column
>>> numpy_flatten_column(np.array([[1], [2]]))
array([1, 2])
)",
    .lookups = {"np.ndarray", "np.concatenate", "numpy_remove_second_dim"},
    .body = [](Object X, Object remove_second_dim) -> Ref {
        const Ref first = item(X, 0);
        if (!is_instance(first, global("np"_py).attr("ndarray"_py)) ||
            !equal(item(item(X, 0).attr("shape"_py), 0), 1)) {
            return Ref::share(X);
        }
        Ref Y = global("np"_py).attr("concatenate"_py)({X}).attr("ravel"_py)();
        if (truth(remove_second_dim)) Y = global("numpy_remove_second_dim"_py)({Y});
        return Y;
    },
};

constinit const Definition numpy_remove_second_dim{
    .name = "numpy_remove_second_dim",
    .parameters = {{"X"}},
    .doc = R"(Flattens a single-column matrix.

Parameters
----------
X : numpy.ndarray
    Positional only.

Returns
-------
numpy.ndarray
    `X.reshape(-1)` where `X` has more than one dimension and its second one is 1; `X` itself otherwise.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_remove_second_dim
>>> numpy_remove_second_dim(np.zeros((4, 1))).shape
(4,)
)",
    .body = [](Object X) -> Ref {
        if (greater(X.attr("ndim"_py), 1) && equal(column_count(X), 1)) {
            return X.attr("reshape"_py)({-1});
        }
        return Ref::share(X);
    },
};

constinit const Definition numpy_permute_array{
    .name = "numpy_permute_array",
    .parameters = {{"X"}, {"permutation_indices", None}, {"axis", None}},
    .doc = R"(Performs a permultation on rows or columns of an nparray based on a list of permuted
indices.

:param permutation_indices: the list of permutation indices. If empty no permutation is performed. Default empty.
:param axis: if 0 permute columns, if 1 permute columns. Default value is 0

Axis 0 permutes columns and axis 1 permutes rows; the inverse of the permutation is applied, so that [2, 0, 1]
takes the columns in the order [1, 2, 0].

Parameters
----------
X : numpy.ndarray of shape (n, m)
permutation_indices : list of int, optional
axis : int, optional
    Any value but 0 and 1 permutes nothing.

Returns
-------
numpy.ndarray of shape (n, m)
    Always a copy.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_permute_array
>>> numpy_permute_array(np.array([[10, 11, 12]]), [2, 0, 1])
array([[11, 12, 10]])
)",
    .body = [](Object X, Object permutation_indices, Object axis) -> Ref {
        const Ref l_permutation_indices = or_new_list(permutation_indices);
        const Ref l_axis = axis.is_none() ? whole(0) : Ref::share(axis);
        if (!truth(l_permutation_indices)) return X.attr("copy"_py)();
        const Ref i = global("np"_py).attr("argsort"_py)({l_permutation_indices});
        if (!equal(l_axis, 0) && !equal(l_axis, 1)) return X.attr("copy"_py)();
        const Ref everything = every();
        const Ref key = equal(l_axis, 0) ? tuple({everything, i}) : tuple({i, everything});
        return item(X, key).attr("copy"_py)();
    },
};

}  // namespace quorin::transform
