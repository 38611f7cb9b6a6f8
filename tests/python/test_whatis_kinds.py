"""The verdict of the classifier: kind and markers, by the counting rules and the running class."""

from __future__ import annotations

import fractions
import numbers
from decimal import Decimal

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import record
from helpers.values import names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_whatis

NAN = float("nan")
DEFAULT = exportable_utils.global_missing_values_reference_list
UNSET = "local variable 'dtype_str_found' referenced before assignment"


def both_verdicts(X, markers=None):
    """Kind by the counting rules, kind by the running class."""
    counted = numpy_whatis(X, markers)
    running = numpy_whatis(X, markers, use_dtype_str1_flag=False)
    assert type(counted) is tuple and len(counted) == 2
    assert type(running) is tuple and len(running) == 2
    return counted[1], running[1]


# --- text -------------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "text, kind",
    [
        ("a", "char_str"),
        ("", "char_str"),
        ("?", "char_str"),
        (" ", "char_str"),
        ("2020-01-31", "char_str"),
        ("1,5", "char_str"),
        ("1.2.3", "char_str"),
        (".", "char_str"),
        # A float text without a point is text; an integer text with a point is not an integer.
        ("nan", "char_str"),
        ("inf", "char_str"),
        ("-Infinity", "char_str"),
        ("1e5", "char_str"),
        ("0x1f", "char_str"),
        ("½", "char_str"),
        ("12", "int_str"),
        (" 12\n", "int_str"),
        ("-12", "int_str"),
        ("+0012", "int_str"),
        ("1_000", "int_str"),
        ("١٢", "int_str"),
        ("9" * 400, "int_str"),
        ("1.5", "float_str"),
        ("1.", "float_str"),
        (".5", "float_str"),
        (" -1.5e3 ", "float_str"),
        ("1_0.0", "float_str"),
        ("١.٢", "float_str"),
    ],
)
@pytest.mark.parametrize("column", [lambda t: objects(t), lambda t: np.array([t])])
def test_the_kind_of_one_text(text, kind, column):
    X = column(text)
    assert both_verdicts(X) == (kind, kind)
    assert numpy_whatis(X)[0] == []


@pytest.mark.parametrize("dtype", ["object", "<U", "series", "string", "frame column", "rows"])
@pytest.mark.parametrize(
    "texts, markers, kind",
    [
        (["a", "b"], [], "char_str"),
        (["1", "2", "1"], [], "int_str"),
        (["1", "2.5"], [], "float_str"),
        (["?", "1", "", "2"], ["?", ""], "int_str"),
        (["~", "1", "2"], ["~"], "int_str"),
        (["-", "-"], ["-"], "missing"),
    ],
)
def test_all_holders_of_text_are_alike(dtype, texts, markers, kind):
    X = {
        "object": lambda: objects(*texts),
        "<U": lambda: np.array(texts),
        "series": lambda: pd.Series(texts, dtype=object),
        "string": lambda: pd.Series(texts, dtype="string"),
        "frame column": lambda: pd.DataFrame({"a": texts})["a"],
        "rows": lambda: np.array(texts, dtype=object).reshape(-1, 1),
    }[dtype]()
    assert numpy_whatis(X, DEFAULT) == (markers, kind)


def test_a_subclass_of_str_is_text():
    class Text(str):
        pass

    assert numpy_whatis(objects(Text("12"))) == ([], "int_str")


# --- numbers ----------------------------------------------------------------------------------


class Whole(float):
    def is_integer(self):
        return True


class Ordinal:
    """Registered as numbers.Integral, with no other property."""


numbers.Integral.register(Ordinal)


class maybe_bool:
    """Not a number; only the name of its type contains "bool"."""


@pytest.mark.parametrize(
    "X, kind",
    [
        (np.array([1.5]), "float_num"),
        (np.array([2.0]), "float_int_num"),
        (np.array([-0.0]), "float_int_num"),
        (np.array([1e300]), "float_int_num"),
        (np.array([np.inf]), "float_num"),
        (np.array([0.5], dtype=np.float32), "float_num"),
        (np.array([2.0], dtype=np.float32), "float_int_num"),
        (objects(1.5), "float_num"),
        (objects(Whole(1.5)), "float_int_num"),
        (objects(np.float64(2)), "float_int_num"),
        (np.array([1]), "int_num"),
        (np.array([1], dtype=np.int8), "int_num"),
        (np.array([1], dtype=np.uint64), "int_num"),
        (np.array([3], dtype="m8[D]"), "int_num"),
        (objects(10**30), "int_num"),
        (objects(np.int16(3)), "int_num"),
        (objects(Ordinal()), "int_num"),
        (np.array([True]), "boolean"),
        (objects(True), "boolean"),
        (objects(np.bool_(False)), "boolean"),
        (objects(maybe_bool()), "boolean"),
    ],
)
def test_the_kind_of_one_value_that_is_no_text(X, kind):
    assert both_verdicts(X) == (kind, kind)
    assert numpy_whatis(X)[0] == []


@pytest.mark.parametrize(
    "X, counted, running",
    [
        (np.array([1.0, 2.5]), "float_num", "float_num"),
        (np.array([0.5, 2.0]), "float_num", "float_num"),
        (np.array([1.0, 2.0]), "float_int_num", "float_int_num"),
        (np.array([1.0, np.inf]), "float_num", "float_num"),
        (np.array([1, 2, 3]), "int_num", "int_num"),
        (np.array([True, False]), "boolean", "boolean"),
        (objects(1, 2.0), "Unknown", "float_int_num"),
        (objects(1.0, 2), "Unknown", "int_num"),
        (objects(1, 2.5), "float_num", "float_num"),
        (objects(0.5, 1), "float_num", "int_num"),
        (objects(0.5, 1, 2.0), "float_num", "float_int_num"),
        (objects(0.5, 2.0, 3), "float_num", "int_num"),
        (objects(False, 2), "Unknown", "int_num"),
        (objects(False, 2.0), "Unknown", "float_int_num"),
        (objects(0.5, True), "float_num", "boolean"),
        # A value of no kind is counted as the kind of the value before it.
        (objects(1, Decimal("2.5")), "int_num", "int_num"),
        (objects(0.5, fractions.Fraction(3, 2)), "float_num", "float_num"),
    ],
)
def test_numbers_of_several_kinds(X, counted, running):
    assert both_verdicts(X) == (counted, running)
    assert numpy_whatis(X)[0] == []


@pytest.mark.parametrize(
    "X, markers",
    [
        (objects(None), ["?"]),
        (objects(Decimal(1)), None),
        (objects(Decimal(1), 2), None),
        (objects(b"1"), None),
        (np.array([b"1"]), None),
        (np.array([1j]), None),
        (np.array(["2020-01-01"], dtype="M8[D]"), None),
        # Only 32-bit columns are converted to 64 bits, so these contain no Python floats.
        (np.array([1.5], dtype=np.float16), None),
        (np.array([1.5], dtype=np.longdouble), None),
        (objects(np.float32(1.5)), None),
        (objects((1,)), ["?"]),
    ],
)
@pytest.mark.parametrize("flag", [True, False])
def test_a_first_value_of_no_kind_cannot_be_counted(X, markers, flag):
    with pytest.raises(UnboundLocalError) as excinfo:
        numpy_whatis(X, markers, use_dtype_str1_flag=flag)
    assert str(excinfo.value) == UNSET
    assert "numpy_whatis" in names_in_traceback(excinfo)


# --- missing ----------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, markers, found, kind",
    [
        (objects("?", "?"), DEFAULT, ["?"], "missing"),
        (objects("-", None, "?"), DEFAULT, ["?", "-", np.nan], "missing"),
        (np.array([np.nan, np.nan]), [np.nan], [np.nan], "missing"),
        (np.array(["NA"]), ["NA"], ["NA"], "missing"),
        (np.array([1, 1]), [1], [1], "missing"),
        # Without references NaN rows are kept, but are no distinct value.
        (np.array([np.nan, np.nan]), None, [], "Unknown"),
        (objects(None, None), [], [], "Unknown"),
        (np.array([np.nan, 1.5]), None, [], "float_num"),
        (objects(None, "1"), None, [], "int_str"),
        (objects("?", "a"), None, [], "char_str"),
        # A NaN that is not a reference is a float that is not whole.
        (np.array([np.nan, 1.0]), ["?"], [], "float_num"),
        (np.array([np.nan, 1.0]), DEFAULT, [np.nan], "float_int_num"),
        (np.array([-1, 5]), [-1, 7], [-1], "int_num"),
    ],
)
def test_missing_rows_are_set_aside(X, markers, found, kind):
    assert typed(numpy_whatis(X, markers)) == typed((found, kind))
    assert both_verdicts(X, markers) == (kind, kind)


def test_the_search_may_stop_at_the_first_marker():
    X = objects("?", "-", "1", "2")
    assert numpy_whatis(X, DEFAULT) == (["?", "-"], "int_str")
    # The hyphen is now a text that sorts before the numbers, and is found as such.
    assert numpy_whatis(X, DEFAULT, True) == (["?", "-"], "int_str")
    assert numpy_whatis(objects("?", "~~", "~", "1"), ["?", "~"], True) == (["?", "~"], "int_str")
    assert numpy_whatis(objects("?", "NA", "a"), ["?", "NA"], True) == (["?"], "char_str")


# --- given distinct values --------------------------------------------------------------------


@pytest.mark.parametrize(
    "values, counted, running",
    [
        # numpy cannot sort texts and numbers: get_unique_values converts the column first, unless
        # it is replaced.
        ([1, "a"], ([], "char_str"), ([], "char_str")),
        ([1, "a", "b"], ([], "char_str"), ([], "char_str")),
        (["a", 1], ([], "char_str"), ([], "int_num")),
        (["a", "b", 0.5], ([], "float_num"), ([], "float_num")),
        ([1, "?"], (["?"], "int_num"), (["?"], "int_num")),
        ([1, ""], ([""], "int_num"), ([""], "int_num")),
        ([True, "?", "a"], (["?"], "boolean"), (["?"], "boolean")),
        ([np.bool_(False), "?"], (["?"], "boolean"), (["?"], "boolean")),
        ([0.5, "", "1"], ([""], "float_num"), ([""], "float_num")),
        ([2, "??"], ([], "char_str"), ([], "char_str")),
        (["1", 2], ([], "Unknown"), ([], "int_num")),
        (["1.5", 2], ([], "float_str"), ([], "int_num")),
        ([True, "1"], ([], "Unknown"), ([], "int_str")),
        ([1, 2.0, "1.5"], ([], "float_str"), ([], "float_str")),
        (["1", "1.5", 2], ([], "float_str"), ([], "float_str")),
        (["1", 0.5], ([], "float_num"), ([], "float_num")),
        # Every value before the first number text is a candidate.
        ([1, "a", "5"], ([1, "a"], "int_str"), ([1, "a"], "int_str")),
        (["a", 0.5, "5.5"], (["a", 0.5], "float_num"), (["a", 0.5], "float_str")),
        (["5", "a", 0.5], (["a"], "float_num"), (["a"], "float_num")),
        # Empty text is a marker after a number.
        (["1", "", "2"], ([""], "int_str"), ([""], "int_str")),
        (["1.5", "", "a"], ([""], "float_str"), ([""], "float_str")),
        (["a", "b", "1", ""], (["a", "b", ""], "int_str"), (["a", "b", ""], "int_str")),
        # A repeated text is listed once.
        (["1", "a", "a"], ([], "char_str"), (["a"], "char_str")),
        ([], ([], "Unknown"), ([], "Unknown")),
    ],
)
def test_the_scan_takes_the_values_as_they_come(monkeypatch, values, counted, running):
    X = objects("x")
    listed = objects(*values), np.ones(len(values), dtype=np.intp)
    record(monkeypatch, "get_unique_values", lambda *args, **kwargs: listed)
    assert typed(numpy_whatis(X)) == typed(counted)
    assert typed(numpy_whatis(X, use_dtype_str1_flag=False)) == typed(running)


def test_missing_rows_without_any_value_are_missing_by_the_counting_rules_only(monkeypatch):
    listed = objects(), np.array([], dtype=np.intp)
    record(monkeypatch, "get_unique_values", lambda *args, **kwargs: listed)
    assert both_verdicts(objects("?", "a"), ["?"]) == ("missing", "Unknown")
