#include <optional>

#include "exportable_utils/missing/missing.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::missing {

namespace {

struct Found {
    Ref masks = list({});
    Ref markers = list({});
};

// One pass over the column for each marker, in the order of the list.
Found try_markers(Object X, Object missing_values_list, Object stop_at_one_missing_value_flag, Object debug) {
    Found found;
    Local numpy_isin_start{"numpy_isin_start"_py};
    const Ref markers = iterate(missing_values_list);
    while (const Ref missing_value = next(markers)) {
        if (truth(debug)) {
            numpy_isin_start = now();
            print(concat(
                {"\n\nnumpy_compute_missing_indicator():Checking for missing_value="_py, text_of(missing_value)}));
        }
        const Ref missing_mask = global("numpy_isin"_py)({X, list({missing_value})});
        const Ref missing_value_found = global("np"_py).attr("any"_py)({missing_mask});
        if (truth(missing_value_found)) {
            append(found.markers, missing_value);
            append(found.masks, missing_mask);
            if (truth(stop_at_one_missing_value_flag)) break;
        }
        if (truth(debug)) {
            const Ref told =
                concat({"numpy_compute_missing_indicator():missing_value="_py, text_of(missing_value), " found: "_py,
                        text_of(missing_value_found), "\nelapsed_time: numpy_isin_elapsed_end(s): "_py});
            const Ref end = now();
            print(concat({told, text_of(subtract(end, numpy_isin_start.get()))}));
        }
    }
    return found;
}

// Where no marker occurs the list holds the rows of the mask, one by one.
Ref nothing_found(const Ref& mask) {
    return tuple({mask, list_of(mask), list({})});
}

// list(mask) of an all-false mask.
Ref all_false(std::size_t rows) {
    Ref values = Ref::take(PyList_New(static_cast<Py_ssize_t>(rows)));
    for (std::size_t row = 0; row < rows; ++row) {
        PyList_SET_ITEM(values.get(), static_cast<Py_ssize_t>(row), Ref::share(PyArrayScalar_False).give());
    }
    return values;
}

// The first mask itself where it is the only one.
Ref cumulated(Object masks) {
    Ref cum_missing_mask_arr;
    const Ref iterator = iterate(masks);
    while (Ref missing_mask_arr = next(iterator)) {
        cum_missing_mask_arr =
            cum_missing_mask_arr ? either(cum_missing_mask_arr, missing_mask_arr) : std::move(missing_mask_arr);
    }
    return cum_missing_mask_arr;
}

// One pass over the column for all markers; the first one that occurs stands for all where one is enough.
Ref native_indicator(Object X, Object missing_values_list, bool one_is_enough) {
    if (!originals_in_place() || !PyList_CheckExact(missing_values_list.get())) return {};
    const std::optional<ArrayColumn> column = single_column(X);
    if (!column) return {};
    const std::optional<references::References> markers = references::read_references(missing_values_list, *column);
    if (!markers) return {};
    const std::optional<references::MarkedRows> found = references::marked_rows(*column, *markers);
    if (!found) return {};
    if (found->bits == 0) return tuple({found->mask, all_false(column->rows), list({})});
    const std::uint32_t counted = one_is_enough ? references::lowest(found->bits) : found->bits;
    const Ref exist = references::list_of_references(*markers, counted);
    if (one_is_enough) {
        const Ref& first = found->masks.front();
        return tuple({first, list({first}), exist});
    }
    const Ref masks = list({});
    for (const Ref& mask : found->masks) append(masks, mask);
    return tuple({found->mask, masks, exist});
}

}  // namespace

constinit const Definition numpy_compute_missing_indicator{
    .name = "numpy_compute_missing_indicator",
    .parameters = {{"X"}, {"missing_values_list"}, {"stop_at_one_missing_value_flag", false}, {"debug", false}},
    .doc = R"(Tests a column against candidate missing-value markers, one by one.

Parameters
----------
X : numpy.ndarray of shape (n,) or (n, 1)
missing_values_list : list
    Candidate markers, in the order in which they are tried.
stop_at_one_missing_value_flag : bool
    Stop at the first marker that occurs.
debug : bool
    Print progress and elapsed seconds.

Returns
-------
cum_missing_mask_arr : numpy.ndarray of bool, shape (n,)
    True where a cell holds a marker that was found.
missing_masks_list : list
    The mask of each marker found; where none was found, the n false values of the first result one by one.
missing_reference_values_exist_list : list
    The markers found, in the order of `missing_values_list`.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_compute_missing_indicator
>>> mask, masks, markers = numpy_compute_missing_indicator(
...     np.array(["a", "?", ""], dtype=object), ["?", "", "-", np.nan])
>>> mask, markers
(array([False,  True,  True]), ['?', ''])
)",
    .body = [](Object X, Object missing_values_list, Object stop_at_one_missing_value_flag, Object debug) -> Ref {
        if (PyBool_Check(stop_at_one_missing_value_flag.get()) && debug.is(Py_False)) {
            const bool one_is_enough = stop_at_one_missing_value_flag.is(Py_True);
            if (Ref answer = native_indicator(X, missing_values_list, one_is_enough)) return answer;
        }
        if (truth(debug)) {
            print(concat({"numpy_compute_missing_indicator(): Column: "_py, text_of(first_rows(X, capped_row_count(X))),
                          "\n\n"_py}));
        }
        const Found found = try_markers(X, missing_values_list, stop_at_one_missing_value_flag, debug);
        if (length(found.masks) > 0) return tuple({cumulated(found.masks), found.masks, found.markers});
        return nothing_found(global("np"_py).attr("zeros"_py)({tuple({row_count(X)})}, {{"dtype"_py, &PyBool_Type}}));
    },
};

}  // namespace quorin::missing
