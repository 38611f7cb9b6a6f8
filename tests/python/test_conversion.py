"""Conversions to numbers and booleans to floats: values, output, changes in place, identity."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import record, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import (
    convert_float32,
    numpy_boolean2float,
    numpy_floatstr2float,
)

NAN = float("nan")
DEFAULT = exportable_utils.global_missing_values_reference_list


class Unreadable:
    """A value whose `float()` raises its own message."""

    def __init__(self, failure):
        self.failure = failure

    def __float__(self):
        raise self.failure

    def __str__(self):
        return "<unreadable>"


def set_to_nan(*cells):
    """The output for texts that are not floats."""
    return "".join(
        "{}\nSetting value {} to NaN\n".format(message_of(ValueError, float, cell), cell)
        for cell in cells
    )


# --- numpy_floatstr2float ---------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, markers, expected, unread",
    [
        (objects("1.5", "abc", "?"), ["?"], [1.5, NAN, NAN], ["abc"]),
        (objects("1.5", "abc", "?"), None, [1.5, NAN, NAN], ["abc", "?"]),
        (objects("1.5", "abc", "?"), [], [1.5, NAN, NAN], ["abc", "?"]),
        (objects("?", "", "-", "2"), DEFAULT, [NAN, NAN, NAN, 2.0], []),
        (objects(" 1 ", "1e3", "inf", "nan", "-.5"), None, [1.0, 1e3, np.inf, NAN, -0.5], []),
        (objects("1,5", "", " "), None, [NAN, NAN, NAN], ["1,5", "", " "]),
        (objects(1, 2.5, True, "3"), None, [1.0, 2.5, 1.0, 3.0], []),
        (objects(b"2.5", np.float32(0.5)), None, [2.5, 0.5], []),
        (objects(1, "1", True), [1], [NAN, 1.0, NAN], []),
        (objects("1", "2"), {"2"}, [1.0, NAN], []),
        (objects("1", "2"), "321", [NAN, NAN], []),
        (np.array(["1.5", "abc", "?"]), ["?"], [1.5, NAN, NAN], [np.str_("abc")]),
        (np.array([1.0, np.nan, -1.0]), [-1], [1.0, NAN, NAN], []),
        (np.array([1, 2], dtype=np.float32), None, [1.0, 2.0], []),
        (np.array([True, False]), None, [1.0, 0.0], []),
        (np.array([], dtype=object), ["?"], [], []),
    ],
)
def test_float_text_becomes_floats(X, markers, expected, unread, capsys, caplog):
    before = typed(X), typed(markers)
    Z = numpy_floatstr2float(X, markers)
    assert Z is not X
    assert typed(Z) == typed(np.array(expected, dtype=float))
    assert (typed(X), typed(markers)) == before
    assert capsys.readouterr().out == set_to_nan(*unread)
    assert caplog.records == []


def test_floatstr2float_takes_keywords(capsys):
    Z = numpy_floatstr2float(missing_values_reference_list=["a"], X=objects("a", "1"))
    assert typed(Z) == typed(np.array([NAN, 1.0]))
    assert capsys.readouterr().out == ""


def test_every_value_that_is_no_marker_is_tested_once(monkeypatch):
    isfloat = record(monkeypatch, "isfloat")
    numpy_floatstr2float(objects("1", "?", "x", 2), ["?"])
    assert isfloat.calls == [(("1",), {}), (("x",), {}), ((2,), {})]


def test_what_isfloat_rejects_is_converted_nevertheless(monkeypatch, capsys):
    record(monkeypatch, "isfloat", lambda value: False)
    assert typed(numpy_floatstr2float(objects("1.5", 2))) == typed(np.array([1.5, 2.0]))
    assert capsys.readouterr().out == ""


def test_what_the_test_accepts_must_convert(monkeypatch, capsys):
    record(monkeypatch, "isfloat", lambda value: True)
    X = objects("1", "abc")
    with pytest.raises(ValueError) as excinfo:
        numpy_floatstr2float(X)
    assert str(excinfo.value) == message_of(ValueError, X.astype, float)
    assert capsys.readouterr().out == ""


def test_nan_does_not_fit_into_a_text_of_one_character():
    X = np.array(["?", "1"])
    with pytest.raises(ValueError) as excinfo:
        numpy_floatstr2float(X, ["?"])
    assert str(excinfo.value) == message_of(ValueError, np.array(["n", "1"]).astype, float)
    assert X.tolist() == ["?", "1"]


@pytest.mark.parametrize("cell", [None, [1], {}])
def test_what_is_neither_text_nor_number_is_refused(cell, capsys):
    with pytest.raises(TypeError) as excinfo:
        numpy_floatstr2float(objects("x", cell), ["?"])
    assert str(excinfo.value) == message_of(TypeError, float, cell)
    assert "numpy_floatstr2float" in names_in_traceback(excinfo)
    assert capsys.readouterr().out == set_to_nan("x")


def test_a_marker_is_not_tested(monkeypatch):
    assert typed(numpy_floatstr2float(objects(None, "1"), [None])) == typed(np.array([NAN, 1.0]))


def test_words_and_cell_are_printed(capsys):
    X = objects(Unreadable(ValueError("no\nnumber")), "2")
    assert typed(numpy_floatstr2float(X)) == typed(np.array([NAN, 2.0]))
    assert capsys.readouterr().out == "no\nnumber\nSetting value <unreadable> to NaN\n"


@pytest.mark.parametrize("failure", [TypeError("t"), ZeroDivisionError("z"), MemoryError("m")])
def test_any_exception_of_float_sets_nan(monkeypatch, capsys, failure):
    record(monkeypatch, "isfloat", lambda value: False)
    assert typed(numpy_floatstr2float(objects(Unreadable(failure)))) == typed(np.array([NAN]))
    assert capsys.readouterr().out == str(failure) + "\nSetting value <unreadable> to NaN\n"


@pytest.mark.parametrize("interruption", [KeyboardInterrupt, SystemExit])
def test_an_interruption_of_float_propagates(monkeypatch, capsys, interruption):
    record(monkeypatch, "isfloat", lambda value: False)
    with pytest.raises(interruption):
        numpy_floatstr2float(objects(Unreadable(interruption("stop"))))
    assert capsys.readouterr().out == ""


def test_only_float_itself_is_guarded(monkeypatch):
    with pytest.raises(ZeroDivisionError):
        numpy_floatstr2float(objects(Unreadable(ZeroDivisionError())))

    class NoMarkers:
        def __contains__(self, value):
            raise RuntimeError("markers")

    with pytest.raises(RuntimeError, match="^markers$"):
        numpy_floatstr2float(objects("1"), NoMarkers())


@pytest.mark.parametrize("markers", [["?"], []])
def test_the_nan_is_that_of_np(monkeypatch, markers):
    replace_in(monkeypatch, "np", nan=7.0)
    assert numpy_floatstr2float(objects("?", "1"), markers).tolist() == [7.0, 1.0]


def test_a_series_stays_a_series():
    X = pd.Series(["1.5", "?", "x"], dtype=object)
    Z = numpy_floatstr2float(X, ["?"])
    assert typed(Z) == typed(pd.Series([1.5, NAN, NAN]))
    assert typed(X) == typed(pd.Series(["1.5", "?", "x"], dtype=object))


@pytest.mark.parametrize("routine", [numpy_floatstr2float, numpy_boolean2float])
@pytest.mark.parametrize(
    "text",
    [
        "Converts a 1-D numpy array of strings that represent floats to floats",
        "and replaces missing values with np.nan. "
        "Also changes type of array from 'object' to 'float'",
        ":param missing_values_reference_list: list of values that should be considered as missing",
        ":return: 1-D numpy array of floats and np.nan as missing values",
    ],
)
def test_the_documentation_is_shared(routine, text):
    assert text in " ".join(routine.__doc__.split())


def test_the_documentation_describes_the_columns():
    assert ":param X: 1-d numpy array of strings" in numpy_floatstr2float.__doc__
    assert ":param X: 1-d numpy array of booleans" in numpy_boolean2float.__doc__


# --- numpy_boolean2float ----------------------------------------------------------------------


@pytest.mark.parametrize(
    "cells, markers, floats, after",
    [
        ([True, False], None, [1.0, 0.0], [True, False]),
        ([True, False], [], [1.0, 0.0], [True, False]),
        ([True, False], [False], [1.0, 1.0], [True, True]),
        ([True, False], [True], [1.0, 0.0], [True, False]),
        ([True, False], [0], [1.0, 1.0], [True, True]),
        ([True, False], DEFAULT, [1.0, 0.0], [True, False]),
        ([False, False], [0.0, np.nan], [1.0, 1.0], [True, True]),
    ],
)
def test_a_missing_boolean_becomes_true_in_place(cells, markers, floats, after):
    X = np.array(cells)
    Y = numpy_boolean2float(X, markers)
    assert typed(Y) == typed(np.array(floats))
    assert typed(X) == typed(np.array(after))


def test_a_column_of_booleans_in_two_dimensions():
    X = np.array([[True], [False]])
    Y = numpy_boolean2float(missing_values_reference_list=[False], X=X)
    assert typed(Y) == typed(np.array([[1.0], [1.0]]))
    assert X.tolist() == [[True], [True]]


def test_an_empty_column_of_booleans():
    X = np.array([], dtype=bool)
    assert typed(numpy_boolean2float(X)) == typed(np.array([], dtype=float))
    with pytest.raises(IndexError):
        numpy_boolean2float(X, [])


@pytest.mark.parametrize(
    "X",
    [
        np.array([1, 0]),
        np.array([1.0, 0.0]),
        objects(True, False),
        np.array(["True"]),
        np.array([1], dtype=np.int8),
        pd.Series([True, None], dtype="boolean"),
    ],
)
@pytest.mark.parametrize("markers", [None, [False], "no list", 7])
def test_what_is_not_boolean_is_returned_itself(X, markers):
    before = typed(X)
    assert numpy_boolean2float(X, markers) is X
    assert typed(X) == before


def test_the_mask_is_that_of_numpy_isin(monkeypatch):
    isin = record(monkeypatch, "numpy_isin", lambda X, reference: mask(0, 1, 0))
    X, markers = np.array([False, False, True]), ["?"]
    assert numpy_boolean2float(X, markers).tolist() == [0.0, 1.0, 1.0]
    (first, second), kwargs = isin.only_call()
    assert first is X and second is markers and kwargs == {}


def test_np_nan_is_what_is_written(monkeypatch):
    replace_in(monkeypatch, "np", nan=0)
    X = np.array([True, True])
    assert numpy_boolean2float(X, [True]).tolist() == [0.0, 0.0]
    assert X.tolist() == [False, False]


def test_the_dtype_is_compared_with_the_text_bool():
    class Column:
        def __init__(self, dtype):
            self.dtype = dtype

        def astype(self, kind):
            return "astype", kind

    column = Column("bool")
    assert numpy_boolean2float(column) == ("astype", float)
    column = Column("bool_")
    assert numpy_boolean2float(column) is column


# --- convert_float32 --------------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, force, expected",
    [
        (np.array([1.5, 0.1]), False, [1.5, 0.1]),
        (np.array([1.5, np.nan]), True, [1.5, NAN]),
        (np.array([[1.5], [2.5]]), False, [[1.5], [2.5]]),
        (np.array([]), False, []),
        (np.array([1, 2], dtype=np.int64), True, [1, 2]),
        (np.array([1, 2], dtype=np.int64), "yes", [1, 2]),
        (np.array([True, False]), 1, [1, 0]),
        (objects("1.5", 2), True, [1.5, 2]),
        (np.array(["1.5"]), True, [1.5]),
        (np.array([1.5], dtype=np.float16), True, [1.5]),
        (np.array([1.5], dtype=np.float32), True, [1.5]),
    ],
)
def test_floats_of_32_bits(X, force, expected):
    before = typed(X)
    Y = convert_float32(X, force)
    assert Y is not X
    assert typed(Y) == typed(np.array(expected, dtype=np.float32))
    assert typed(X) == before


@pytest.mark.parametrize(
    "X",
    [
        np.array([1.5], dtype=np.float32),
        np.array([1.5], dtype=np.float16),
        np.array([1.5], dtype=np.dtype("f8").newbyteorder()),
        np.array([1, 2]),
        np.array([1j]),
        np.array([True]),
        objects(1.5),
        np.array(["1.5"]),
    ],
)
@pytest.mark.parametrize("args", [(), (False,), (0,), (None,), ("",)])
def test_any_other_dtype_is_returned_itself(X, args):
    assert convert_float32(X, *args) is X


class Flag:
    def __bool__(self):
        raise RuntimeError("asked")


def test_the_flag_is_read_only_for_other_dtypes():
    assert convert_float32(np.array([1.5]), Flag()).dtype == np.float32
    with pytest.raises(RuntimeError, match="^asked$"):
        convert_float32(np.array([1]), force_flag=Flag())


def test_what_cannot_be_converted_is_refused():
    X = objects("abc")
    with pytest.raises(ValueError) as excinfo:
        convert_float32(force_flag=True, X=X)
    assert str(excinfo.value) == message_of(ValueError, X.astype, "float32")
    assert "convert_float32" in names_in_traceback(excinfo)


def test_astype_gets_the_text_float32():
    class Column:
        dtype = "float64"

        def astype(self, *args, **kwargs):
            return args, kwargs

    assert convert_float32(Column()) == (("float32",), {})
