#include <algorithm>
#include <optional>

#include "exportable_utils/distinct/distinct_values.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "exportable_utils/features/unlisted_numbers.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/errors.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

// A column with fewer than few_values distinct values and fewer than few_rows rows is categorical.
constexpr Py_ssize_t few_values = 5;
constexpr Py_ssize_t few_rows = 30;

// np.unique(dfc). If it fails, the exception and the column are printed before it is raised again.
Ref distinct_values(Object dfc) {
    try {
        return global("np"_py).attr("unique"_py)({dfc});
    } catch (const PythonError& error) {
        if (!PythonError::matches(PyExc_Exception)) throw;
        const Handling handling(error, "is_num_column_categorical");
        print(concat({"exception "_py, text_of(handling.exception())}));
        print(Py_TYPE(dfc.get()));
        print(dfc);
        print(dfc.attr("isnull"_py)().attr("any"_py)());
        raise(handling.exception());
    }
}

double ratio(Py_ssize_t part, Py_ssize_t whole) {
    if (whole == 0) fail(PyExc_ZeroDivisionError, "float division");
    return static_cast<double>(part) / static_cast<double>(whole);
}

// Whether the column has few distinct values. Stops counting them at max(uni_max, few_values), which decides it.
Ref native_few_values(Object dfc, Object uni_max, Object uni_ratio) {
    constexpr long most_counted = 100000;
    return native_route([&]() -> Ref {
        if (!PyLong_CheckExact(uni_max.get()) || !PyFloat_CheckExact(uni_ratio.get())) return {};
        int overflow = 0;
        const long most = PyLong_AsLongAndOverflow(uni_max.get(), &overflow);
        if (overflow != 0 || most < 0 || most > most_counted) return {};
        const std::optional<ColumnSource> column = ColumnSource::single(dfc);
        if (!column) return {};
        const std::size_t enough = static_cast<std::size_t>(std::max<long>(most, few_values));
        const std::optional<std::size_t> uni = distinct::count_distinct_numbers(*column, enough);
        if (!uni) return {};
        const double r = static_cast<double>(*uni) / static_cast<double>(column->rows());
        if (*uni < static_cast<std::size_t>(most) && r < PyFloat_AS_DOUBLE(uni_ratio.get())) return Ref::truth(true);
        return Ref::truth(*uni == 2 || (*uni < few_values && column->rows() < few_rows));
    });
}

// For an array of numbers only the numbers of the list matter: a NaN read from such an array is a new object, which is
// neither identical nor equal to an element of the list.
Ref native_without(Object y, Object misslist) {
    return native_route([&]() -> Ref {
        if (!PyList_CheckExact(misslist.get())) return {};
        const std::optional<ColumnSource> column = ColumnSource::flat(y);
        if (!column || column->storage() == Storage::fixed_text) return {};
        const std::optional<references::References> references = references::read_references(misslist, *column);
        if (!references) return {};
        if (column->storage() == Storage::objects) return numbers_without(*column, *references);
        if (references->numbers.empty()) return Ref::share(y);
        const Ref mask = references::membership_mask(*column, *references, references::Match::without_nulls);
        return mask ? item(y, inverted(mask)) : Ref();
    });
}

// The values of y that are not in misslist.
Ref without(Object y, Object misslist) {
    if (Ref kept = native_without(y, misslist)) return kept;
    const Ref ylist = list({});
    const Py_ssize_t rows = count(row_count(y));
    for (Py_ssize_t i = 0; i < rows; ++i) {
        if (!contains(misslist, item(y, i))) append(ylist, item(y, i));
    }
    return global("np"_py).attr("asarray"_py)({ylist});
}

Ref has_few_values(Object y) {
    return global("FCplus"_py).attr("is_num_column_categorical"_py)({y}, {{"uni_max"_py, 100}, {"uni_ratio"_py, 0.1}});
}

// The list of the columns for which a test of FCplus returns true.
Ref find_columns(Name test, Object X, Object missing_values_reference_list) {
    // Looks the test up before it makes the argument, as a Python call does.
    const auto accepted = [&](const auto& make_column) {
        const Ref method = global("FCplus"_py).attr(test);
        return truth(method({make_column()}, {{"missing_values_reference_list"_py, missing_values_reference_list}}));
    };
    Ref output_index_list = list({});
    if (equal(X.attr("ndim"_py), 1)) {
        if (accepted([&] { return X.attr("reshape"_py)({-1, 1}); })) append(output_index_list, whole(0));
        return output_index_list;
    }
    const Py_ssize_t columns = count(column_count(X));
    for (Py_ssize_t j = 0; j < columns; ++j) {
        if (accepted([&] { return matrix_column(X, j); })) append(output_index_list, whole(j));
    }
    return output_index_list;
}

}  // namespace

constinit const Definition is_num_column_categorical{
    .name = "is_num_column_categorical",
    .parameters = {{"dfc"}, {"uni_max", 100}, {"uni_ratio", 0.1}},
    .doc = R"(Says whether a column of numbers has so few distinct values that it is categorical.

It is when it has fewer than `uni_max` distinct values and these are less than `uni_ratio` of its length; or exactly
two; or fewer than 5 in fewer than 30 rows.

Parameters
----------
dfc : numpy.ndarray of shape (n,), pandas.Series or pandas.DataFrame
uni_max : int
uni_ratio : float

Returns
-------
bool

Raises
------
ZeroDivisionError
    For an empty column.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_num_column_categorical(np.arange(10) % 4)
True
)",
    .has_native_route = true,
    .lookups = {"np.unique"},
    .body = [](Object dfc, Object uni_max, Object uni_ratio) -> Ref {
        if (Ref few = native_few_values(dfc, uni_max, uni_ratio)) return few;
        const Ref uni = distinct_values(dfc);
        const Py_ssize_t distinct = length(uni);
        const double r = ratio(distinct, length(dfc));
        if (less(length(uni), uni_max)) {
            Ref few_enough = compare(r, Py_LT, uni_ratio);
            if (truth(few_enough)) return few_enough;
        }
        if (length(uni) == 2) return Ref::truth(true);
        return Ref::truth(length(uni) < few_values && length(dfc) < few_rows);
    },
};

constinit const Definition is_column_categorical{
    .name = "is_column_categorical",
    .parameters = {{"y", required, Annotation::ndarray}, {"missing_values_reference_list", None}},
    .returns = Annotation::boolean,
    .doc = R"(Says whether a column is categorical.

Text and integer text always are; integers and whole-valued floats are when their values that are not missing are few
(`is_num_column_categorical`); nothing else is.

Parameters
----------
y : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool

Raises
------
ZeroDivisionError
    For a column of integers that are all missing.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_categorical(np.array(["a", "b", "c"], dtype=object))
True
>>> FCplus.is_column_categorical(np.array([0.5, 1.5, 2.5]))
False
)",
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis", "np.asarray", "FCplus.is_num_column_categorical"},
    .body = [](Object y, Object missing_values_reference_list) -> Ref {
        const Ref l_missing_values_reference_list = markers_in_force(missing_values_reference_list);
        const auto [misslist, dtype_str] = Classifier()(y, l_missing_values_reference_list);
        if (equal(dtype_str, "int_str"_py) || equal(dtype_str, "char_str"_py)) return Ref::truth(true);
        if (equal(dtype_str, "int_num"_py) || equal(dtype_str, "float_int_num"_py)) {
            return truth(misslist) ? has_few_values(without(y, misslist)) : has_few_values(y);
        }
        return Ref::truth(false);
    },
};

constinit const Definition find_categorical_columns{
    .name = "find_categorical_columns",
    .parameters = {{"X", required, Annotation::ndarray}, {"missing_values_reference_list", None}},
    .doc = R"(Lists the categorical columns of a data set.

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
>>> X = np.array([["a", 0.5], ["b", 1.5], ["a", 2.5]], dtype=object)
>>> FCplus.find_categorical_columns(X)
[0]
)",
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        return find_columns("is_column_categorical"_py, X, missing_values_reference_list);
    },
};

constinit const Definition is_numerical{
    .name = "is_numerical",
    .parameters = {{"y", required, Annotation::ndarray}, {"missing_values_reference_list", None}},
    .returns = Annotation::boolean,
    .doc = R"(Says whether a column is numerical, that is, not categorical.

Parameters
----------
y : numpy.ndarray of shape (n,)
missing_values_reference_list : list, optional
    Values that count as missing; the module's list by default.

Returns
-------
bool

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_numerical(np.array([0.5, 1.5, 2.5]))
True
)",
    .body = [](Object y, Object missing_values_reference_list) -> Ref {
        return Ref::truth(!truth(is_categorical(y, missing_values_reference_list)));
    },
};

constinit const Definition find_numerical_columns{
    .name = "find_numerical_columns",
    .parameters = {{"X", required, Annotation::ndarray}, {"missing_values_reference_list", None}},
    .doc = R"(Lists the numerical columns of a data set: those that are not categorical.

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
>>> X = np.array([["a", 0.5], ["b", 1.5], ["a", 2.5]], dtype=object)
>>> FCplus.find_numerical_columns(X)
[1]
)",
    .body = [](Object X, Object missing_values_reference_list) -> Ref {
        return find_columns("is_numerical"_py, X, missing_values_reference_list);
    },
};

}  // namespace quorin::features
