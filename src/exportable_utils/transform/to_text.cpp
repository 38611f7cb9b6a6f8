#include "exportable_utils/transform/to_text.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/numpy.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

// "?" for a null, str(int(elt)) for a whole float, str(elt) for any other element.
Ref float_text(Object elt) {
    if (truth(global("pd"_py).attr("isnull"_py)({elt}))) return Ref::share("?"_py.text);
    if (is_instance(elt, numpy_alias("float"_py, &PyFloat_Type)) && truth(elt.attr("is_integer"_py)())) {
        return text_of(numpy_alias("int"_py, &PyLong_Type)({elt}));
    }
    return text_of(elt);
}

}  // namespace

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
    .has_native_route = true,
    .lookups = {"pd.isnull", "np.float", "np.int"},
    .body = [](Object X, Object fast_conversion_flag) -> Ref {
        if (truth(fast_conversion_flag)) {
            if (Ref Y = native_text_array(X)) return Y;
            return X.attr("astype"_py)({&PyUnicode_Type});
        }
        if (Ref Y = native_text_in_place(X)) return Y;
        const Py_ssize_t rows = count(row_count(X));
        for (Py_ssize_t i = 0; i < rows; ++i) set_item(X, i, float_text(item(X, i)));
        return Ref::share(X);
    },
};

}  // namespace quorin::transform
