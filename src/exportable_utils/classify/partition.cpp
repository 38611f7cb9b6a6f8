#include "exportable_utils/classify/partition.hpp"

#include "exportable_utils/distinct/distinct_numbers.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

bool may_hold_nulls(const ColumnSource& column) {
    return column.storage() == Storage::objects || column.storage() == Storage::float64 ||
           column.storage() == Storage::float32;
}

void take_distinct(Partition& partition, Object values_and_counts) {
    auto [XX, xx_xounts] = unpack<2>(values_and_counts);
    partition.XX = std::move(XX);
    partition.xx_xounts = std::move(xx_xounts);
}

bool find_distinct(Partition& partition, const ColumnSource& column, const distinct::ExcludedRows& left_out) {
    auto found = column.storage() == Storage::float32 ? distinct::distinct_as_float64(column, left_out)
                                                      : distinct::distinct_values(column, left_out);
    if (!found) return false;
    partition.XX = std::move(found->values);
    partition.xx_xounts = std::move(found->counts);
    return true;
}

// Without a reference list there is no mask, and NaN is no distinct value though its rows are not missing.
bool partition_without_references(Partition& partition, const ColumnSource& column) {
    references::Members nulls;
    if (may_hold_nulls(column)) {
        std::optional<references::Members> found = references::find_nulls(column);
        if (!found) return false;
        nulls = std::move(*found);
    }
    if (!find_distinct(partition, column, {nulls.mask, nulls.marked})) return false;
    partition.non_missing_rows = whole(static_cast<Py_ssize_t>(column.rows()));
    partition.missing_reference_values_exist_list = list({});
    return true;
}

bool partition_with_references(Partition& partition, Object X, const ColumnSource& column,
                               const references::References& markers, bool first_only) {
    const std::optional<references::Members> missing =
        references::find_members(column, markers, first_only ? references::Match::first_only : references::Match::all);
    if (!missing) return false;
    const bool found_distinct = find_distinct(partition, column, {missing->mask, missing->marked});
    partition.non_missing_rows = whole(static_cast<Py_ssize_t>(column.rows() - missing->marked));
    partition.missing_reference_values_exist_list = references::list_of_references(markers, missing->bits);
    partition.cum_missing_mask_arr = Ref::share(missing->mask);
    // From here on the caller's list may lose its markers to whoever is told that texts stand beside numbers.
    if (!found_distinct) {
        const Ref flat = PyArray_NDIM(as_array(X)) == 1 ? Ref::share(X) : X.attr("reshape"_py)({-1});
        const Ref X_non_missing = missing->marked == 0 ? Ref::share(flat) : item(flat, inverted(missing->mask));
        take_distinct(partition, global("get_unique_values"_py)({X_non_missing}, {{"return_counts"_py, true}}));
    }
    return true;
}

// Straight from the column's memory. False, and nothing done, where that is not for memory to say.
bool partition_natively(Partition& partition, Object X, Object missing_values_reference_list, bool first_only) {
    if (!lookups_unchanged()) return false;
    const std::optional<ColumnSource> column = ColumnSource::single(X);
    if (!column) return false;
    const std::optional<references::References> markers =
        references::read_references(missing_values_reference_list, *column);
    if (!markers) return false;
    partition.natively = markers->none() ? partition_without_references(partition, *column)
                                         : partition_with_references(partition, X, *column, *markers, first_only);
    if (partition.natively) partition.X = Ref::share(X);
    return partition.natively;
}

}  // namespace

Partition partition_column(Object column, Object missing_values_reference_list, Object stop_at_one_missing_value_flag,
                           Object debug) {
    Partition partition;
    const auto copied_list = [&] {
        return missing_values_reference_list.is_none() ? list({}) : missing_values_reference_list.attr("copy"_py)();
    };
    if (debug.is(Py_False) && PyBool_Check(stop_at_one_missing_value_flag.get()) &&
        partition_natively(partition, column, missing_values_reference_list,
                           stop_at_one_missing_value_flag.is(Py_True))) {
        partition.missing_values_list = copied_list();
        return partition;
    }
    Ref X = global("numpy_flatten_column"_py)({column});
    partition.missing_values_list = copied_list();
    if (equal(X.attr("dtype"_py), "float32"_py)) X = X.attr("astype"_py)({&PyFloat_Type});

    Ref X_non_missing;
    if (truth(partition.missing_values_list)) {
        const Ref indicator = global("numpy_compute_missing_indicator"_py)(
            {X, partition.missing_values_list},
            {{"stop_at_one_missing_value_flag"_py, stop_at_one_missing_value_flag}, {"debug"_py, debug}});
        auto [mask, missing_masks_list, markers] = unpack<3>(indicator);
        X_non_missing = item(X, inverted(mask));
        partition.cum_missing_mask_arr = std::move(mask);
        partition.missing_reference_values_exist_list = std::move(markers);
        take_distinct(partition, global("get_unique_values"_py)({X_non_missing}, {{"return_counts"_py, true}}));
    } else {
        // There is no mask, and NaN is no distinct value though its rows are not missing.
        partition.missing_reference_values_exist_list = list({});
        X_non_missing = Ref::share(X);
        const Ref exclusion_list = list({global("np"_py).attr("nan"_py)});
        take_distinct(partition,
                      global("get_unique_values"_py)({X_non_missing, exclusion_list}, {{"return_counts"_py, true}}));
    }
    partition.non_missing_rows = row_count(X_non_missing);
    partition.X = std::move(X);
    return partition;
}

}  // namespace quorin::classify
