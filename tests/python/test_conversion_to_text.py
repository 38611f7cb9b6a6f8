"""Columns of floats and other cells to text: values, changes in place, identity."""

from __future__ import annotations

import warnings

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import (
    numpy_boolean2float,
    numpy_column_float2str,
    numpy_floatstr2float,
)

NAN = float("nan")


@pytest.mark.parametrize(
    "X",
    [
        np.array([1.0, 2.5, np.nan]),
        np.array([1, 20]),
        np.array([True, False]),
        np.array(["a", "bc"]),
        objects(1.0, None, "a", NAN),
        np.array([[1.0], [2.5]]),
        np.array([]),
    ],
)
@pytest.mark.parametrize("args", [(), (True,), (1,), ("yes",)])
def test_the_fast_conversion_is_that_of_astype(X, args):
    before = typed(X)
    Y = numpy_column_float2str(X, *args)
    assert Y is not X
    assert typed(Y) == typed(X.astype(str))
    assert typed(X) == before


class Half(float):
    """A float whose `is_integer()` is true."""

    def is_integer(self):
        return True

    def __str__(self):
        return "half"


@pytest.mark.parametrize("flag", [False, 0, None, ""])
@pytest.mark.parametrize(
    "cell, text",
    [
        (1.0, "1"),
        (2.5, "2.5"),
        (NAN, "?"),
        (None, "?"),
        (pd.NaT, "?"),
        (np.datetime64("NaT", "s"), "?"),
        (np.float32("nan"), "?"),
        (-0.0, "0"),
        (-3.0, "-3"),
        (1e22, "10000000000000000000000"),
        (0.1, "0.1"),
        (1e-07, "1e-07"),
        (np.inf, "inf"),
        (-np.inf, "-inf"),
        (np.float64(4.0), "4"),
        (np.float64(4.25), "4.25"),
        (np.float32(4.0), "4.0"),
        (7, "7"),
        (True, "True"),
        ("3.0", "3.0"),
        ("", ""),
        (b"a", "b'a'"),
        (1j, "1j"),
        ([1], "[1]"),
        (Half(3.5), "3"),
    ],
)
def test_the_slow_conversion_rewrites_each_cell_in_place(cell, text, flag):
    X = objects("a", cell)
    Y = numpy_column_float2str(X, flag)
    assert Y is X
    assert typed(X) == typed(objects("a", text))


@pytest.mark.parametrize("cell, of", [(True, True), (False, False), (7, 7), (7.0, 7), (-0.0, 0)])
def test_texts_that_the_interpreter_keeps_are_the_ones_it_keeps(cell, of):
    X = numpy_column_float2str(objects(cell, cell), False)
    assert (X[0] is X[1]) == (str(of) is str(of))
    assert (X[0] is str(of)) == (str(of) is str(of))


def test_float2str_takes_keywords():
    X = objects(1.0, 2.5, np.nan)
    assert numpy_column_float2str(fast_conversion_flag=False, X=X) is X
    assert typed(X) == typed(objects("1", "2.5", "?"))


@pytest.mark.parametrize(
    "X", [np.array([3.0, 2.5]), np.array([3, -2]), np.array(["a", "b"]), np.empty(0)]
)
def test_a_column_that_reads_its_texts_back_is_unchanged(X):
    before = typed(X)
    assert numpy_column_float2str(X, False) is X
    assert typed(X) == before


def test_a_float_column_cannot_hold_the_question_mark():
    X = np.array([3.0, np.nan, 2.0])
    with pytest.raises(ValueError) as excinfo:
        numpy_column_float2str(X, False)
    assert str(excinfo.value) == message_of(ValueError, X.__setitem__, 1, "?")
    assert "numpy_column_float2str" in names_in_traceback(excinfo)


def test_cells_before_a_failure_stay_rewritten():
    X = objects(3.0, [1, 2], 2.0)
    with pytest.raises(ValueError) as excinfo:
        numpy_column_float2str(X, False)
    assert str(excinfo.value) == message_of(ValueError, bool, np.array([True, True]))
    assert typed(X) == typed(objects("3", [1, 2], 2.0))


def test_nulls_are_those_of_pandas(monkeypatch):
    isnull = Recorder(lambda cell: cell == "a")
    replace_in(monkeypatch, "pd", isnull=isnull)
    X = objects("a", 2.0, NAN)
    numpy_column_float2str(X, False)
    assert typed(X) == typed(objects("?", "2", "nan"))
    assert typed(isnull.calls) == typed([(("a",), {}), ((2.0,), {}), ((NAN,), {})])


def test_float_and_int_are_those_of_np(monkeypatch):
    class Degrees:
        def is_integer(self):
            return True

    cell = Degrees()
    whole = Recorder(lambda value: "seven")
    replace_in(monkeypatch, "np", float=Degrees, int=whole)
    X = objects(cell, 2.0)
    numpy_column_float2str(X, False)
    assert typed(X) == typed(objects("seven", "2.0"))
    assert whole.calls == [((cell,), {})]


def test_the_names_that_numpy_deprecates_are_taken_without_a_warning():
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert numpy_column_float2str(objects(3.0, 2.5), False).tolist() == ["3", "2.5"]


@pytest.mark.parametrize(
    "name, call",
    [
        ("isfloat", lambda: numpy_floatstr2float(objects("1"))),
        ("np", lambda: numpy_floatstr2float(objects("?"), ["?"])),
        ("numpy_isin", lambda: numpy_boolean2float(np.array([True]), [])),
        ("pd", lambda: numpy_column_float2str(objects(1.0), False)),
        ("np", lambda: numpy_column_float2str(objects(1.0), False)),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, call):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        call()
    assert str(excinfo.value) == "name '{}' is not defined".format(name)
