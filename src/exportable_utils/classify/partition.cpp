#include "exportable_utils/classify/partition.hpp"

#include <utility>

#include "exportable_utils/distinct/distinct_numbers.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/indexing.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

using distinct::ExcludedRows;
using references::Match;
using references::Members;

// The native part of a partition. If `distinct` is empty, get_unique_values() has to find the distinct values.
struct NativeParts {
    Members missing;
    std::optional<distinct::ValuesAndCounts> distinct;
    Ref markers;
};

std::optional<distinct::ValuesAndCounts> find_distinct(const NativeArguments& arguments, const Members& excluded) {
    if (arguments.mixed) return std::nullopt;
    const ExcludedRows rows{excluded.mask, excluded.marked};
    return arguments.column->storage() == Storage::float32 ? distinct::distinct_as_float64(*arguments.column, rows)
                                                           : distinct::distinct_values(*arguments.column, rows);
}

bool may_hold_nulls(Storage storage) {
    return storage == Storage::objects || storage == Storage::float64 || storage == Storage::float32;
}

// Without references there is no mask: NaN is not a distinct value, but its rows are not missing.
bool partition_without_references(const NativeArguments& arguments, NativeParts& parts) {
    if (arguments.mixed) return false;
    Members nulls;
    if (may_hold_nulls(arguments.column->storage())) {
        std::optional<Members> found = references::find_nulls(*arguments.column);
        if (!found) return false;
        nulls = std::move(*found);
    }
    parts.distinct = find_distinct(arguments, nulls);
    parts.markers = list({});
    return parts.distinct.has_value();
}

bool partition_with_references(const NativeArguments& arguments, bool first_only, NativeParts& parts) {
    std::optional<Members> missing =
        references::find_members(*arguments.column, *arguments.references, first_only ? Match::first_only : Match::all);
    if (!missing) return false;
    parts.missing = std::move(*missing);
    parts.distinct = find_distinct(arguments, parts.missing);
    parts.markers = references::list_of_references(*arguments.references, parts.missing.bits);
    return true;
}

void take_distinct(Partition& partition, Object values_and_counts) {
    auto [XX, xx_xounts] = unpack<2>(values_and_counts);
    partition.XX = std::move(XX);
    partition.xx_xounts = std::move(xx_xounts);
}

// Calls get_unique_values() with the rows that are not missing and cannot be sorted natively.
void take_distinct_by_name(Partition& partition, Object X, const Members& missing) {
    const Ref flat = PyArray_NDIM(as_array(X)) == 1 ? Ref::share(X) : X.attr("reshape"_py)({-1});
    const Ref X_non_missing = missing.marked == 0 ? Ref::share(flat) : item(flat, inverted(missing.mask));
    const distinct::KnownUnsortable known(X_non_missing);
    take_distinct(partition, global("get_unique_values"_py)({X_non_missing}, {{"return_counts"_py, true}}));
}

bool partition_natively(const Question& question, const NativeArguments& arguments, Partition& partition) {
    if (!question.plain() || !arguments.known()) return false;
    NativeParts parts;
    const bool any_references = !arguments.references->none();
    const Ref done = native_route([&] {
        const bool found = any_references ? partition_with_references(arguments, question.first_only(), parts)
                                          : partition_without_references(arguments, parts);
        return found ? Ref::truth(true) : Ref();
    });
    if (!done) return false;
    partition.natively = true;
    partition.X = Ref::share(question.X);
    partition.non_missing_rows = whole(static_cast<Py_ssize_t>(arguments.column->rows() - parts.missing.marked));
    partition.missing_reference_values_exist_list = std::move(parts.markers);
    if (any_references) partition.cum_missing_mask_arr = Ref::share(parts.missing.mask);
    if (parts.distinct) {
        partition.XX = std::move(parts.distinct->values);
        partition.xx_xounts = std::move(parts.distinct->counts);
    } else {
        take_distinct_by_name(partition, question.X, parts.missing);
    }
    return true;
}

Ref copied_list(const Question& question) {
    const Object original = question.missing_values_reference_list;
    return original.is_none() ? list({}) : original.attr("copy"_py)();
}

// Returns the rows of X that are not missing, and sets their distinct values.
Ref partition_by_indicator(Partition& partition, Object X, const Question& question) {
    const Ref indicator = global("numpy_compute_missing_indicator"_py)(
        {X, partition.missing_values_list},
        {{"stop_at_one_missing_value_flag"_py, question.stop_at_one_missing_value_flag}, {"debug"_py, question.debug}});
    auto [mask, missing_masks_list, markers] = unpack<3>(indicator);
    Ref X_non_missing = item(X, inverted(mask));
    partition.cum_missing_mask_arr = std::move(mask);
    partition.missing_reference_values_exist_list = std::move(markers);
    take_distinct(partition, global("get_unique_values"_py)({X_non_missing}, {{"return_counts"_py, true}}));
    return X_non_missing;
}

}  // namespace

Partition partition_column(const Question& question, const NativeArguments& arguments) {
    Partition partition;
    if (partition_natively(question, arguments, partition)) {
        partition.missing_values_list = copied_list(question);
        return partition;
    }
    Ref X = global("numpy_flatten_column"_py)({question.X});
    partition.missing_values_list = copied_list(question);
    if (equal(X.attr("dtype"_py), "float32"_py)) X = X.attr("astype"_py)({&PyFloat_Type});

    Ref X_non_missing;
    if (truth(partition.missing_values_list)) {
        X_non_missing = partition_by_indicator(partition, X, question);
    } else {
        // As in partition_without_references().
        partition.missing_reference_values_exist_list = list({});
        X_non_missing = Ref::share(X);
        // Looks the callee up before it makes the arguments, as a Python call does.
        const Ref get_unique_values = global("get_unique_values"_py);
        const Ref exclusion_list = list({global("np"_py).attr("nan"_py)});
        take_distinct(partition, get_unique_values({X_non_missing, exclusion_list}, {{"return_counts"_py, true}}));
    }
    partition.non_missing_rows = row_count(X_non_missing);
    partition.X = std::move(X);
    return partition;
}

}  // namespace quorin::classify
