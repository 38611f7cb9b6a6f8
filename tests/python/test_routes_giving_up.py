"""A native route that finds an odd cell in the last row gives up without a visible effect."""

from __future__ import annotations

import decimal
import fractions
import sys

import numpy as np
import pandas as pd
import pytest
from hypothesis import strategies as st

from helpers.cell_values import Agreeable, Hostile, Sly, Unhashable, Whole, Word
from helpers.comparison import Tally
from helpers.native_lookups import names_for
from helpers.property_tests import property_test
from helpers.recipes import Recipe
from helpers.route_columns import SHAPES, spread
from helpers.routes import compare_routes, events_of, pass_through, shown


class Noting:
    """Records every operation on it."""

    asked = []

    def __eq__(self, other):
        self.asked.append(("eq", type(other)))
        return False

    def __ne__(self, other):
        self.asked.append(("ne", type(other)))
        return True

    def __hash__(self):
        self.asked.append(("hash",))
        return 7

    def __lt__(self, other):
        self.asked.append(("lt", type(other)))
        return False

    def __gt__(self, other):
        self.asked.append(("gt", type(other)))
        return True

    def __float__(self):
        self.asked.append(("float",))
        return 7.5

    def __int__(self):
        self.asked.append(("int",))
        return 7

    def __bool__(self):
        self.asked.append(("bool",))
        return True

    def __str__(self):
        self.asked.append(("str",))
        return "noting"

    __repr__ = __str__


class NotingText(str):
    """A text that records comparisons, hashing and searches."""

    def __eq__(self, other):
        Noting.asked.append(("text eq", str(other)))
        return str.__eq__(self, other)

    def __hash__(self):
        Noting.asked.append(("text hash",))
        return str.__hash__(self)

    def __lt__(self, other):
        Noting.asked.append(("text lt", str(other)))
        return str.__lt__(self, other)

    def isalnum(self):
        Noting.asked.append(("isalnum",))
        return str.isalnum(self)

    def __float__(self):
        Noting.asked.append(("text float",))
        return 7.5

    def __contains__(self, part):
        Noting.asked.append(("text contains", part))
        return str.__contains__(self, part)


class NotingFloat(float):
    """A float that records comparisons, hashing and `is_integer()`."""

    def __eq__(self, other):
        Noting.asked.append(("float eq", type(other)))
        return float.__eq__(self, other)

    def __hash__(self):
        Noting.asked.append(("float hash",))
        return float.__hash__(self)

    def __lt__(self, other):
        Noting.asked.append(("float lt", type(other)))
        return float.__lt__(self, other)

    def is_integer(self):
        Noting.asked.append(("is_integer",))
        return float.is_integer(self)


STRANGE = {
    "noting": Noting(),
    "noting text": NotingText("7"),
    "noting lone text": NotingText("*"),
    "noting number": NotingFloat(7.5),
    "Decimal": decimal.Decimal("1.5"),
    "Decimal NaN": decimal.Decimal("NaN"),
    "signalling NaN": decimal.Decimal("sNaN"),
    "Fraction": fractions.Fraction(1, 2),
    "text subclass": Word("?"),
    "sly text": Sly("b"),
    "integer subclass": Whole(4),
    "bytes": b"a",
    "tuple": ("a",),
    "frozen set": frozenset(["a"]),
    "equal to all": Agreeable(),
    "not to be compared": Hostile(),
    "not to be hashed": Unhashable(),
    "list": Recipe("['a']", lambda inner: ["a"]),
    "set": Recipe("{'a'}", lambda inner: {"a"}),
    "array": Recipe("np.array([1, 2])", lambda inner: np.array([1, 2])),
    "NaT": pd.NaT,
    "NA": pd.NA,
    "Timestamp": pd.Timestamp("2020-01-01"),
    "numpy text": np.str_("a"),
    "numpy float": np.float64(1.5),
    "numpy short float": np.float32("nan"),
    "numpy integer": np.int64(1),
    "numpy boolean": np.bool_(True),
    "complex": 1 + 0j,
    "class": int,
    "ellipsis": Ellipsis,
}
BEFORE = {
    "texts": ["b", "a", "?", "w1", "w2"],
    "number texts": ["1", "2.5", "-", "1e3", "10"],
    "texts and nulls": ["a", None, "?", "b"],
    "floats": [1.5, 2.0, float("nan"), -0.0],
    "integers": [1, 2, 10**20, 7],
    "booleans": [True, False],
}
ROUTINES = {
    "numpy_whatis": (["?", "", "-", np.nan],),
    "numpy_isin": (["?", "a", np.nan],),
    "numpy_compute_missing_indicator": (["?", "a", 1.5, None],),
    "get_unique_values": (["?"], False, False, True),
    "numpy_isintstr": (["?"],),
    "numpy_floatstr2float": (["?"],),
    "numpy_column_float2str": (),
    "numpy_replace_values": ("x", ["?", "a"]),
    "compress_str_column": (["?"],),
    "FCplus.getClasses": (True, ["?"]),
    "FCplus.is_num_column_categorical": (),
    "FCplus.is_column_categorical": (["?"],),
    "FCplus.is_column_categorical_mult_cats": (["?"],),
    "numpy_get_categories": ([0], ["?"]),
}
# The same routines with other options.
WAYS = [
    ("numpy_column_float2str", (False,)),
    ("compress_str_column", (["?"], "hash")),
    ("numpy_replace_values", (1.5, ["?", np.nan], True)),
    ("numpy_putmask", (np.arange(130) % 3 == 0, "x")),
]
ROWS = 130


def last(before, strange, shape="plain"):
    values = (BEFORE[before] * ROWS)[: ROWS - 1] + [STRANGE[strange]]
    return spread(values, "O", shape)


def asked():
    noted, Noting.asked[:] = list(Noting.asked), []
    return noted


def both(name, args, by):
    """The outcomes of both routes, with the operations on recording cells."""
    Tally.cases += 1
    found = []
    for names in ({}, {by: pass_through(by)}):
        asked()
        seen = shown(name, args, {}, names)
        found.append((seen, asked()))
    return found


@pytest.mark.parametrize("strange", sorted(STRANGE))
@pytest.mark.parametrize("name, more", sorted(ROUTINES.items()) + WAYS)
def test_last_row(name, more, strange):
    for before in sorted(BEFORE):
        plain, forced = both(name, (last(before, strange),) + more, "isfloat")
        assert plain == forced, before


@pytest.mark.parametrize("before", ["texts", "number texts"])
@pytest.mark.parametrize("strange", sorted(STRANGE))
def test_last_row_of_membership(strange, before):
    column = last(before, strange)
    plain, forced = both("indicator_mask", ({"?", "a", 1.5}, column), "np.vectorize")
    assert plain == forced


BY_WAY_OF = "implement_array_function"


@pytest.mark.parametrize("before", ["texts", "number texts", "floats"])
@pytest.mark.parametrize("strange", ["noting", "noting text", "noting number", "Decimal"])
@pytest.mark.parametrize("name", sorted(ROUTINES))
def test_a_profiler_sees_no_other_calls(name, strange, before):
    column = last(before, strange).make(lambda inner: inner)

    def events(by=None):
        seen = events_of(name, (column.copy(),) + ROUTINES[name], by)
        # np.putmask() calls no method of the elements. Old numpy calls it through another function.
        put = [i for i, event in enumerate(seen) if event[1].endswith(".putmask")]
        put += [i + 1 for i in put if seen[i + 1 : i + 2] == [("c_call", BY_WAY_OF)]]
        return [event for i, event in enumerate(seen) if i not in put]

    events()  # The first call fills the level caches of the loggers.
    plain = events()
    forced = events("isfloat")
    asked()
    # After the column was converted to text or the odd cell removed, later steps may be native.
    rest = iter(forced)
    assert all(event in rest for event in plain)
    if before == "floats" and name.startswith("numpy_i"):
        assert plain == forced


@pytest.mark.parametrize("marker", ["noting", "noting text", "Decimal", "text subclass", "list"])
@pytest.mark.parametrize("before", sorted(BEFORE))
@pytest.mark.parametrize("name", sorted(name for name in ROUTINES if "." not in name))
def test_last_marker(name, before, marker):
    values = BEFORE[before] * 20
    args = (spread(values, "O", "plain"), ["?", np.nan, STRANGE[marker]])
    plain, forced = both(name, args, "isfloat")
    assert plain == forced


@property_test(
    weight=6,
    before=st.sampled_from(sorted(BEFORE)),
    strange=st.sampled_from(sorted(STRANGE)),
    name=st.sampled_from(sorted(ROUTINES)),
    shape=st.sampled_from(sorted(SHAPES)),
    data=st.data(),
)
def test_any_row_in_any_layout(before, strange, name, shape, data):
    values = (BEFORE[before] * ROWS)[:ROWS]
    values[data.draw(st.integers(0, ROWS - 1))] = STRANGE[strange]
    by = data.draw(names_for(name))
    plain, forced = both(name, (spread(values, "O", shape),) + ROUTINES[name], by)
    assert plain == forced


# Texts around the interpreter's limit on digits, which can be changed.
DIGITS = ["9" * 639, "9" * 640, "9" * 641, "-" + "1" * 641, "1_0" * 300, "1" * 4300, "1" * 4301,
          "1" * 5000 + ".5", " " * 5000 + "1", "1" + "0" * 5000 + "e1"]  # fmt: skip


@pytest.mark.skipif(not hasattr(sys, "set_int_max_str_digits"), reason="there is no limit")
@pytest.mark.parametrize("limit", [0, 640, 4300, 10000])
@pytest.mark.parametrize("text", DIGITS)
def test_limit_on_digits(limit, text):
    before = sys.get_int_max_str_digits()
    sys.set_int_max_str_digits(limit)
    try:
        for values in (["1", text], [text], ["*", "1.5", text], ["a", text]):
            for dtype in "OU":
                column = spread(values, dtype, "plain")
                compare_routes("numpy_whatis", "isint", (column, ["?"]))
                compare_routes("numpy_isintstr", "isint", (column,))
                compare_routes("numpy_floatstr2float", "isfloat", (column,))
    finally:
        sys.set_int_max_str_digits(before)
