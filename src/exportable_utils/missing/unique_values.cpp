#include <optional>

#include "exportable_utils/distinct/distinct_values.hpp"
#include "exportable_utils/missing/missing.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::missing {

namespace {

// Whether message is numpy's error for sorting texts together with values of another type.
bool is_mixed_text_failure(Object message) {
    return contains(message, "not supported between instances of"_py) && contains(message, "'str'"_py);
}

// Whether the native route returns the same values as numpy.unique(). Without counts, newer versions of numpy use
// another algorithm for floats, which may return another one of several equal floats such as 0.0 and -0.0.
bool is_known_to_numpy_unique(const ColumnSource& column, bool return_counts) noexcept {
    return return_counts || !(column.storage() == Storage::float64 || column.storage() == Storage::float32);
}

// The distinct values that are not in the list, with their counts if return_counts. Sets `unsortable` if the values
// cannot be sorted natively.
Ref native_unique(Object y, Object exclusion_list, bool return_counts, bool& unsortable) {
    const std::optional<ColumnSource> column = ColumnSource::flat(y);
    if (!column || !is_known_to_numpy_unique(*column, return_counts)) return {};
    references::Members excluded;
    {
        const std::optional<references::References> references = references::read_references(exclusion_list, *column);
        if (!references || (references->null_bits != 0 && !references::unchanged_by_asarray(*references))) return {};
        if (!references->none()) {
            std::optional<references::Members> found = references::find_members(*column, *references);
            if (!found) return {};
            excluded = std::move(*found);
        }
    }
    const auto distinct = distinct::distinct_values(*column, {excluded.mask, excluded.marked});
    unsortable = !distinct;
    if (!distinct) return {};
    if (!return_counts) return Ref::share(distinct->values);
    return tuple({distinct->values, distinct->counts});
}

}  // namespace

constinit const Definition get_unique_values{
    .name = "get_unique_values",
    .parameters = {{"y", required, Annotation::ndarray},
                   {"exclusion_list", None},
                   {"return_index", false},
                   {"return_inverse", false},
                   {"return_counts", false},
                   {"fast_str_conversion_flag", true}},
    .doc = R"(Distinct values of a column, with exclusions.

`numpy.unique` after the values of `exclusion_list` are taken out. A column that cannot be sorted because texts are
mixed with other values is converted to text, with a warning in the log, and tried once more.

Parameters
----------
y : numpy.ndarray of shape (n,)
exclusion_list : list, optional
    Values to leave out, matched by `numpy_isin`.
return_index, return_inverse, return_counts : bool
    As of `numpy.unique`; they refer to the column after exclusion.
fast_str_conversion_flag : bool
    `fast_conversion_flag` of `numpy_column_float2str`, should the column have to become text.

Returns
-------
numpy.ndarray, or tuple of numpy.ndarray
    What `numpy.unique` gives.

Raises
------
Exception
    For any other failure of `numpy.unique`, with its traceback in the text.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import get_unique_values
>>> get_unique_values(np.array(["b", "?", "a", "b"], dtype=object), ["?"])
array(['a', 'b'], dtype=object)
)",
    .has_native_route = true,
    .lookups = {"numpy_isin", "np.unique", "numpy_column_float2str"},
    .body = [](Object y, Object exclusion_list, Object return_index, Object return_inverse, Object return_counts,
               Object fast_str_conversion_flag) -> Ref {
        const bool plain_question =
            return_index.is(Py_False) && return_inverse.is(Py_False) && PyBool_Check(return_counts.get());
        // Skips a second native sort if the first one failed, until the values are converted to text.
        bool unsortable = false;
        const auto unique_natively = [&](Object values, Object excluded) -> Ref {
            if (!plain_question || unsortable) return {};
            return native_route([&] { return native_unique(values, excluded, return_counts.is(Py_True), unsortable); });
        };
        if (Ref result = unique_natively(y, exclusion_list)) return result;
        Ref y_to_process = Ref::share(y);
        if (truth(exclusion_list)) {
            const Ref included_mask = global("numpy_isin"_py)({y, exclusion_list});
            y_to_process = item(y, inverted(included_mask));
        }
        const auto unique = [&] {
            if (Ref result = unique_natively(y_to_process, Py_None)) return result;
            return global("np"_py).attr("unique"_py)({y_to_process, return_index, return_inverse, return_counts});
        };
        try {
            return unique();
        } catch (const PythonError& error) {
            if (!PythonError::matches(PyExc_Exception)) throw;
            const Handling handling(error, "get_unique_values");
            const Object e = handling.exception();
            if (is_mixed_text_failure(text_of(e))) {
                global("logger"_py).attr("warning"_py)({concat({text_of(e), ", Converting to string column"_py})});
                y_to_process = global("numpy_column_float2str"_py)(
                    {}, {{"X"_py, y_to_process}, {"fast_conversion_flag"_py, fast_str_conversion_flag}});
                unsortable = false;
                return unique();
            }
            global("QSR_raise_exception"_py)({}, {{"exception_obj"_py, e}, {"exception_trace_flag"_py, true}});
        }
        // Reached only if an application replaced QSR_raise_exception by a function that returns.
        fail_unbound("result"_py);
    },
};

}  // namespace quorin::missing
