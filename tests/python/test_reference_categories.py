"""Model and module agree on categorical columns, checks of whole tables and class listing."""

from __future__ import annotations

import numpy as np
from hypothesis import strategies as st

from helpers.column_strategies import array_layouts, columns, flags, marked
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.recipes import Recipe
from helpers.tracing import Trace

PER_COLUMN = ["is_column_categorical", "is_numerical"]
PER_TABLE = [
    "find_categorical_columns",
    "find_numerical_columns",
    "is_dataset_preprocessed",
    "is_dataset_missing",
    "get_dataset_missing_columns",
    "is_dataset_numeric",
    "get_dataset_non_numeric_columns",
]
limits = st.sampled_from([100, 0.1, 0, 1, 2, 5, 3.5, None, "5", float("nan"), np.int64(4), True])
number_kinds = ["small integers", "integers", "whole floats", "numbers and missing"]


def many(distinct: int, rows: int) -> Recipe:
    return Recipe(
        "np.arange({}) % {}".format(rows, distinct), lambda inner: np.arange(rows) % distinct
    )


long_columns = st.one_of(
    st.builds(many, st.integers(1, 120), st.integers(0, 1100)),
    st.builds(many, st.integers(1, 6), st.integers(28, 31)),
    st.builds(many, st.integers(98, 102), st.sampled_from([990, 1000, 1010, 1100, 2000])),
)


@st.composite
def tables(draw):
    """A table whose columns are of different kinds, as an object array or of one dtype."""
    parts = draw(st.lists(columns(st.just("plain")), max_size=4))
    text = "table_of({!r})".format(parts)
    order = draw(st.sampled_from("CF"))

    def make(inner):
        arrays = [np.asarray(inner(part), dtype=object) for part in parts]
        rows = max([array.shape[0] for array in arrays] + [0])
        table = np.empty((rows, len(arrays)), dtype=object, order=order)
        for j, array in enumerate(arrays):
            table[:, j] = np.resize(array, rows) if array.shape[0] else None
        return table

    return Recipe(text, make)


@property_test(
    weight=2,
    dfc=st.one_of(columns(), long_columns),
    uni_max=limits,
    uni_ratio=limits,
    traced=st.booleans(),
)
def test_is_num_column_categorical(dfc, uni_max, uni_ratio, traced):
    trace = Trace() if traced else None
    compare("FCplus.is_num_column_categorical", (dfc,), trace=trace)
    compare("FCplus.is_num_column_categorical", (dfc, uni_max, uni_ratio))
    compare("FCplus.is_num_column_categorical", (dfc,), {"uni_ratio": uni_ratio})


@property_test(
    weight=2,
    case=marked(st.one_of(columns(), columns(array_layouts, number_kinds), long_columns)),
    traced=st.booleans(),
)
def test_categorical_columns(case, traced):
    y, values = case
    trace = Trace() if traced else None
    for name in PER_COLUMN:
        compare("FCplus." + name, (y, values), trace=trace)
        compare("FCplus." + name, (y,), {"missing_values_reference_list": values})
    compare("FCplus.is_dataset_for_classification", (y,), trace=trace)
    compare("FCplus.is_dataset_for_classification", (y, None, values))


@property_test(weight=2, case=marked(st.one_of(columns(), tables())), traced=st.booleans())
def test_tables(case, traced):
    X, values = case
    trace = Trace() if traced else None
    for name in PER_TABLE:
        compare("FCplus." + name, (X, values), trace=trace)
        compare("FCplus." + name, (X,))


@property_test(weight=2, case=marked(), exclude=flags, traced=st.booleans())
def test_classes(case, exclude, traced):
    y, values = case
    trace = Trace() if traced else None
    compare("FCplus.getClasses", (y,), trace=trace)
    compare("FCplus.getClasses", (y, exclude, values), trace=trace)
    compare("FCplus.getClasses", (y,), {"exclude_missing_class_flag": exclude})
