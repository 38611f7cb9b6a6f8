"""Hypothesis strategies: cells, columns, marker lists, flags."""

from __future__ import annotations

import datetime
import decimal
import fractions
from typing import Any, Callable, Dict, List

import numpy as np
import pandas as pd
from hypothesis import strategies as st
from recipes import FLAT, PANDAS, SINGLE, TABLES, Recipe, column


class NotAFloat:
    """Its `__float__` breaks the promise of its name."""

    def __float__(self) -> Any:
        return "2"

    def __repr__(self) -> str:
        return "NotAFloat()"


class Anywhere:
    """Below every number and above it as well."""

    def __lt__(self, other: object) -> bool:
        return True

    def __ge__(self, other: object) -> bool:
        return True

    def __repr__(self) -> str:
        return "Anywhere()"


class Convertible:
    """A number by its methods alone."""

    def __int__(self) -> int:
        return 7

    def __float__(self) -> float:
        return 7.5

    def __repr__(self) -> str:
        return "Convertible()"


class Word(str):
    """A text subclass."""


class Whole(int):
    """An integer subclass."""


class Refusing:
    """Raises from every conversion, in the way asked for."""

    def __init__(self, error: type) -> None:
        self.error = error

    def __int__(self) -> int:
        raise self.error("refused")

    def __float__(self) -> float:
        raise self.error("refused")

    def __repr__(self) -> str:
        return "Refusing({})".format(self.error.__name__)


# The interpreter's limit on digits (4300 where there is one) is approached from both sides.
LONG_DIGITS = ["9" * 40, "1" * 4300, "1" * 4301, "-" + "7" * 4300]
NUMBER_TEXTS = [
    "0", "1", "2", "3", "10", "12", "-1", "+1", "007", "1_0", "99999999999999999999",
    "1.5", "2.0", ".5", "1.", "-0.25", "1_0.5", "3.14", "1e5", "1E-3", "1.5e3", "+.5",
]  # fmt: skip
NEAR_TEXTS = [
    " 1 ", "\t2\n", " 2.5", "1__0", "_1", "1_", "1._5", "0x1", "1e", "e5", "1,5", "1.2.3", "--1",
    "+-1", "nan", "NaN", "inf", "-Infinity", "infinity.", "\u0663", "\uff11\uff12", "\u0661.\u0665",
    "\x1c1", "1\x1f", "\x0b1", "\xa01", "\u20031", "\u200b1", "1\x00", "\x001", "1\x00.5", ".", "1.e1",
    "1 2", "\u00b2", "\u00bd", "\u2212", "1L", "1j", "True", "None", "\ufeff1", "\u06f1.5",
]  # fmt: skip
PLAIN_TEXTS = [
    "a", "b", "A", "Z", "male", "female", "m", "f", "red", "new york", " padded ", "N/A", "na", "NA",
    "null", "unknown", "h\u00e9", "\u00e9", "\u6f22", "\U0001d7d8", "2020-01-02", "2020-13-45", "12:30",
    "01/02/2020", "a.b", "x1", "a\x00", "\ud800", "\udc80z", "tab\there",
]  # fmt: skip
LONE_TEXTS = ["?", "", "-", "*", "!", " ", "_", "~", "|", "\x00", "\u2014", "\u00bf", "\ud800", ":"]
INTEGERS = [0, 1, 2, 3, -1, 7, 50, 100, 255, 2**31, 2**63, -(2**63), 10**30]
FLOATS = [0.0, -0.0, 1.0, 2.0, 1.5, 2.5, -3.25, 1e300, 1e-320, 5e15, 1e16, float("inf"), -1e400]
MISSING = [None, np.nan, float("nan"), pd.NaT, pd.NA, np.datetime64("NaT", "s"), decimal.Decimal("NaN")]
SCALARS: List[Any] = [
    np.int8(1), np.int64(2), np.uint64(2**64 - 1), np.float16(1.5), np.float32(2.5),
    np.float64(1.0), np.float64(2.5), np.float64("nan"), np.float32("nan"), np.longdouble(1),
    np.bool_(True), np.bool_(False), np.str_("1"), np.str_("?"), np.str_("a"), np.str_("1.5"),
    np.bytes_(b"1"), np.complex128(1), np.datetime64("2020-01-01"), np.timedelta64(3, "D"),
]  # fmt: skip
OBJECTS: List[Any] = [
    decimal.Decimal("1"), decimal.Decimal("1.5"), decimal.Decimal("Infinity"),
    fractions.Fraction(1, 2), fractions.Fraction(2, 1), datetime.date(2020, 1, 1),
    datetime.datetime(2020, 1, 1, 12), datetime.timedelta(1), pd.Timestamp("2020-01-01"), 1 + 0j,
    b"1", b"a", b"?", b"2.5", (1, 2), ("?",), frozenset([1]), Word("1"), Word("a"), Word("?"), Whole(4),
    Convertible(), NotAFloat(), Refusing(ValueError), Refusing(KeyError), Ellipsis, object, bytearray,
    Recipe("[1]", lambda inner: [1]), Recipe("{1}", lambda inner: {1}), Recipe("[]", lambda inner: []),
    Recipe("np.array([1])", lambda inner: np.array([1])),
    Recipe("np.array([1, 2])", lambda inner: np.array([1, 2])), Recipe("{}", lambda inner: {}),
]  # fmt: skip
BOOLS = [True, False]

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
    [False, True, False, True, False, True, 0, 1, "", "no", [], [0], None, np.bool_(True), UNDECIDED]
)

# What the distinct values of one column are drawn from, and the dtypes that may hold them.
TEXT_DTYPES = ["O", "O", "O", "O", "U", "S"]
INTEGER_DTYPES = ["O", "i1", "i2", "i4", "i8", "u1", "u2", "u4", "u8", "f8", "M8[D]", "m8[s]"]
FLOAT_DTYPES = ["O", "f8", "f8", "f4", "f8", "f2", "g", "c16"]
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
    "scalars": (st.sampled_from(SCALARS), ["O"]),
    "objects": (st.sampled_from(OBJECTS + INTEGERS[:3]), ["O"]),
    "text and numbers": (st.one_of(texts, numbers), ["O"]),
    "anything": (cells, ["O"]),
}
# Kinds that may be given many more distinct values, around the module's limit of 50.
GROWING: Dict[str, Callable[[int], Any]] = {
    "numbers as text": str,
    "numbers and lone signs": str,
    "words": "w{}".format,
    "any text": "{}.5".format,
    "small integers": int,
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
# How often a column is repeated; 40 and more rows pass the limits of 30 and 50.
repeats = st.sampled_from([1, 1, 1, 1, 1, 2, 5, 20, 40])


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
        values += [GROWING[kind](i) for i in range(draw(st.integers(48, 52)))]
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
    """The value and what equals it in another type."""
    forms = [value]
    if isinstance(value, str):
        forms += [np.str_(value), Word(value)]
    elif isinstance(value, (int, float)) and abs(value) < 2**53:
        forms += [float(value), np.float64(value), decimal.Decimal(value), bool(value)]
    return forms


@st.composite
def marked(draw: Any, columns: Any = columns(), markers: Any = optional_markers) -> Any:
    """A column and a marker list that often holds some of the column's own cells."""
    X = draw(columns)
    values = draw(markers)
    if type(values) is list and X.values and draw(st.booleans()):
        own = st.sampled_from(X.values).flatmap(lambda cell: st.sampled_from(other_forms(cell)))
        place = draw(st.integers(0, len(values)))
        values = values[:place] + draw(st.lists(own, min_size=1, max_size=2)) + values[place:]
    return X, values
