#include "classify/parted.hpp"

#include "columns/distinct_numbers.hpp"
#include "columns/membership.hpp"
#include "interp/operations.hpp"
#include "interp/originals.hpp"
#include "interp/table.hpp"

namespace quorin::classify {

namespace {

using columns::Column;
using columns::Storage;

bool may_hold_nulls(const Column& column) {
    return column.storage == Storage::objects || column.storage == Storage::float64 ||
           column.storage == Storage::float32;
}

void take_distinct(Parted& parted, Object values_and_counts) {
    auto [XX, xx_xounts] = unpack<2>(values_and_counts);
    parted.XX = std::move(XX);
    parted.xx_xounts = std::move(xx_xounts);
}

bool find_distinct(Parted& parted, const Column& column, columns::LeftOut left_out) {
    auto found = column.storage == Storage::float32 ? columns::distinct_as_float64(column, left_out)
                                                    : columns::distinct_values(column, left_out);
    if (!found) return false;
    parted.XX = std::move(found->values);
    parted.xx_xounts = std::move(found->counts);
    return true;
}

// Without a reference list there is no mask, and NaN is no distinct value though its rows are not missing.
bool part_unmarked(Parted& parted, const Column& column) {
    columns::Markers null;
    null.null_bits = 1;
    columns::Members nulls;
    if (may_hold_nulls(column)) {
        std::optional<columns::Members> found = columns::members(column, null);
        if (!found) return false;
        nulls = std::move(*found);
    }
    if (!find_distinct(parted, column, {nulls.mask, nulls.marked})) return false;
    parted.non_missing_rows = whole(static_cast<Py_ssize_t>(column.rows));
    parted.missing_reference_values_exist_list = list({});
    return true;
}

bool part_marked(Parted& parted, Object X, const Column& column, const columns::Markers& markers, bool first_only) {
    const std::optional<columns::Members> missing = columns::members(column, markers, first_only);
    if (!missing) return false;
    const bool found_distinct = find_distinct(parted, column, {missing->mask, missing->marked});
    parted.non_missing_rows = whole(static_cast<Py_ssize_t>(column.rows - missing->marked));
    parted.missing_reference_values_exist_list = columns::markers_of(markers, missing->bits);
    parted.cum_missing_mask_arr = Ref::share(missing->mask);
    // From here on the caller's list may lose its markers to whoever is told that texts stand beside numbers.
    if (!found_distinct) {
        const Ref flat = PyArray_NDIM(column.array) == 1 ? Ref::share(X) : X.attr("reshape"_py)({-1});
        const Ref X_non_missing = missing->marked == 0 ? Ref::share(flat) : item(flat, inverted(missing->mask));
        take_distinct(parted, global("get_unique_values"_py)({X_non_missing}, {{"return_counts"_py, true}}));
    }
    return true;
}

// Straight from the column's memory. False, and nothing done, where that is not for memory to say.
bool part_natively(Parted& parted, Object X, Object missing_values_reference_list, bool first_only) {
    if (!originals_in_place()) return false;
    const std::optional<Column> column = columns::plain_column(X);
    if (!column) return false;
    const std::optional<columns::Markers> markers = columns::plain_markers(missing_values_reference_list, *column);
    if (!markers) return false;
    parted.natively =
        markers->none() ? part_unmarked(parted, *column) : part_marked(parted, X, *column, *markers, first_only);
    if (parted.natively) parted.X = Ref::share(X);
    return parted.natively;
}

}  // namespace

Parted part(Object column, Object missing_values_reference_list, Object stop_at_one_missing_value_flag, Object debug) {
    Parted parted;
    const auto copied_list = [&] {
        return missing_values_reference_list.is_none() ? list({}) : missing_values_reference_list.attr("copy"_py)();
    };
    if (debug.is(Py_False) && PyBool_Check(stop_at_one_missing_value_flag.get()) &&
        part_natively(parted, column, missing_values_reference_list, stop_at_one_missing_value_flag.is(Py_True))) {
        parted.missing_values_list = copied_list();
        return parted;
    }
    Ref X = global("numpy_flatten_column"_py)({column});
    parted.missing_values_list = copied_list();
    if (equal(X.attr("dtype"_py), "float32"_py)) X = X.attr("astype"_py)({&PyFloat_Type});

    Ref X_non_missing;
    if (truth(parted.missing_values_list)) {
        const Ref indicator = global("numpy_compute_missing_indicator"_py)(
            {X, parted.missing_values_list},
            {{"stop_at_one_missing_value_flag"_py, stop_at_one_missing_value_flag}, {"debug"_py, debug}});
        auto [mask, missing_masks_list, markers] = unpack<3>(indicator);
        X_non_missing = item(X, inverted(mask));
        parted.cum_missing_mask_arr = std::move(mask);
        parted.missing_reference_values_exist_list = std::move(markers);
        take_distinct(parted, global("get_unique_values"_py)({X_non_missing}, {{"return_counts"_py, true}}));
    } else {
        // There is no mask, and NaN is no distinct value though its rows are not missing.
        parted.missing_reference_values_exist_list = list({});
        X_non_missing = Ref::share(X);
        const Ref exclusion_list = list({global("np"_py).attr("nan"_py)});
        take_distinct(parted,
                      global("get_unique_values"_py)({X_non_missing, exclusion_list}, {{"return_counts"_py, true}}));
    }
    parted.non_missing_rows = row_count(X_non_missing);
    parted.X = std::move(X);
    return parted;
}

}  // namespace quorin::classify
