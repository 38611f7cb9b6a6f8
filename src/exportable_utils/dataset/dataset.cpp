#include "exportable_utils/dataset/dataset.hpp"

#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::dataset {

constinit const Definition init_from_file{
    .name = "__init__",
    .parameters = {{"self"}, {"csvfname"}},
    .doc = R"(Holds the table that a file of comma-separated values contains.

The constructor that is defined later takes its place.
)",
    .body = [](Object self, Object csvfname) -> Ref {
        set_attr(self, "df"_py, global("pd"_py).attr("read_csv"_py)({csvfname}));
        return Ref::none();
    },
};

constinit const Definition init_from_table{
    .name = "__init__",
    .parameters = {{"self"}, {"dataframe"}},
    .doc = R"(Holds a table in the attribute `df`.

Parameters
----------
dataframe : object
    Any table; no copy is made.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import DatasetS
>>> table = pd.DataFrame({"a": [1]})
>>> DatasetS(table).df is table
True
)",
    .body = [](Object self, Object dataframe) -> Ref {
        set_attr(self, "df"_py, dataframe);
        return Ref::none();
    },
};

constinit const Definition AddNewColumns{
    .name = "AddNewColumns",
    .parameters = {{"self"}, {"fun"}},
    .doc = R"(Adds a transformed copy of every column to the table, named "log" and the column's name.

`df` is replaced after each column, so that columns added before a failure stay.

Parameters
----------
fun : callable
    Takes a column and gives the values of the new one.

Raises
------
AttributeError
    For a table without a method `withColumn(name, values)`, as pandas' frames are.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import DatasetS
>>> class Table(dict):
...     columns = property(list)
...     def withColumn(self, name, values):
...         return Table(self, **{name: values})
>>> holder = DatasetS(Table(a=[1, 10]))
>>> holder.AddNewColumns(lambda column: [2 * value for value in column])
>>> holder.df
{'a': [1, 10], 'loga': [2, 20]}
)",
    .body = [](Object self, Object fun) -> Ref {
        // Read once: columns that the loop adds are not processed.
        const Ref colnames = list_of(self.attr("df"_py).attr("columns"_py));
        const Py_ssize_t columns = length(colnames);
        for (Py_ssize_t i = 0; i < columns; ++i) {
            const Ref new_values = fun({item(self.attr("df"_py), item(colnames, i))});
            const Ref with_column = self.attr("df"_py).attr("withColumn"_py);
            const Ref name = add("log"_py, item(colnames, i));
            set_attr(self, "df"_py, with_column({name, new_values}));
        }
        return Ref::none();
    },
};

constinit const Definition GetTargetType{
    .name = "GetTargetType",
    .parameters = {{"y"}},
    .doc = R"(Says whether a target calls for classification or for regression.

Parameters
----------
y : numpy.ndarray of shape (n,), pandas.Series or list
    Positional only.

Returns
-------
str
    "regression" where `FC.is_not_categorical` holds, "classification" otherwise.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import DatasetS
>>> DatasetS.GetTargetType(np.array([0.5, 1.25, 2.75]))
'regression'
)",
    .body = [](Object y) -> Ref {
        const bool regression = truth(global("FC"_py).attr("is_not_categorical"_py)({y}));
        return Ref::share((regression ? "regression"_py : "classification"_py).text);
    },
};

}  // namespace quorin::dataset
