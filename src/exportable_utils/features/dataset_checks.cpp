// Checks of a whole data set. Each classifies the columns one by one.
#include <algorithm>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/gather/null_columns.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "exportable_utils/references/references.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

// The properties that a column is checked for.
struct Check {
    bool missing;  // missing values
    bool text;     // text, including number text
};

enum class Wanted { first, all };

bool holds(Check check, const Classified& column) {
    if (check.missing && truth(column.misslist)) return true;
    if (!check.text) return false;
    return equal(column.dtype_str, "char_str"_py) || equal(column.dtype_str, "int_str"_py) ||
           equal(column.dtype_str, "float_str"_py);
}

// The memory layout of the columns of a table.
struct ColumnLayout {
    std::size_t columns;
    std::ptrdiff_t stride;

    bool operator==(const ColumnLayout&) const = default;
};

ColumnLayout layout_of(Object X) noexcept {
    PyArrayObject* array = as_array(X);
    return {static_cast<std::size_t>(PyArray_DIM(array, 1)), PyArray_STRIDE(array, 1)};
}

// Calls use(table) for consecutive ranges of the rows of a table of floats, and answers signals between them. Stops
// when `use` returns false. Returns false if a signal handler changes the table.
template <class Use>
bool in_row_ranges(Object X, const ColumnSource& first_column, Use use) {
    constexpr std::size_t numbers_between_signals = std::size_t{1} << 20U;
    const ColumnLayout layout = layout_of(X);
    const std::size_t rows = std::max<std::size_t>(1, numbers_between_signals / layout.columns);
    LongBorrow borrow(first_column);
    for (std::size_t row = 0; row < first_column.rows(); row += rows) {
        if (row != 0) borrow.pause();
        const std::optional<ArrayColumn>& column = borrow.column();
        if (!column || layout_of(X) != layout) return false;
        const core::StridedMemory range = column->part(row, std::min(column->rows, row + rows));
        if (!use(core::Table{range, layout.columns, layout.stride})) break;
    }
    return true;
}

bool any_set(const std::vector<bool>& flags) {
    return std::find(flags.begin(), flags.end(), true) != flags.end();
}

// For each column of a table of floats, whether it holds a null. With Wanted::first the search ends with the first
// null. Returns nullopt if a signal handler changes the table.
template <class Float>
std::optional<std::vector<bool>> find_null_columns(Object X, const ColumnSource& first_column, Wanted wanted) {
    std::vector<bool> found(layout_of(X).columns);
    const bool done = in_row_ranges(X, first_column, [&](const core::Table& table) {
        const std::vector<bool> nulls = core::null_columns<Float>(table, wanted == Wanted::first);
        std::transform(nulls.begin(), nulls.end(), found.begin(), found.begin(), std::logical_or<>());
        return wanted == Wanted::all || !any_set(found);
    });
    if (!done) return std::nullopt;
    return found;
}

// Whether one of the first `columns` columns holds a signalling NaN, about which numpy warns. Also returns true if a
// signal handler changes the table.
template <class Float>
bool may_signal(Object X, const ColumnSource& first_column, std::size_t columns) {
    bool signalling = false;
    const bool done = in_row_ranges(X, first_column, [&](core::Table table) {
        table.columns = columns;
        signalling = core::any_signalling_nan<Float>(table);
        return !signalling;
    });
    return signalling || !done;
}

// For each column, whether it holds a null; all false unless `nulls`. Returns nullopt if numpy would warn about a
// signalling NaN in a column that the classifier reads: with Wanted::first these are the columns up to the first null.
template <class Float>
std::optional<std::vector<bool>> float_columns(Object X, const ColumnSource& first_column, Wanted wanted, bool nulls) {
    std::vector<bool> found(layout_of(X).columns);
    std::size_t read = found.size();
    if (nulls) {
        std::optional<std::vector<bool>> null_columns = find_null_columns<Float>(X, first_column, wanted);
        if (!null_columns) return std::nullopt;
        found = std::move(*null_columns);
        if (!any_set(found)) return found;
        const auto first = static_cast<std::size_t>(std::find(found.begin(), found.end(), true) - found.begin());
        if (wanted == Wanted::first) read = first + 1;
    }
    if (may_signal<Float>(X, first_column, read)) return std::nullopt;
    return found;
}

// For each column of a table of numbers, whether the check holds. Requires that no reference is a number, so that only
// nulls are missing. Returns nullopt to give up.
std::optional<std::vector<bool>> native_columns(Check check, Wanted wanted, Object X, Object references_list) {
    const std::optional<references::References> references = references::read_references(references_list);
    if (!references || !references->numbers.empty()) return std::nullopt;
    // All columns have the dtype and the number of rows of the first.
    const std::optional<ColumnSource> column = ColumnSource::of_table(X, 0);
    if (!column || column->storage() == Storage::objects || column->storage() == Storage::fixed_text) {
        return std::nullopt;
    }
    const bool nulls = check.missing && references->null_bits != 0;
    if (column->storage() == Storage::float64) return float_columns<double>(X, *column, wanted, nulls);
    if (column->storage() == Storage::float32) return float_columns<float>(X, *column, wanted, nulls);
    return std::vector<bool>(layout_of(X).columns);
}

// Calls on_column(j) for each column for which the check holds, until on_column returns false.
template <class OnColumn>
void classify_columns(Check check, Object X, Object references_list, OnColumn on_column) {
    const Py_ssize_t columns = count(column_count(X));
    for (Py_ssize_t j = 0; j < columns; ++j) {
        if (holds(check, Classifier()(matrix_column(X, j), references_list)) && !on_column(j)) return;
    }
}

// Whether the check holds for no column. The search ends at the first column for which it holds.
template <Check check>
constexpr auto no_column = [](Object X, Object missing_values_reference_list) -> Ref {
    const Ref references_list = markers_in_force(missing_values_reference_list);
    if (equal(X.attr("ndim"_py), 1)) return Ref::truth(!holds(check, Classifier()(X, references_list)));
    Ref answer = native_route<DateTest::called>([&]() -> Ref {
        const auto found = native_columns(check, Wanted::first, X, references_list);
        return found ? Ref::truth(!any_set(*found)) : Ref();
    });
    if (answer) return answer;
    bool none = true;
    classify_columns(check, X, references_list, [&](Py_ssize_t /*j*/) { return none = false; });
    return Ref::truth(none);
};

// The list of the columns for which the check holds.
template <Check check>
constexpr auto list_of_columns = [](Object X, Object missing_values_reference_list) -> Ref {
    const Ref references_list = markers_in_force(missing_values_reference_list);
    Ref columns = list({});
    if (equal(X.attr("ndim"_py), 1)) {
        if (holds(check, Classifier()(X, references_list))) append(columns, whole(0));
        return columns;
    }
    Ref answer = native_route<DateTest::called>([&]() -> Ref {
        const auto found = native_columns(check, Wanted::all, X, references_list);
        if (!found) return {};
        Ref indices = list({});
        for (std::size_t j = 0; j < found->size(); ++j) {
            if ((*found)[j]) append(indices, whole(static_cast<Py_ssize_t>(j)));
        }
        return indices;
    });
    if (answer) return answer;
    classify_columns(check, X, references_list, [&](Py_ssize_t j) {
        append(columns, whole(j));
        return true;
    });
    return columns;
};

constexpr Parameters data_set = {{"X", required, Annotation::ndarray}, {"missing_values_reference_list", None}};

}  // namespace

constinit const Definition is_dataset_for_classification{
    .name = "is_dataset_for_classification",
    .parameters = {{"y", required, Annotation::ndarray},
                   {"X", None, Annotation::ndarray},
                   {"missing_values_reference_list", None}},
    .returns = Annotation::boolean,
    .doc = R"(Says whether a target calls for classification: whether it is categorical.

Parameters
----------
y : numpy.ndarray of shape (n,)
    The target.
X : numpy.ndarray, optional
    Not used.
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool
    What `is_column_categorical` answers.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_dataset_for_classification(np.array(["yes", "no", "yes"], dtype=object))
True
)",
    .body = [](Object y, Object /*X*/, Object missing_values_reference_list) -> Ref {
        return is_categorical(y, missing_values_reference_list);
    },
};

constinit const Definition is_dataset_preprocessed{
    .name = "is_dataset_preprocessed",
    .parameters = data_set,
    .returns = Annotation::boolean,
    .doc = R"(Says whether a data set is ready for a learner: no missing values and no column of text.

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_dataset_preprocessed(np.array([[1.0, 2.0], [np.nan, 3.0]]))
False
)",
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis"},
    .body = no_column<Check{.missing = true, .text = true}>,
};

constinit const Definition is_dataset_missing{
    .name = "is_dataset_missing",
    .parameters = data_set,
    .returns = Annotation::boolean,
    .doc = R"(Says whether a data set is free of missing values.

Mind the sense, which is the opposite of what the name suggests: True means that nothing is missing.

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool
    False where at least one column has missing values.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_dataset_missing(np.array([[1.0, 2.0], [np.nan, 3.0]]))
False
)",
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis"},
    .body = no_column<Check{.missing = true, .text = false}>,
};

constinit const Definition get_dataset_missing_columns{
    .name = "get_dataset_missing_columns",
    .parameters = data_set,
    .doc = R"(Lists the columns of a data set that have missing values.

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
    One dimension counts as the single column 0.
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
list of int
    Ascending column indices.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.get_dataset_missing_columns(np.array([[1.0, 2.0], [np.nan, 3.0]]))
[0]
)",
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis"},
    .body = list_of_columns<Check{.missing = true, .text = false}>,
};

constinit const Definition is_dataset_numeric{
    .name = "is_dataset_numeric",
    .parameters = data_set,
    .returns = Annotation::boolean,
    .doc = R"(Says whether a data set has no column of text. Numbers stored as text are text.

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_dataset_numeric(np.array([[1.0, "2.5"], [2.0, "3.5"]], dtype=object))
False
)",
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis"},
    .body = no_column<Check{.missing = false, .text = true}>,
};

constinit const Definition get_dataset_non_numeric_columns{
    .name = "get_dataset_non_numeric_columns",
    .parameters = data_set,
    .doc = R"(Lists the columns of a data set that hold text. Numbers stored as text are text.

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
    One dimension counts as the single column 0.
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
list of int
    Ascending column indices.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.get_dataset_non_numeric_columns(np.array([[1.0, "2.5"], [2.0, "3.5"]], dtype=object))
[1]
)",
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis"},
    .body = list_of_columns<Check{.missing = false, .text = true}>,
};

}  // namespace quorin::features
