"""Model and module agree on integer text, category labels, order and dates."""

from __future__ import annotations

from hypothesis import strategies as st

from helpers.column_strategies import (
    array_layouts,
    cells,
    columns,
    marked,
    markers,
    optional_markers,
)
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.tracing import Trace

DATES = [
    "2020-01-01", "2020-01-02", "2021-03-04", "2020-03-04T05:06:07", "2020-03-04 05:06:07+01:00",
    "01/02/2020",
    "13/02/2020", "1 Jan 2020", "2020", "20200101", "12:30", "nat", "", None, "?", "1.5", 1, 2.5,
    10**18,
]  # fmt: skip
date_columns = st.one_of(
    st.lists(st.sampled_from(DATES[:3]), max_size=5),
    st.lists(st.sampled_from(DATES[:3]), max_size=5, unique=True).map(sorted),
    st.lists(st.sampled_from(DATES), max_size=4),
    columns(),
    cells,
)
wanted = st.one_of(
    st.lists(st.integers(-1, 4), max_size=4),
    st.sampled_from([(), (0,), {0, 1}, range(3), {1: 0}, [0.0], [True], None, 3, "0", [0, 1, 2]]),
)


@property_test(weight=2, case=marked(), traced=st.booleans())
def test_isintstr(case, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_isintstr", (X, values), trace=trace)
    compare("numpy_isintstr", (X,), {"missing_values_reference_list": values})


@property_test(
    weight=2,
    case=marked(columns(array_layouts), st.one_of(markers, optional_markers)),
    indices=wanted,
    collected=st.sampled_from([None, [], [["kept"]], (), 5]),
    traced=st.booleans(),
)
def test_get_categories(case, indices, collected, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_get_categories", (X, indices, values), trace=trace)
    compare("numpy_get_categories", (X, indices, values, collected))
    compare("numpy_get_categories", (X, [0, 1], values), {"categories_list2": collected})


@property_test(
    weight=2,
    X=st.one_of(columns(), columns(array_layouts, ["words", "any text"])),
    indices=wanted,
    values=markers,
)
def test_get_categories_of_any_column(X, indices, values):
    compare("numpy_get_categories", (X, indices, values))
    compare("numpy_get_categories", (X, [0, 1], ["?", "x1"]), trace=Trace())


@property_test(weight=1, column=date_columns, traced=st.booleans())
def test_order_and_dates(column, traced):
    trace = Trace() if traced else None
    compare("numpy_is_column_monotonic_increasing", (column,), trace=trace)
    compare("numpy_is_column_monotonic_decreasing", (column,), trace=trace)
    compare("numpy_is_column_datetime", (column,), trace=trace)
    compare("FCplus.is_column_datetime", (column,), trace=trace)
