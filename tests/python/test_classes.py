"""The classes of a target: in the order of their first cells, each with its count as a float."""

from __future__ import annotations

import collections
from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, record
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list
NAN = np.nan


def found(monkeypatch, *misslist):
    """Make the classifier return these markers for every column."""
    answer = (list(misslist), "not looked at")
    return record(monkeypatch, "numpy_whatis", lambda *args: answer)


@pytest.mark.parametrize(
    "y, args, expected",
    [
        (objects(1, 2, 2, 3, 1, 1), (), [(1, 3.0), (2, 2.0), (3, 1.0)]),
        (objects("b", "a", "b"), (), [("b", 2.0), ("a", 1.0)]),
        (objects("b", "?", "a", "b"), (), [("b", 2.0), ("a", 1.0)]),
        (objects("b", "?", "a", "b"), (False,), [("b", 2.0), ("?", 1.0), ("a", 1.0)]),
        (objects("b", "?", "a", "b"), (0, ["?"]), [("b", 2.0), ("?", 1.0), ("a", 1.0)]),
        (objects("b", "?", "a", "b"), (True, ["a"]), [("b", 2.0), ("?", 1.0)]),
        (objects("b", "?", "b"), (True, []), [("b", 2.0), ("?", 1.0)]),
        (objects("b", "?", "b"), ("yes", None), [("b", 2.0)]),
        (objects("?", "?", "-"), (), []),
        (objects("?", "?", "-"), (False,), [("?", 2.0), ("-", 1.0)]),
        (objects(5, NAN, 5), (), [(5, 2.0)]),
        (objects(5, NAN, 5), (False,), [(5, 2.0), (NAN, 1.0)]),
    ],
)
def test_classes_with_their_counts(y, args, expected, capsys, caplog):
    before = typed(y), typed(args), typed(DEFAULT)
    assert typed(FCplus.getClasses(y, *args)) == typed(expected)
    assert (typed(y), typed(args), typed(DEFAULT)) == before
    assert capsys.readouterr().out == ""
    assert caplog.records == []


@pytest.mark.parametrize(
    "y, expected",
    [
        (
            np.array([1, 2, 2, 3, 1, 1]),
            [(np.int64(1), 3.0), (np.int64(2), 2.0), (np.int64(3), 1.0)],
        ),
        (np.array(["x", "y", "x"]), [(np.str_("x"), 2.0), (np.str_("y"), 1.0)]),
        (np.array([True, False]), [(np.bool_(True), 1.0), (np.bool_(False), 1.0)]),
        (pd.Series(["x", "y", "x"], dtype=object), [("x", 2.0), ("y", 1.0)]),
        # Each read of a cell makes another NaN object, and no two are equal.
        (
            np.array([0.5, NAN, NAN]),
            [(np.float64(0.5), 1.0), (np.float64(NAN), 1.0), (np.float64(NAN), 1.0)],
        ),
    ],
)
def test_a_class_is_what_indexing_returns(y, expected):
    assert typed(FCplus.getClasses(y)) == typed(expected)


def test_arguments_may_be_keywords():
    y = objects("a", "?", "b")
    result = FCplus.getClasses(
        missing_values_reference_list=["b"], exclude_missing_class_flag=True, y=y
    )
    assert result == [("a", 1.0), ("?", 1.0)]


def test_equal_cells_are_one_class_named_by_the_first(monkeypatch):
    found(monkeypatch)
    first = float("1.0")
    result = FCplus.getClasses(objects(first, 1, True, "1"))
    assert result == [(1.0, 3.0), ("1", 1.0)]
    assert result[0][0] is first
    assert [type(entry) for entry in result] == [tuple, tuple]


# --- which cells count ------------------------------------------------------------------------


class Cells:
    """A column that records which rows are read."""

    def __init__(self, *cells):
        self.cells = cells
        self.shape = (len(cells),)
        self.asked = []

    def __getitem__(self, row):
        self.asked.append(row)
        return self.cells[row]


def test_a_cell_is_read_for_the_search_and_again_if_kept(monkeypatch):
    found(monkeypatch, "?")
    y = Cells("a", "?", "b")
    assert FCplus.getClasses(y) == [("a", 1.0), ("b", 1.0)]
    assert y.asked == [0, 0, 1, 2, 2]


@pytest.mark.parametrize("misslist, flag", [([], True), ([], False), (["?"], False), (["?"], None)])
def test_without_exclusion_a_cell_is_read_once(monkeypatch, misslist, flag):
    found(monkeypatch, *misslist)
    y = Cells("a", "?")
    assert FCplus.getClasses(y, flag) == [("a", 1.0), ("?", 1.0)]
    assert y.asked == [0, 1]


class Truth:
    def __init__(self, log, name, answer):
        self.log, self.name, self.answer = log, name, answer

    def __bool__(self):
        self.log.append(self.name)
        return self.answer

    def __contains__(self, cell):
        self.log.append(cell)
        return cell == "?"


@pytest.mark.parametrize(
    "missing, exclude, log, classes",
    [
        (False, True, ["missing"], "a?"),
        (True, False, ["missing", "exclude"], "a?"),
        (True, True, ["missing", "exclude", "a", "?"], "a"),
    ],
)
def test_the_flag_is_consulted_when_there_are_markers(monkeypatch, missing, exclude, log, classes):
    seen = []
    markers, flag = Truth(seen, "missing", missing), Truth(seen, "exclude", exclude)
    record(monkeypatch, "numpy_whatis", lambda *args: (markers, "int_num"))
    assert FCplus.getClasses(objects("a", "?"), flag) == [(name, 1.0) for name in classes]
    assert seen == log


@pytest.mark.parametrize(
    "given, passed",
    [((), DEFAULT), ((True, None), DEFAULT), ((True, ["z"]), ["z"]), ((True, []), [])],
)
def test_the_classifier_gets_column_and_markers(monkeypatch, given, passed):
    whatis = found(monkeypatch)
    y = objects("a")
    FCplus.getClasses(y, *given)
    args, kwargs = whatis.only_call()
    assert args[0] is y
    assert args[1] is (DEFAULT if passed is DEFAULT else given[1])
    assert len(args) == 2 and kwargs == {}


# --- counting ---------------------------------------------------------------------------------


def counter(*items):
    """A replacement for Counter with these items."""
    return Recorder(lambda seq: SimpleNamespace(items=lambda: iter(items)))


def test_the_list_of_kept_cells_is_counted(monkeypatch):
    found(monkeypatch, "?")
    count = Recorder(collections.Counter)
    monkeypatch.setattr(exportable_utils, "Counter", count)
    assert FCplus.getClasses(objects("b", "?", "a", "b")) == [("b", 2.0), ("a", 1.0)]
    assert count.calls == [((["b", "a", "b"],), {})]
    assert type(count.calls[0][0][0]) is list


class Half:
    def __float__(self):
        return 0.5


def test_counts_become_floats(monkeypatch):
    found(monkeypatch)
    exact = 2.5
    items = [("z", 3), ("a", exact), ("m", "4.5"), ("b", True), ("c", Half()), ["d", 2**70]]
    monkeypatch.setattr(exportable_utils, "Counter", counter(*items))
    result = FCplus.getClasses(objects())
    assert typed(result) == typed(
        [("z", 3.0), ("a", 2.5), ("m", 4.5), ("b", 1.0), ("c", 0.5), ("d", 2.0**70)]
    )
    assert result[1][1] is exact


@pytest.mark.parametrize("count, error", [(None, TypeError), ("x", ValueError)])
def test_a_count_that_is_no_number(monkeypatch, count, error):
    found(monkeypatch)
    monkeypatch.setattr(exportable_utils, "Counter", counter(("a", count)))
    with pytest.raises(error) as excinfo:
        FCplus.getClasses(objects())
    assert str(excinfo.value) == message_of(error, float, count)


@pytest.mark.parametrize(
    "item, words",
    [
        (("a",), "not enough values to unpack (expected 2, got 1)"),
        (("a", 1, 2), "too many values to unpack (expected 2)"),
    ],
)
def test_a_class_comes_with_one_count(monkeypatch, item, words):
    found(monkeypatch)
    monkeypatch.setattr(exportable_utils, "Counter", counter(item))
    with pytest.raises(ValueError) as excinfo:
        FCplus.getClasses(objects())
    assert str(excinfo.value) == words


# --- failures ---------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        (([],), "not enough values to unpack (expected 2, got 1)"),
        (iter("a"), "not enough values to unpack (expected 2, got 1)"),
        (([], "int_num", {}), "too many values to unpack (expected 2)"),
        ("abc", "too many values to unpack (expected 2)"),
    ],
)
def test_the_classifier_must_give_a_pair(monkeypatch, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args: answer)
    with pytest.raises(ValueError) as excinfo:
        FCplus.getClasses(objects("a"))
    assert str(excinfo.value) == words
    assert "getClasses" in names_in_traceback(excinfo)


@pytest.mark.parametrize("y", [np.array([[1], [2]]), objects("a", []), objects({})])
def test_cells_that_cannot_be_counted(monkeypatch, y):
    found(monkeypatch)
    with pytest.raises(TypeError) as excinfo:
        FCplus.getClasses(y)
    assert str(excinfo.value) == message_of(TypeError, collections.Counter, list(y))


def test_rows_of_a_matrix_cannot_be_counted():
    with pytest.raises(TypeError) as excinfo:
        FCplus.getClasses(np.array([[1], [2]]))
    assert "unhashable" in str(excinfo.value)
    assert "getClasses" in names_in_traceback(excinfo)


@pytest.mark.parametrize("y", [["a"], None])
def test_a_target_has_a_shape(monkeypatch, y):
    found(monkeypatch)
    with pytest.raises(AttributeError) as excinfo:
        FCplus.getClasses(y)
    assert str(excinfo.value) == message_of(AttributeError, lambda: y.shape)


def test_an_empty_target_is_refused_by_the_classifier(monkeypatch):
    with pytest.raises(IndexError) as excinfo:
        FCplus.getClasses(np.array([]))
    names = names_in_traceback(excinfo)
    assert names.index("getClasses") < names.index("numpy_whatis")
    found(monkeypatch)
    assert FCplus.getClasses(np.array([])) == []
