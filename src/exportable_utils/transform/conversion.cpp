#include "exportable_utils/transform/conversion_native.hpp"
#include "exportable_utils/transform/text_native.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/errors.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/numpy.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

// Y[i] = float(X[i]), or NaN and two printed lines where that fails.
void convert_or_report(Object X, Object Y, const Operand& i) {
    try {
        set_item(Y, i, Object(&PyFloat_Type)({item(X, i)}));
    } catch (const PythonError& error) {
        if (!PythonError::matches(PyExc_Exception)) throw;
        const Handling handling(error, "numpy_floatstr2float");
        set_item(Y, i, global("np"_py).attr("nan"_py));
        print(handling.exception());
        print(concat({"Setting value "_py, text_of(item(X, i)), " to NaN"_py}));
    }
}

// '?' for a null, no fraction for a whole float, str() for the rest.
Ref float_text(Object elt) {
    if (truth(global("pd"_py).attr("isnull"_py)({elt}))) return Ref::share("?"_py.text);
    if (is_instance(elt, numpy_alias("float"_py, &PyFloat_Type)) && truth(elt.attr("is_integer"_py)())) {
        return text_of(numpy_alias("int"_py, &PyLong_Type)({elt}));
    }
    return text_of(elt);
}

}  // namespace

constinit const Definition numpy_floatstr2float{
    .name = "numpy_floatstr2float",
    .parameters = {{"X"}, {"missing_values_reference_list", None}},
    .doc = R"(Converts a 1-D numpy array of strings that represent floats to floats
and replaces missing values with np.nan. Also changes type of array from 'object' to 'float'

:param X: 1-d numpy array of strings
:param missing_values_reference_list: list of values that should be considered as missing
:return: 1-D numpy array of floats and np.nan as missing values

A text that is neither missing nor a number becomes NaN too; what was wrong with it is printed.

Parameters
----------
X : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional

Returns
-------
numpy.ndarray of float64, shape (n,)
    A new array.

Raises
------
TypeError
    For an element that has no conversion to a float, such as None.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_floatstr2float
>>> numpy_floatstr2float(np.array(["1.5", "?", "1e3"], dtype=object), ["?"])
array([   1.5,    nan, 1000. ])
)",
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        if (Ref Z = native_floatstr2float(X, missing_values_reference_list)) return Z;
        const Ref l_missing_values_reference_list = or_new_list(missing_values_reference_list);
        const Ref Y = X.attr("copy"_py)();
        const Py_ssize_t rows = count(row_count(X));
        for (Py_ssize_t i = 0; i < rows; ++i) {
            if (contains(l_missing_values_reference_list, item(X, i))) {
                set_item(Y, i, global("np"_py).attr("nan"_py));
            } else if (!truth(global("isfloat"_py)({item(X, i)}))) {
                convert_or_report(X, Y, i);
            }
        }
        return Y.attr("astype"_py)({&PyFloat_Type});
    },
};

constinit const Definition numpy_boolean2float{
    .name = "numpy_boolean2float",
    .parameters = {{"X"}, {"missing_values_reference_list", None}},
    .doc = R"(Converts a 1-D numpy array of strings that represent floats to floats
and replaces missing values with np.nan. Also changes type of array from 'object' to 'float'

:param X: 1-d numpy array of booleans
:param missing_values_reference_list: list of values that should be considered as missing
:return: 1-D numpy array of floats and np.nan as missing values

The array stays boolean while the missing values are marked, so NaN is stored as True: they come out as 1.0, and the
caller's array holds True in their place.

Parameters
----------
X : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional

Returns
-------
numpy.ndarray of float64, shape (n,), or `X` itself
    `X` itself where its dtype is not bool.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_boolean2float
>>> numpy_boolean2float(np.array([True, False]))
array([1., 0.])
)",
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        if (Ref Y = native_boolean2float(X, missing_values_reference_list)) return Y;
        if (!equal(X.attr("dtype"_py), "bool"_py)) return Ref::share(X);
        if (!missing_values_reference_list.is_none()) {
            const Ref missing_values_mask = global("numpy_isin"_py)({X, missing_values_reference_list});
            set_item(X, missing_values_mask, global("np"_py).attr("nan"_py));
        }
        return X.attr("astype"_py)({&PyFloat_Type});
    },
};

constinit const Definition convert_float32{
    .name = "convert_float32",
    .parameters = {{"X"}, {"force_flag", false}},
    .doc = R"(Converts 64-bit floats to 32-bit floats.

Parameters
----------
X : numpy.ndarray
force_flag : bool
    Convert an array of any other dtype as well.

Returns
-------
numpy.ndarray of float32, or `X` itself

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import convert_float32
>>> convert_float32(np.array([1.5, 2.5])).dtype
dtype('float32')
)",
    .body = [](Object X, Object force_flag) -> Ref {
        if (!equal(X.attr("dtype"_py), "float64"_py) && !truth(force_flag)) return Ref::share(X);
        return X.attr("astype"_py)({"float32"_py});
    },
};

constinit const Definition numpy_column_float2str{
    .name = "numpy_column_float2str",
    .parameters = {{"X"}, {"fast_conversion_flag", true}},
    .doc = R"(Converts a column of floats to text.

Parameters
----------
X : numpy.ndarray of shape (n,)
    The slow way writes into it.
fast_conversion_flag : bool
    Convert as numpy does. Otherwise go through the elements one by one: nulls become "?", whole floats lose their
    fraction (3.0 becomes "3"), everything else becomes its str().

Returns
-------
numpy.ndarray of text, shape (n,), or `X` itself
    `X` itself, rewritten, the slow way.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_column_float2str
>>> numpy_column_float2str(np.array([1.0, 2.5, np.nan], dtype=object), False)
array(['1', '2.5', '?'], dtype=object)
)",
    .body = [](Object X, Object fast_conversion_flag) -> Ref {
        if (truth(fast_conversion_flag)) {
            if (Ref Y = native_float2str(X)) return Y;
            return X.attr("astype"_py)({&PyUnicode_Type});
        }
        if (Ref Y = native_slow_float2str(X)) return Y;
        const Py_ssize_t rows = count(row_count(X));
        for (Py_ssize_t i = 0; i < rows; ++i) set_item(X, i, float_text(item(X, i)));
        return Ref::share(X);
    },
};

}  // namespace quorin::transform
