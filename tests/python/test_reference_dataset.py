"""Model and module agree on the table holder."""

from __future__ import annotations

import pandas as pd
import pytest
from hypothesis import strategies as st

from helpers.column_strategies import cells, columns
from helpers.comparison import compare, model, module
from helpers.property_tests import property_test
from helpers.tracing import Trace


class Table:
    """A table that records the columns added to it."""

    def __init__(self, columns, content):
        self.columns = columns
        self.content = content

    def __getitem__(self, name):
        return self.content[name]

    def withColumn(self, name, values):  # noqa: N802
        content = dict(self.content)
        content[name] = values
        return Table(list(self.columns) + [name], content)


def held(side, names, missing, function):
    """The content of a holder after the call, and its error."""
    table = Table(names, {name: [i, i + 1] for i, name in enumerate(names) if name != missing})
    holder = side.DatasetS(table)
    assert holder.df is table
    error = None
    try:
        assert holder.AddNewColumns(function) is None
    except Exception as e:
        error = (type(e), str(e))
    return holder.df.columns, repr(holder.df.content), error, holder.df is table


names = st.lists(st.sampled_from(["a", "b", "age", "", 0, None]), max_size=4, unique=True)
functions = st.sampled_from([sum, len, max, "not callable", lambda column: 1 / column[0]])


@property_test(weight=1, names=names, missing=st.sampled_from(["b", "none"]), function=functions)
def test_add_new_columns(names, missing, function):
    assert held(model, names, missing, function) == held(module, names, missing, function)


@pytest.mark.parametrize("frame", [pd.DataFrame(), pd.DataFrame({"a": [1]}), None, 5])
def test_frames_have_no_such_method(frame):
    shown = []
    for side in (model, module):
        holder = side.DatasetS(dataframe=frame)
        assert holder.df is frame
        try:
            shown.append(holder.AddNewColumns(lambda column: column))
        except Exception as e:
            shown.append((type(e), str(e)))
        assert holder.df is frame
    assert shown[0] == shown[1]


@property_test(weight=1, y=st.one_of(columns(), cells))
def test_target_type(y):
    compare("DatasetS.GetTargetType", (y,))
    compare("DatasetS.GetTargetType", (y,), trace=Trace(["FC"]))
