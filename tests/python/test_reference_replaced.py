"""Model and module agree if names are replaced by odd objects or deleted."""

from __future__ import annotations

import numpy as np
import pytest
from hypothesis import strategies as st

from helpers.column_strategies import marked, markers
from helpers.comparison import DELETED, compare
from helpers.property_tests import property_test
from helpers.recipes import Recipe, column
from helpers.replacements import FixedAnswer

CALLS = {
    "numpy_whatis": {"return_stats_flag": True},
    "numpy_isin": {},
    "numpy_compute_missing_indicator": {},
    "get_unique_values": {"return_counts": True},
    "numpy_floatstr2float": {},
    "numpy_boolean2float": {},
    "numpy_flatten_column": {},
}
REPLACED = [
    "numpy_flatten_column", "numpy_remove_second_dim", "numpy_isin", "indicator_mask", "isint",
    "numpy_compute_missing_indicator", "get_unique_values", "numpy_column_float2str", "isfloat",
    "FCplus.is_column_string_in_datetime_format", "pd.isnull", "np.any", "np.unique",
]  # fmt: skip


def array(text, values, **kwargs):
    return Recipe("np.array({})".format(text), lambda inner: np.array(values, **kwargs))


MASK = array("[True, False]", [True, False])
TEXTS = array("['1', '?', 'a']", ["1", "?", "a"], dtype=object)
COUNTS = array("[1, 1, 1]", [1, 1, 1])
answers = st.sampled_from(
    [
        None, True, False, 0, 1, "", "ab", "abc", (), [], [0, 1], {}, {"a": 1, "b": 2}, 2.5, MASK,
        array("[0, 1]", [0, 1]), array("[[True], [False]]", [[True], [False]]), TEXTS, COUNTS,
        array("1", 1), array("[]", []), (MASK,), (MASK, [MASK]), (MASK, [MASK], ["?"]),
        [MASK, [], []], (MASK, [], (), 4), (TEXTS, COUNTS), (TEXTS, COUNTS, 1), [TEXTS, [1, 2, 3]],
        (array("[1.5, 2]", [1.5, 2.0]), [0.5, 0.25]), (array("[[1]]", [[1]]), [1]), (TEXTS, ()),
        (array("[None]", [None]), COUNTS), (["1", "?"], COUNTS),
        ValueError("told to fail"), KeyError("told to fail"),
        TypeError("'<' not supported between instances of 'str' and 'int'"),
        TypeError("'<' not supported between instances of 'int' and 'float'"),
    ]
)  # fmt: skip
replacements = st.builds(FixedAnswer, answers)


@property_test(
    weight=4,
    case=marked(markers=markers),
    name=st.sampled_from(REPLACED),
    stand_in=replacements,
    routine=st.sampled_from(sorted(CALLS)),
)
def test_odd_answers(case, name, stand_in, routine):
    X, values = case
    if name == routine:
        routine = "numpy_whatis" if name != "numpy_whatis" else "numpy_isin"
    if name == routine:
        return
    kwargs = CALLS[routine]
    args = (X,) if routine == "numpy_flatten_column" else (X, values)
    as_method = staticmethod(stand_in) if name.startswith("FCplus.") else stand_in
    compare("numpy_whatis", (X, values), {"return_stats_flag": True}, stand_ins={name: as_method})
    compare(routine, args, kwargs, stand_ins={name: as_method})


# The order of the steps decides which of several missing names is reported. These names are looked
# up at one place only.
NAMES = ["FC", "FCplus", "pd", "six", "time", "logger", "global_missing_values_reference_list"]
SAMPLES = [
    column(["1", "?", "a"], "O", "plain"),
    column(["1", "1.5"], "U", "matrix_of_one"),
    column([1.0, float("nan")], "f8", "plain"),
    column(["a", 1], "O", "plain"),
    column([True, False], "?", "plain"),
]


@pytest.mark.parametrize("gone", NAMES + [name for name in REPLACED if "." not in name])
def test_a_name_that_is_gone(gone):
    for X in SAMPLES:
        for routine in CALLS:
            if routine != gone:
                args = (X,) if routine == "numpy_flatten_column" else (X, ["?", np.nan])
                compare(routine, args, CALLS[routine], stand_ins={gone: DELETED})
        if gone != "numpy_whatis":
            compare("numpy_whatis", (X,), {"debug": True}, stand_ins={gone: DELETED})


def test_single_values_need_no_names():
    gone = {name: DELETED for name in ("np", "pd", "six", "numbers", "FC", "FCplus", "logger")}
    for name in ("isint", "isfloat", "setValueOrDefault"):
        for value in ("1", "x", 1.5, None):
            compare(name, (value,), stand_ins=gone)
