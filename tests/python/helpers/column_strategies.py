"""Hypothesis strategies: cells, columns, lists of references, flags."""

from __future__ import annotations

import decimal
from typing import Any, Callable, Dict, List

import numpy as np
import pandas as pd
from hypothesis import strategies as st

from .cell_values import (
    BOOLS,
    FLOATS,
    INTEGERS,
    LONE_TEXTS,
    LONG_DIGITS,
    MISSING,
    NEAR_TEXTS,
    NUMBER_TEXTS,
    OBJECTS,
    PLAIN_TEXTS,
    SCALARS,
    Word,
)
from .recipes import FLAT, PANDAS, SINGLE, TABLES, Recipe, column

texts = st.one_of(
    st.sampled_from(NUMBER_TEXTS),
    st.sampled_from(NEAR_TEXTS),
    st.sampled_from(PLAIN_TEXTS),
    st.sampled_from(LONE_TEXTS),
    st.sampled_from(LONG_DIGITS),
    st.text(alphabet="0123456789+-._eE \u0663\x00naif", max_size=7),
    st.text(max_size=4),
    st.integers().map(str),
    st.floats().map(repr),
)
numbers = st.one_of(
    st.sampled_from(INTEGERS),
    st.sampled_from(FLOATS),
    st.integers(),
    st.floats(),
)
cells = st.one_of(
    texts,
    numbers,
    st.sampled_from(BOOLS),
    st.sampled_from(MISSING),
    st.sampled_from(SCALARS),
    st.sampled_from(OBJECTS),
)
UNDECIDED = Recipe("np.array([1, 2])", lambda inner: np.array([1, 2]))
flags = st.sampled_from(
    [
        False,
        True,
        False,
        True,
        False,
        True,
        0,
        1,
        "",
        "no",
        [],
        [0],
        None,
        np.bool_(True),
        UNDECIDED,
    ]
)

# For each kind of column: the strategy of its distinct values, and the dtypes that can hold them.
TEXT_DTYPES = ["O", "O", "O", "O", "U", "S"]
INTEGER_DTYPES = ["O", "i1", "i2", "i4", "i8", "u1", "u2", "u4", "u8", "f8", "M8[D]", "m8[s]"]
FLOAT_DTYPES = ["O", "f8", "f8", "f4", "f8", "f2", "g", "c16"]
# Markers that occur in columns of numbers: texts, nulls, a number.
MARKING: List[Any] = ["?", "", "-", None, np.nan, -999]
# numpy scalars that equal, hash and sort like Python's numbers; some around 2 ** 53.
AGREEING: List[Any] = [
    np.float64(1.0), np.float64(2.5), np.float64(-0.0), np.float64(2.0**53), np.int64(1),
    np.int64(2), np.int64(2**53), np.int64(2**53 + 1), np.bool_(True), np.bool_(False),
]  # fmt: skip
PALETTES = {
    "numbers as text": (st.sampled_from(NUMBER_TEXTS), TEXT_DTYPES),
    "numbers and lone signs": (st.sampled_from(NUMBER_TEXTS[:14] + LONE_TEXTS), TEXT_DTYPES),
    "numbers and words": (st.sampled_from(NUMBER_TEXTS[:14] + PLAIN_TEXTS), TEXT_DTYPES),
    "nearly numbers": (st.sampled_from(NUMBER_TEXTS[:6] + NEAR_TEXTS + LONE_TEXTS), TEXT_DTYPES),
    "words": (st.sampled_from(PLAIN_TEXTS + LONE_TEXTS), TEXT_DTYPES),
    "any text": (texts, TEXT_DTYPES),
    "text and missing": (st.sampled_from(NUMBER_TEXTS[:14] + LONE_TEXTS + MISSING), ["O"]),
    "small integers": (st.integers(0, 9), INTEGER_DTYPES),
    "integers": (st.sampled_from(INTEGERS), ["O", "i8", "u8", "f8", "M8[ns]", "m8[ns]"]),
    "floats": (st.sampled_from(FLOATS + [float("nan")]), FLOAT_DTYPES),
    "whole floats": (st.sampled_from([0.0, -0.0, 1.0, 2.0, float("nan")]), FLOAT_DTYPES),
    "numbers and missing": (st.sampled_from(FLOATS + INTEGERS[:5] + MISSING), ["O", "f8"]),
    "numbers": (st.sampled_from(FLOATS + INTEGERS[:5] + BOOLS), ["O", "f8"]),
    "booleans": (st.sampled_from(BOOLS), ["?", "?", "O"]),
    "booleans and missing": (st.sampled_from(BOOLS + [None, float("nan"), "?"]), ["O"]),
    "numbers beside markers": (st.sampled_from(INTEGERS[:9] + FLOATS[:7] + MARKING), ["O"]),
    "integers beside markers": (st.sampled_from(INTEGERS[:9] + MARKING), ["O"]),
    "numbers of two makes": (st.sampled_from(INTEGERS[:9] + FLOATS[:7] + BOOLS + AGREEING), ["O"]),
    "scalars": (st.sampled_from(SCALARS), ["O"]),
    "objects": (st.sampled_from(OBJECTS + INTEGERS[:3]), ["O"]),
    "text and numbers": (st.one_of(texts, numbers), ["O"]),
    "anything": (cells, ["O"]),
}
# The kinds of PALETTES that hold only texts and nulls.
TEXT_KINDS = [
    "numbers as text",
    "numbers and lone signs",
    "numbers and words",
    "nearly numbers",
    "words",
    "any text",
    "text and missing",
]
# Kinds that can have many distinct values: some columns get about 50, a limit of the module.
GROWING: Dict[str, Callable[[int], Any]] = {
    "numbers as text": str,
    "numbers and lone signs": str,
    "words": "w{}".format,
    "any text": "{}.5".format,
    "small integers": int,
    "integers beside markers": int,
    "numbers beside markers": lambda i: i / 4,
    "numbers of two makes": lambda i: float(i) if i % 2 else i,
    "floats": float,
}
layouts = st.one_of(
    st.just("plain"),
    st.just("plain"),
    st.sampled_from(FLAT + SINGLE),
    st.sampled_from(FLAT + SINGLE + TABLES + ("list",)),
    st.sampled_from(PANDAS),
)
array_layouts = st.one_of(
    st.just("plain"), st.sampled_from(FLAT + SINGLE), st.sampled_from(FLAT + TABLES)
)
# Repetitions of a column: rows below and above the limits of 30 and 50.
repeats = st.sampled_from([1] * 12 + [2, 2, 2, 5, 5, 20, 20, 40, 40, 150])


@st.composite
def columns(draw: Any, layouts: Any = layouts, kinds: Any = None) -> Recipe:
    """A column with few distinct values, of one dtype and layout."""
    kind = draw(st.sampled_from(sorted(PALETTES) if kinds is None else kinds))
    content, dtypes = PALETTES[kind]
    palette = draw(st.lists(content, min_size=1, max_size=6))
    picks = draw(st.lists(st.integers(0, len(palette) - 1), max_size=9))
    values = [palette[i] for i in picks]
    if not picks and draw(st.sampled_from([True, True, True, False])):
        values = list(palette)
    values = values * draw(repeats)
    if kind in GROWING and draw(st.integers(0, 9)) == 7:
        rows = draw(st.one_of(st.integers(48, 52), st.just(300)))
        values += [GROWING[kind](i) for i in range(rows)]
    return column(values, draw(st.sampled_from(dtypes)), draw(layouts))


default_markers = st.builds(lambda: ["?", "", "-", np.nan])
custom_markers = st.lists(
    st.one_of(
        st.sampled_from(LONE_TEXTS),
        st.sampled_from(["N/A", "na", "1", "2", "a", "1.5", "nan"]),
        st.sampled_from(MISSING),
        st.sampled_from([0, 1, 1.0, True, False, 2, -1, 2.5]),
        st.sampled_from(SCALARS),
        cells,
    ),
    max_size=5,
)
odd_markers = st.sampled_from(
    [
        (), ("?",), ("?", np.nan), {"?"}, {"?", ""}, "?-", "", 5, np.nan, [["?"]], [["?"], ["a"]],
        [("?",)], [{"?"}], {"?": 1}, ["?", ["a"]], [None, [1, 2]], [[np.nan]], frozenset(["-"]),
        Recipe("column(['?', ''], 'O', 'plain')", lambda inner: np.array(["?", ""], dtype=object)),
        Recipe("np.array([1, nan])", lambda inner: np.array([1, np.nan])),
        Recipe("pd.Series(['?'])", lambda inner: pd.Series(["?"])),
    ]
)  # fmt: skip
markers = st.one_of(
    default_markers, default_markers, custom_markers, custom_markers, st.just([]), odd_markers
)
optional_markers = st.one_of(st.none(), markers)


def other_forms(value: Any) -> List[Any]:
    """The value, and equal values of other types."""
    forms = [value]
    if isinstance(value, str):
        forms += [np.str_(value), Word(value)]
    elif isinstance(value, (int, float)) and abs(value) < 2**53:
        forms += [float(value), np.float64(value), decimal.Decimal(value), bool(value)]
    return forms


@st.composite
def marked(draw: Any, columns: Any = columns(), markers: Any = optional_markers) -> Any:
    """A column and a list of references, which often contains cells of the column."""
    X = draw(columns)
    values = draw(markers)
    if type(values) is list and X.values and draw(st.booleans()):
        own = st.sampled_from(X.values).flatmap(lambda cell: st.sampled_from(other_forms(cell)))
        place = draw(st.integers(0, len(values)))
        values = values[:place] + draw(st.lists(own, min_size=1, max_size=2)) + values[place:]
    return X, values
