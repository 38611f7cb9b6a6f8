"""Model and module agree on the detectors of meaning and the guarded delegations."""

from __future__ import annotations

import decimal

import numpy as np
import pandas as pd
from hypothesis import strategies as st

from helpers.column_strategies import PANDAS, columns, optional_markers
from helpers.comparison import compare, model, module, outcome, replaced
from helpers.property_tests import property_test
from helpers.recipes import Recipe, column
from helpers.tracing import Trace

DETECTORS = [
    "is_column_sex",
    "is_column_height",
    "is_column_weight",
    "is_column_timestamp",
    "is_column_positive",
    "is_column_non_negative",
    "is_column_not_all_non_negative",
    "is_column_lt80pc_unique_int",
]
WITH_MARKERS = [
    "is_column_age",
    "is_column_missing",
    "is_column_string",
    "is_column_categorical_mult_cats",
    "is_column_not_categorical",
]
CELLS = {
    "heights": [60, 66.4, 75.0, 21.49, 107.08, 110, 54.625, 78.175, 26.1, 30, np.nan],
    "weights": [120, 177.9, 250, 102, 300, 50, 80.5, 55.2, 225, 400, 660.0, np.nan],
    "ages": [0, 10, 40, 80, 81, 100, 101, -1],
    "sexes": ["m", "f", "male", "female", "M", "?", None],
    "odd": [
        decimal.Decimal("66"),
        None,
        "66",
        True,
        66,
        np.float32(66),
        pd.Timestamp("2020-01-01"),
    ],
}


@st.composite
def frames(draw):
    """A frame of one or two columns with cells around the limits of the detectors."""
    cells = CELLS[draw(st.sampled_from(sorted(CELLS)))]
    width = draw(st.sampled_from([1, 1, 1, 2]))
    rows = draw(
        st.lists(st.lists(st.sampled_from(cells), min_size=width, max_size=width), max_size=5)
    )
    names = draw(st.sampled_from([[0, 1], ["a", "b"]]))[:width]
    dtype = draw(st.sampled_from([None, object]))
    text = "pd.DataFrame({!r}, columns={!r}, dtype={!r})".format(rows, names, dtype)
    return Recipe(text, lambda inner: pd.DataFrame(rows, columns=names, dtype=dtype))


anything = st.one_of(frames(), columns(st.sampled_from(PANDAS)), columns())
numbers = st.sampled_from(
    [0, 1, 2.54, 40, 66.4, 3.925, -1, float("nan"), None, "1", decimal.Decimal(2)]
)


@property_test(weight=2, dfc=anything, values=optional_markers, traced=st.booleans())
def test_detectors(dfc, values, traced):
    trace = Trace() if traced else None
    for name in DETECTORS:
        compare("FCplus." + name, (dfc,), trace=trace)
    for name in WITH_MARKERS:
        compare("FCplus." + name, (dfc,), trace=trace)
        compare("FCplus." + name, (dfc, values))
        compare("FCplus." + name, (dfc,), {"missing_values_reference_list": values})


small = st.integers(0, 4)
small_columns = st.builds(
    lambda cells, layout: column(cells, "i8", layout),
    st.lists(small, min_size=1, max_size=3),
    st.sampled_from(["series", "frame", "wide_frame"]),
)


@property_test(
    weight=2,
    dfc=small_columns,
    limits=st.tuples(small, small, small, small, st.integers(0, 3)),
    factors=st.lists(st.sampled_from([1, 2, 0.5]), max_size=2),
)
def test_check_statistics_at_its_limits(dfc, limits, factors):
    compare("FCplus.check_statistics", (dfc,) + limits + (factors,))


@property_test(
    weight=2,
    dfc=anything,
    mean=numbers,
    std=numbers,
    low=numbers,
    high=numbers,
    num_stds=numbers,
    factors=st.one_of(
        st.lists(numbers, max_size=3), st.sampled_from([(1, 2), [1], [1, 2.54], None, range(2)])
    ),
)
def test_check_statistics(dfc, mean, std, low, high, num_stds, factors):
    compare("FCplus.check_statistics", (dfc, mean, std, low, high, num_stds, factors))
    compare(
        "FCplus.check_statistics",
        (dfc, 66.4, 3.925, 21.49, 107.08, 3),
        {"unit_factors_list": [1, 2.54]},
    )


class Answer:
    """An answer of FC with a `bool` method."""

    def __init__(self, value):
        self.value = value

    def bool(self):
        return self.value


@property_test(
    weight=1, dfc=anything, value=st.sampled_from([True, False, None, [], 5, np.bool_(1)])
)
def test_guarded_delegations_hand_on_the_answer(dfc, value):
    class FC:
        is_positive = is_non_negative = staticmethod(lambda dfc: Answer(value))
        is_not_all_non_negative = is_lt80pc_unique_int = staticmethod(lambda dfc: value)

    for name in DETECTORS[4:]:
        shown = []
        for side in (model, module):
            with replaced(side, {"FC": FC}):
                shown.append(outcome(side, "FCplus." + name, (dfc,), {}))
        assert shown[0] == shown[1]
