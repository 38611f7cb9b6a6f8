#include <optional>

#include "exportable_utils/distinct/distinct_values.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

enum class Result { as_returned, by_bool_method };

// Calls a test of FC for columns of numbers. Returns False, without calling it, if the first cell is a text.
template <Literal Test, Result result>
constexpr auto test_of_numbers = [](Object dfc) -> Ref {
    if (first_cell_is_text(dfc)) return Ref::truth(false);
    Ref answer = global("FC"_py).attr(name_of<Test>())({dfc});
    if constexpr (result == Result::by_bool_method) answer = answer.attr("bool"_py)();
    return answer;
};

// Whether a column has more than two distinct values; all NaN count as one value.
Ref native_several_values(Object dfc) {
    constexpr std::size_t several = 3;
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> column = ColumnSource::single(dfc);
        if (!column) return {};
        std::optional<std::size_t> distinct = distinct::count_distinct_texts(*column, several);
        if (!distinct) distinct = distinct::count_distinct_numbers(*column, several);
        return distinct ? Ref::truth(*distinct == several) : Ref();
    });
}

}  // namespace

constinit const Definition is_column_datetime{
    .name = "is_column_datetime",
    .parameters = {{"column"}},
    .doc = R"(Says whether pandas can read a column as dates.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool
    What `numpy_is_column_datetime` answers.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_datetime(["2024-01-31", "2024-02-29"])
True
)",
    .body = [](Object column) -> Ref { return global("numpy_is_column_datetime"_py)({column}); },
};

constinit const Definition is_column_timestamp{
    .name = "is_column_timestamp",
    .parameters = {{"series"}},
    .doc = R"(Says whether a column is of a dtype of points in time or of durations, in nanoseconds.

Parameters
----------
series : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_timestamp(pd.DataFrame({"a": ["2024-01-31"]}))
False
)",
    .body = [](Object series) -> Ref {
        if (first_cell_is_text(series)) return Ref::truth(false);
        const auto dtype_test = [&](Name test) {
            const Ref common = global("pd"_py).attr("core"_py).attr("dtypes"_py).attr("common"_py);
            return common.attr(test)({series});
        };
        // Not `or`: the second test is called even if the first is true.
        const Ref is_datetime = dtype_test("is_datetime64_ns_dtype"_py);
        return either(is_datetime, dtype_test("is_timedelta64_ns_dtype"_py));
    },
};

constinit const Definition is_column_missing{
    .name = "is_column_missing",
    .parameters = {{"column"}, {"missing_values_reference_list", None}},
    .returns = Annotation::boolean,
    .doc = R"(Says whether a column has missing values.

Parameters
----------
column : numpy.ndarray of shape (n,) or pandas.Series
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_missing(np.array(["a", "?", "b"], dtype=object))
True
)",
    .body = [](Object column, Object missing_values_reference_list) -> Ref {
        const Ref l_missing_values_reference_list = markers_in_force(missing_values_reference_list);
        return Ref::truth(truth(Classifier()(column, l_missing_values_reference_list).misslist));
    },
};

constinit const Definition is_column_string{
    .name = "is_column_string",
    .parameters = {{"column"}, {"missing_values_reference_list", None}},
    .doc = R"(Says whether a column holds text that is no number.

Parameters
----------
column : numpy.ndarray of shape (n,) or pandas.Series
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool
    Whether the column's kind is "char_str".

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_string(np.array(["1", "2"], dtype=object))
False
)",
    .body = [](Object column, Object missing_values_reference_list) -> Ref {
        const Ref l_missing_values_reference_list = markers_in_force(missing_values_reference_list);
        return Ref::truth(equal(Classifier()(column, l_missing_values_reference_list).dtype_str, "char_str"_py));
    },
};

constinit const Definition is_column_positive{
    .name = "is_column_positive",
    .parameters = {{"dfc"}},
    .returns = Annotation::boolean,
    .doc = R"(Says whether all numbers of a column are above 0.

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    What `FC.is_positive` answers; False where the first cell is a text.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_positive(pd.DataFrame({"a": [1, 2]}))
True
)",
    .body = test_of_numbers<"is_positive", Result::by_bool_method>,
};

constinit const Definition is_column_non_negative{
    .name = "is_column_non_negative",
    .parameters = {{"dfc"}},
    .doc = R"(Says whether no number of a column is below 0.

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    What `FC.is_non_negative` answers; False where the first cell is a text.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_non_negative(pd.DataFrame({"a": [0, 2]}))
True
)",
    .body = test_of_numbers<"is_non_negative", Result::by_bool_method>,
};

constinit const Definition is_column_not_all_non_negative{
    .name = "is_column_not_all_non_negative",
    .parameters = {{"dfc"}},
    .doc = R"(Says whether some number of a column is below 0.

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    What `FC.is_not_all_non_negative` answers; False where the first cell is a text.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_not_all_non_negative(pd.DataFrame({"a": [-1, 2]}))
True
)",
    .body = test_of_numbers<"is_not_all_non_negative", Result::as_returned>,
};

constinit const Definition is_column_lt80pc_unique_int{
    .name = "is_column_lt80pc_unique_int",
    .parameters = {{"dfc"}},
    .doc = R"(Says whether a column of integers has distinct values for less than 80 per cent of its rows.

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    What `FC.is_lt80pc_unique_int` answers; False where the first cell is a text.

Raises
------
IndexError
    For an empty frame and for a Series.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_lt80pc_unique_int(pd.DataFrame({"a": [1, 1, 2, 2]}))
True
)",
    .body = test_of_numbers<"is_lt80pc_unique_int", Result::as_returned>,
};

constinit const Definition is_column_categorical_mult_cats{
    .name = "is_column_categorical_mult_cats",
    .parameters = {{"dfc"}, {"missing_values_reference_list", None}},
    .doc = R"(Says whether a column is categorical with more than two categories.

Parameters
----------
dfc : numpy.ndarray of shape (n,), or pandas object
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool
    The answer of `is_column_categorical` itself where that is false.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_categorical_mult_cats(np.array(["a", "b", "c"], dtype=object))
True
)",
    .has_native_route = true,
    .lookups = {"FCplus.is_column_categorical", "np.unique"},
    .body = [](Object dfc, Object missing_values_reference_list) -> Ref {
        Ref answer = is_categorical(dfc, missing_values_reference_list);
        if (!truth(answer)) return answer;
        if (Ref several = native_several_values(dfc)) return several;
        return Ref::truth(length(global("np"_py).attr("unique"_py)({dfc})) > 2);
    },
};

constinit const Definition is_column_not_categorical{
    .name = "is_column_not_categorical",
    .parameters = {{"dfc"}, {"missing_values_reference_list", None}},
    .doc = R"(Says whether a column is not categorical.

Parameters
----------
dfc : numpy.ndarray of shape (n,), or pandas object
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_not_categorical(np.array([0.5, 1.5, 2.5]))
True
)",
    .body = [](Object dfc, Object missing_values_reference_list) -> Ref {
        return Ref::truth(!truth(is_categorical(dfc, missing_values_reference_list)));
    },
};

}  // namespace quorin::features
