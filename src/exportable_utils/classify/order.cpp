// Properties of a column converted by pandas.to_datetime(). They return False if the conversion raises an Exception.
#include "exportable_utils/classify/classify.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

// Returns property(pd.to_datetime(column)), or False if that raises an Exception.
template <class Property>
Ref of_dates(Object column, const char* routine, Property property) {
    try {
        return property(global("pd"_py).attr("to_datetime"_py)({column}));
    } catch (const PythonError& error) {
        if (!PythonError::matches(PyExc_Exception)) throw;
        const Handling handling(error, routine);
        return Ref::truth(false);
    }
}

}  // namespace

constinit const Definition numpy_is_column_monotonic_increasing{
    .name = "numpy_is_column_monotonic_increasing",
    .parameters = {{"column"}},
    .doc = R"(Says whether a column, read as dates by pandas, never decreases.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool
    Also False where the column cannot be read as dates.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import numpy_is_column_monotonic_increasing
>>> numpy_is_column_monotonic_increasing(["2024-01-31", "2024-02-29"])
True
)",
    .body = [](Object column) -> Ref {
        return of_dates(column, "numpy_is_column_monotonic_increasing",
                        [](const Ref& dt) { return dt.attr("is_monotonic_increasing"_py); });
    },
};

constinit const Definition numpy_is_column_monotonic_decreasing{
    .name = "numpy_is_column_monotonic_decreasing",
    .parameters = {{"column"}},
    .doc = R"(Says whether a column, read as dates by pandas, never increases.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool
    Also False where the column cannot be read as dates.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import numpy_is_column_monotonic_decreasing
>>> numpy_is_column_monotonic_decreasing(["2024-01-31", "2024-02-29"])
False
)",
    .body = [](Object column) -> Ref {
        return of_dates(column, "numpy_is_column_monotonic_decreasing",
                        [](const Ref& dt) { return dt.attr("is_monotonic_decreasing"_py); });
    },
};

constinit const Definition numpy_is_column_datetime{
    .name = "numpy_is_column_datetime",
    .parameters = {{"column"}},
    .doc = R"(Says whether pandas can read a column as dates.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool

Examples
--------
>>> from quorin_libs.utils.exportable_utils import numpy_is_column_datetime
>>> numpy_is_column_datetime(["2024-01-31"]), numpy_is_column_datetime(["no date"])
(True, False)
)",
    .body = [](Object column) -> Ref {
        return of_dates(column, "numpy_is_column_datetime", [](const Ref&) { return Ref::truth(true); });
    },
};

}  // namespace quorin::classify
