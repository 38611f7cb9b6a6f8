"""Cells of drawn columns: number texts and their neighbours, numbers, nulls, odd objects."""

from __future__ import annotations

import datetime
import decimal
import fractions
from typing import Any, List

import numpy as np
import pandas as pd

from .recipes import Recipe


class NotAFloat:
    """`__float__` returns a text."""

    def __float__(self) -> Any:
        return "2"

    def __repr__(self) -> str:
        return "NotAFloat()"


class Anywhere:
    """Both less than, and greater than or equal to, every number."""

    def __lt__(self, other: object) -> bool:
        return True

    def __ge__(self, other: object) -> bool:
        return True

    def __repr__(self) -> str:
        return "Anywhere()"


class Convertible:
    """Not a number type, but `int()` and `float()` accept it."""

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
    """Raises the given exception from every conversion."""

    def __init__(self, error: type) -> None:
        self.error = error

    def __int__(self) -> int:
        raise self.error("refused")

    def __float__(self) -> float:
        raise self.error("refused")

    def __repr__(self) -> str:
        return "Refusing({})".format(self.error.__name__)


class Agreeable:
    """Equal to every other object."""

    def __eq__(self, other: object) -> bool:
        return True

    def __hash__(self) -> int:
        return hash("?")

    def __repr__(self) -> str:
        return "Agreeable()"


class Hostile:
    """Raises from `==`."""

    def __eq__(self, other: object) -> bool:
        raise RuntimeError("no comparison")

    def __hash__(self) -> int:
        return hash("?")

    def __repr__(self) -> str:
        return "Hostile()"


class Unhashable:
    """Can be compared but not hashed."""

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Unhashable)

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return "Unhashable()"


class Sly(str):
    """A text that is not alphanumeric and equals a question mark."""

    def isalnum(self) -> bool:
        return False

    def __eq__(self, other: object) -> bool:
        return other == "?" or str.__eq__(self, other)

    def __hash__(self) -> int:
        return hash("?")


# Both sides of the interpreter's limit on digits (4300 where it exists).
LONG_DIGITS = ["9" * 40, "1" * 4300, "1" * 4301, "-" + "7" * 4300]
NUMBER_TEXTS = [
    "0", "1", "2", "3", "10", "12", "-1", "+1", "007", "1_0", "99999999999999999999",
    "1.5", "2.0", ".5", "1.", "-0.25", "1_0.5", "3.14", "1e5", "1E-3", "1.5e3", "+.5",
]  # fmt: skip
NEAR_TEXTS = [
    " 1 ", "\t2\n", " 2.5", "1__0", "_1", "1_", "1._5", "0x1", "1e", "e5", "1,5", "1.2.3", "--1",
    "+-1", "nan", "NaN", "inf", "-Infinity", "infinity.", "\u0663", "\uff11\uff12", "\u0661.\u0665",
    "\x1c1", "1\x1f", "\x0b1", "\xa01", "\u20031", "\u200b1", "1\x00", "\x001", "1\x00.5", ".",
    "1.e1",
    "1 2", "\u00b2", "\u00bd", "\u2212", "1L", "1j", "True", "None", "\ufeff1", "\u06f1.5",
]  # fmt: skip
PLAIN_TEXTS = [
    "a", "b", "A", "Z", "male", "female", "m", "f", "red", "new york", " padded ", "N/A", "na",
    "NA",
    "null", "unknown", "h\u00e9", "\u00e9", "\u6f22", "\U0001d7d8", "2020-01-02", "2020-13-45",
    "12:30",
    "01/02/2020", "a.b", "x1", "a\x00", "\ud800", "\udc80z", "tab\there",
]  # fmt: skip
LONE_TEXTS = ["?", "", "-", "*", "!", " ", "_", "~", "|", "\x00", "\u2014", "\u00bf", "\ud800", ":"]
INTEGERS = [0, 1, 2, 3, -1, 7, 50, 100, 255, 2**31, 2**63, -(2**63), 10**30]
FLOATS = [0.0, -0.0, 1.0, 2.0, 1.5, 2.5, -3.25, 1e300, 1e-320, 5e15, 1e16, float("inf"), -1e400]
MISSING = [
    None,
    np.nan,
    float("nan"),
    pd.NaT,
    pd.NA,
    np.datetime64("NaT", "s"),
    decimal.Decimal("NaN"),
]
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
    b"1", b"a", b"?", b"2.5", (1, 2), ("?",), frozenset([1]), Agreeable(), Hostile(),
    Unhashable(), Sly("1"), Sly("b"), Word("1"), Word("a"), Word("?"), Whole(4),
    Convertible(), NotAFloat(), Refusing(ValueError), Refusing(KeyError), Ellipsis, object,
    bytearray,
    Recipe("[1]", lambda inner: [1]), Recipe("{1}", lambda inner: {1}), Recipe("[]",
    lambda inner: []),
    Recipe("np.array([1])", lambda inner: np.array([1])),
    Recipe("np.array([1, 2])", lambda inner: np.array([1, 2])), Recipe("{}", lambda inner: {}),
]  # fmt: skip
BOOLS = [True, False]
