#include <optional>

#include "exportable_utils/missing/missing.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/errors.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::missing {

namespace {

PyObject* is_member(PyObject* reference_set, PyObject* x) {
    const int member = PySequence_Contains(reference_set, x);
    if (member >= 0) return Ref::truth(member != 0).give();
    add_traceback("<lambda>", Where::current());
    return nullptr;
}

PyMethodDef membership = {"<lambda>", is_member, METH_O, nullptr};

// lambda x: x in reference_set
Ref membership_test(Object reference_set) {
    return Ref::take(PyCFunction_New(&membership, reference_set.get()));
}

Ref native_indicator_mask(Object reference_set, Object l) {
    const std::optional<ColumnSource> column = ColumnSource::flat(l);
    if (!column) return {};
    const std::optional<references::References> references = references::read_members(reference_set);
    if (!references) return {};
    return references::membership_mask(*column, *references);
}

Ref native_isin(Object X, Object list) {
    const std::optional<ColumnSource> column = ColumnSource::single(X);
    if (!column || !PyList_CheckExact(list.get())) return {};
    const std::optional<references::References> references = references::read_references(list, *column);
    if (!references || (references->null_bits != 0 && !references::unchanged_by_asarray(*references))) return {};
    return references::membership_mask(*column, *references);
}

}  // namespace

constinit const Definition indicator_mask{
    .name = "indicator_mask",
    .parameters = {{"reference_set", required, Annotation::set_text}, {"l"}},
    .doc = R"(Marks the elements that are members of a set.

Membership is Python's: hashing, then equality. 1, 1.0 and True match one another, the text "1" matches none of
them, and NaN matches nothing but the same NaN object.

Parameters
----------
reference_set : set
l : array_like
    Of any shape.

Returns
-------
numpy.ndarray of bool
    Of the shape of `l`.

Raises
------
TypeError
    For an element that cannot be hashed.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import indicator_mask
>>> indicator_mask({"?", 1}, ["a", "?"])
array([False,  True])
)",
    .has_native_route = true,
    .lookups = {"np.vectorize"},
    .body = [](Object reference_set, Object l) -> Ref {
        if (Ref mask = native_route([&] { return native_indicator_mask(reference_set, l); })) return mask;
        const Ref is_in_reference = global("np"_py).attr("vectorize"_py)({membership_test(reference_set)},
                                                                         {{"otypes"_py, list({&PyBool_Type})}});
        return is_in_reference({l});
    },
};

constinit const Definition numpy_isin{
    .name = "numpy_isin",
    .parameters = {{"X"}, {"values_reference_list"}, {"debug", false}},
    .doc = R"(Marks the elements of a column that equal one of a list of reference values.

A null among the reference values (None, NaN, NaT) marks every null of the column, as pandas defines null; the other
values are matched by `indicator_mask`.

Parameters
----------
X : numpy.ndarray of shape (n,) or (n, 1)
values_reference_list : list
debug : bool
    Print the first 50 rows and the elapsed seconds.

Returns
-------
numpy.ndarray of bool, shape (n,)

Raises
------
TypeError
    For a reference value that cannot be hashed.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_isin
>>> numpy_isin(np.array([None, "?", "x"], dtype=object), ["?", np.nan])
array([ True,  True, False])
)",
    .has_native_route = true,
    .lookups = {"numpy_flatten_column", "pd.isnull", "np.any", "np.asarray", "indicator_mask"},
    .body = [](Object X, Object values_reference_list, Object debug) -> Ref {
        if (debug.is(Py_False)) {
            if (Ref mask = native_route([&] { return native_isin(X, values_reference_list); })) return mask;
        }
        Local limit{"limit"_py};
        Local start_time{"start_time"_py};
        if (truth(debug)) {
            limit = capped_row_count(X);
            print(concat(
                {"Starting numpy_isin(): Starting\n X column: "_py, text_of(first_rows(X, limit.get())), "\n"_py}));
            start_time = now();
        }
        const Ref l_X = global("numpy_flatten_column"_py)({X});
        const Ref nan_missing_mask = global("pd"_py).attr("isnull"_py)({values_reference_list});
        Ref result;
        if (truth(global("np"_py).attr("any"_py)({nan_missing_mask}))) {
            const Ref values = global("np"_py).attr("asarray"_py)({values_reference_list});
            const Ref non_nan_values_reference_list = list_of(item(values, inverted(nan_missing_mask)));
            if (length(non_nan_values_reference_list) == 0) {
                result = global("pd"_py).attr("isnull"_py)({l_X});
            } else {
                const Ref nan_cond = global("pd"_py).attr("isnull"_py)({l_X});
                const Ref set_non_nan_values_reference_list = set_of(non_nan_values_reference_list);
                if (truth(debug)) {
                    print(first_rows(l_X, limit.get()));
                    print(set_non_nan_values_reference_list);
                }
                const Ref non_nan_cond = global("indicator_mask"_py)({set_non_nan_values_reference_list, l_X});
                result = either(nan_cond, non_nan_cond);
            }
        } else {
            const Ref set_reference_values_list_col = set_of(values_reference_list);
            result = global("indicator_mask"_py)({set_reference_values_list_col, l_X});
        }
        if (truth(debug)) {
            const Ref np_isin_time = now();
            print(concat({"Ending numpy_isin(): Ending, elapsed time (s)"_py,
                          text_of(subtract(np_isin_time, start_time.get()))}));
        }
        return result;
    },
};

}  // namespace quorin::missing
