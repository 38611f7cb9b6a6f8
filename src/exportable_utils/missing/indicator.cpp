#include <optional>

#include "exportable_utils/missing/missing.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::missing {

namespace {

struct FoundReferences {
    Ref masks = list({});
    Ref values = list({});
};

// The interpreter route: one pass over the column for each value of the list.
FoundReferences find_references(Object X, Object missing_values_list, Object stop_at_one_missing_value_flag,
                                Object debug) {
    FoundReferences found;
    Local numpy_isin_start{"numpy_isin_start"_py};
    const Ref references = iterate(missing_values_list);
    while (const Ref missing_value = next(references)) {
        if (truth(debug)) {
            numpy_isin_start = now();
            print(concat(
                {"\n\nnumpy_compute_missing_indicator():Checking for missing_value="_py, text_of(missing_value)}));
        }
        const Ref missing_mask = global("numpy_isin"_py)({X, list({missing_value})});
        const Ref missing_value_found = global("np"_py).attr("any"_py)({missing_mask});
        if (truth(missing_value_found)) {
            append(found.values, missing_value);
            append(found.masks, missing_mask);
            if (truth(stop_at_one_missing_value_flag)) break;
        }
        if (truth(debug)) {
            const Ref message =
                concat({"numpy_compute_missing_indicator():missing_value="_py, text_of(missing_value), " found: "_py,
                        text_of(missing_value_found), "\nelapsed_time: numpy_isin_elapsed_end(s): "_py});
            const Ref end = now();
            print(concat({message, text_of(subtract(end, numpy_isin_start.get()))}));
        }
    }
    return found;
}

// The result if no reference occurs: in place of the masks stands the list of the elements of the all-false mask.
Ref nothing_found(const Ref& mask) {
    return tuple({mask, list_of(mask), list({})});
}

// list(mask) for an all-false mask of that many rows.
Ref all_false(std::size_t rows) {
    const Ref value = list({PyArrayScalar_False});
    const auto repeated = [&](std::size_t first, std::size_t last) {
        foreign_code_may_run();
        return Ref::take(PySequence_Repeat(value.get(), static_cast<Py_ssize_t>(last - first)));
    };
    Ref values;
    in_blocks(rows, [&](std::size_t first, std::size_t last) {
        Ref part = repeated(first, last);
        values = first == 0 ? std::move(part) : add_in_place(values, part);
        return true;
    });
    return values;
}

// The union of the masks; the mask itself if there is only one.
Ref cumulated(Object masks) {
    Ref cum_missing_mask_arr;
    const Ref iterator = iterate(masks);
    while (Ref missing_mask_arr = next(iterator)) {
        cum_missing_mask_arr =
            cum_missing_mask_arr ? either(cum_missing_mask_arr, missing_mask_arr) : std::move(missing_mask_arr);
    }
    return cum_missing_mask_arr;
}

// The native route: one pass over the column for all references.
Ref native_indicator(Object X, Object list_of_values, bool first_only) {
    const std::optional<ColumnSource> column = ColumnSource::single(X);
    if (!column || !PyList_CheckExact(list_of_values.get())) return {};
    const std::optional<references::References> references = references::read_references(list_of_values, *column);
    if (!references) return {};
    if (first_only) {
        const auto found = references::find_members(*column, *references, references::Match::first_only);
        if (!found) return {};
        if (found->bits == 0) return tuple({found->mask, all_false(column->rows()), list({})});
        return tuple({found->mask, list({found->mask}), references::list_of_references(*references, found->bits)});
    }
    std::optional<references::MatchedRows> found = references::matched_rows(*column, *references);
    if (!found) return {};
    if (found->bits == 0) return tuple({found->mask, all_false(column->rows()), list({})});
    const Ref masks = list_holding(found->masks);
    return tuple({found->mask, masks, references::list_of_references(*references, found->bits)});
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
    .has_native_route = true,
    .lookups = {"numpy_isin", "np.any", "np.zeros"},
    .body = [](Object X, Object missing_values_list, Object stop_at_one_missing_value_flag, Object debug) -> Ref {
        if (PyBool_Check(stop_at_one_missing_value_flag.get()) && debug.is(Py_False)) {
            const bool first_only = stop_at_one_missing_value_flag.is(Py_True);
            const auto body = [&] { return native_indicator(X, missing_values_list, first_only); };
            if (Ref result = native_route(body)) return result;
        }
        if (truth(debug)) {
            print(concat({"numpy_compute_missing_indicator(): Column: "_py, text_of(first_rows(X, capped_row_count(X))),
                          "\n\n"_py}));
        }
        const FoundReferences found = find_references(X, missing_values_list, stop_at_one_missing_value_flag, debug);
        if (length(found.masks) > 0) return tuple({cumulated(found.masks), found.masks, found.values});
        return nothing_found(global("np"_py).attr("zeros"_py)({tuple({row_count(X)})}, {{"dtype"_py, &PyBool_Type}}));
    },
};

}  // namespace quorin::missing
