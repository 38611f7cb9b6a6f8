// Questions about a whole data set. Five of them are one walk over the columns: each column is classified, and what
// is asked of the answer, and what is done with it, is a line per question.
#include <algorithm>
#include <optional>
#include <vector>

#include "core/gather/null_columns.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "exportable_utils/references/references.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

struct Question {
    bool missing;  // does the column hold missing values?
    bool text;     // does it hold text, numbers as text included?
};

bool hit(Question question, const Classified& column) {
    if (question.missing && truth(column.misslist)) return true;
    if (!question.text) return false;
    return equal(column.dtype_str, "char_str"_py) || equal(column.dtype_str, "int_str"_py) ||
           equal(column.dtype_str, "float_str"_py);
}

// The columns with nulls, if these count. Nothing if numpy would warn of a signalling NaN in a column that the walk
// over the columns classifies: with one_is_enough it ends at the first column with a null.
template <class Float>
std::optional<std::vector<bool>> null_hits(core::Table table, bool nulls_count, bool one_is_enough) {
    if (!nulls_count) {
        if (core::any_signalling_nan<Float>(table)) return std::nullopt;
        return std::vector<bool>(table.columns);
    }
    std::vector<bool> hits = core::null_columns<Float>(table, one_is_enough);
    const auto first = static_cast<std::size_t>(std::find(hits.begin(), hits.end(), true) - hits.begin());
    if (first == hits.size()) return hits;
    if (one_is_enough) table.columns = first + 1;
    if (core::any_signalling_nan<Float>(table)) return std::nullopt;
    return hits;
}

// The columns of a table of numbers that the question hits, straight from its memory: numbers are never text, and
// without a number among the markers only nulls are missing.
std::optional<std::vector<bool>> native_hits(Question question, Object X, Object markers_list, bool one_is_enough) {
    if (!date_test_in_place() || !is_exact_array(X)) return std::nullopt;
    PyArrayObject* array = as_array(X);
    if (PyArray_NDIM(array) != 2 || PyArray_DIM(array, 1) == 0) return std::nullopt;
    const std::optional<references::References> markers = references::read_references(markers_list);
    if (!markers || !markers->numbers.empty()) return std::nullopt;
    // The first column stands for the others where it comes to dtype, rows and memory.
    const Ref first = matrix_column(X, 0);
    const std::optional<ArrayColumn> column = flat_column(first);
    if (!column) return std::nullopt;
    const auto width = static_cast<std::size_t>(PyArray_DIM(array, 1));
    const core::Table table{*column, width, PyArray_STRIDE(array, 1)};
    const bool nulls_count = question.missing && markers->null_bits != 0;
    switch (column->storage) {
        case Storage::objects:
        case Storage::fixed_text:
            return std::nullopt;
        case Storage::float64:
            return null_hits<double>(table, nulls_count, one_is_enough);
        case Storage::float32:
            return null_hits<float>(table, nulls_count, one_is_enough);
        case Storage::integer:
        case Storage::boolean:
            break;
    }
    return std::vector<bool>(width);
}

enum class Wanted { first, all };

// Hands the index of each column that the question hits to `on_hit`, until that says no more.
template <class OnHit>
void walk(Question question, Wanted wanted, Object X, Object missing_values_reference_list, OnHit on_hit) {
    const Ref l_missing_values_reference_list = markers_in_force(missing_values_reference_list);
    if (equal(X.attr("ndim"_py), 1)) {
        if (hit(question, Classifier()(X, l_missing_values_reference_list))) on_hit(0);
        return;
    }
    if (const auto hits = native_hits(question, X, l_missing_values_reference_list, wanted == Wanted::first)) {
        for (std::size_t j = 0; j < hits->size(); ++j) {
            if ((*hits)[j] && !on_hit(static_cast<Py_ssize_t>(j))) return;
        }
        return;
    }
    const Py_ssize_t columns = count(column_count(X));
    for (Py_ssize_t j = 0; j < columns; ++j) {
        if (hit(question, Classifier()(matrix_column(X, j), l_missing_values_reference_list)) && !on_hit(j)) return;
    }
}

// True where no column is hit. The first hit settles it.
template <Question question>
constexpr auto no_column = [](Object X, Object missing_values_reference_list) -> Ref {
    bool flag = true;
    walk(question, Wanted::first, X, missing_values_reference_list, [&](Py_ssize_t) { return flag = false; });
    return Ref::truth(flag);
};

// The columns that are hit.
template <Question question>
constexpr auto columns_with = [](Object X, Object missing_values_reference_list) -> Ref {
    Ref columns = list({});
    walk(question, Wanted::all, X, missing_values_reference_list, [&](Py_ssize_t j) {
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
    .body = no_column<Question{.missing = true, .text = true}>,
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
    .body = no_column<Question{.missing = true, .text = false}>,
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
    .body = columns_with<Question{.missing = true, .text = false}>,
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
    .body = no_column<Question{.missing = false, .text = true}>,
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
    .body = columns_with<Question{.missing = false, .text = true}>,
};

}  // namespace quorin::features
