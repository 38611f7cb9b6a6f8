// Methods of FCplus that call the method of FC.
#include "exportable_utils/features/features.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

// Calls a test of FC and returns its result unchanged.
template <Literal Test>
constexpr auto delegate = [](Object column) -> Ref { return global("FC"_py).attr(name_of<Test>())({column}); };

template <Literal Test>
constexpr auto delegate_with_name =
    [](Object column, Object name) -> Ref { return global("FC"_py).attr(name_of<Test>())({column, name}); };

}  // namespace

constinit const Definition is_column_constant{
    .name = "is_column_constant",
    .parameters = {{"dfc"}},
    .doc = R"(Says whether a column holds a single value.

Parameters
----------
dfc : pandas.DataFrame
    One column. Positional only.

Returns
-------
bool
    What `FC.is_constant` answers.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_constant(pd.DataFrame({"a": [7, 7, 7]}))
True
)",
    .body = delegate<"is_constant">,
};

constinit const Definition is_column_string_in_datetime_format{
    .name = "is_column_string_in_datetime_format",
    .parameters = {{"column"}},
    .doc = R"(Says whether a column holds dates or times as text.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool
    What `FC.is_string_in_datetime_format` answers.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_string_in_datetime_format(np.array(["2024-01-31", "2024-02-29"]))
True
)",
    .lookups = {"FC.is_string_in_datetime_format"},
    .body = delegate<"is_string_in_datetime_format">,
};

constinit const Definition is_column_epoch{
    .name = "is_column_epoch",
    .parameters = {{"column"}},
    .doc = R"(Says whether a column holds points in time, counted from 1970.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool
    What `FC.is_epoch` answers.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_epoch(np.array([1, 2, 3]))
False
)",
    .body = delegate<"is_epoch">,
};

constinit const Definition is_column_longitude{
    .name = "is_column_longitude",
    .parameters = {{"column"}, {"name", None}},
    .doc = R"(Says whether a column holds geographic longitudes.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Degrees.
name : object, optional
    The name of the column.

Returns
-------
bool
    What `FC.is_longitude` answers.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_longitude(np.array([200.5, 300.25]), "lon")
False
)",
    .body = delegate_with_name<"is_longitude">,
};

constinit const Definition is_column_latitude{
    .name = "is_column_latitude",
    .parameters = {{"column"}, {"name", None}},
    .doc = R"(Says whether a column holds geographic latitudes.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Degrees.
name : object, optional
    The name of the column.

Returns
-------
bool
    What `FC.is_latitude` answers.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_latitude(np.array([100.5, 120.25]), "lat")
False
)",
    .body = delegate_with_name<"is_latitude">,
};

constinit const Definition is_column_distance{
    .name = "is_column_distance",
    .parameters = {{"column"}},
    .doc = R"(Says whether a column holds distances.

Parameters
----------
column : numpy.ndarray, pandas.Series or list
    Positional only.

Returns
-------
bool
    What `FC.is_distance` answers.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_distance(np.array([-1.5, -2.5]))
False
)",
    .body = delegate<"is_distance">,
};

}  // namespace quorin::features
