"""Whether all cells that are not markers are integers."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import record
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_isintstr

DEFAULT = exportable_utils.global_missing_values_reference_list
NAN = np.nan


@pytest.mark.parametrize(
    "X, markers, expected",
    [
        (objects(), None, True),
        (np.array([], dtype=float), ["?"], True),
        (objects("1", "-2", " 3 "), None, True),
        (objects("1", "2.0"), None, False),
        (objects("1", "?"), None, False),
        (objects("1", "?"), [], False),
        (objects("1", "?"), ["?"], True),
        (objects("?", "?"), ["?"], True),
        (objects("1", "?", "x"), ["?"], False),
        (objects("", "-", "?", "7"), DEFAULT, True),
        (np.array(["12", "?"]), ["?"], True),
        (np.array(["12", "x"]), ["?"], False),
        (np.array([1, 2]), None, True),
        (np.array([1.0, 2.9]), None, True),
        (np.array([True, False]), None, True),
        (objects(b"12", 3.7, "4"), None, True),
        # NaN is not equal to NaN: only the object in the list is found, by identity.
        (np.array([1.0, NAN]), [NAN], False),
        (objects(1, NAN), [NAN], True),
        (objects(1, float("nan")), [NAN], False),
        (objects(1, NAN), None, False),
        # Equality is the interpreter's: 1 equals True and 1.0.
        (objects("x", 1), ["x", True], True),
        (objects(None, "1"), [None], True),
        (objects("1", "a"), "abc", True),
        (objects("1", "a"), {"a": 0}, True),
        (pd.Series(["1", "?"]), ["?"], True),
        (pd.Series(["1", "?"], index=[1, 0]), None, False),
    ],
)
def test_cells_that_are_no_markers_are_integers(X, markers, expected, capsys, caplog):
    before = typed(X), typed(markers)
    assert numpy_isintstr(X, markers) is expected
    assert (typed(X), typed(markers)) == before
    assert capsys.readouterr().out == ""
    assert caplog.records == []


def test_arguments_may_be_keywords():
    assert numpy_isintstr(missing_values_reference_list=["?"], X=objects("?")) is True


class Cells:
    """A column that records each read of a row and of its length."""

    def __init__(self, *cells):
        self.cells = cells
        self.asked = []

    @property
    def shape(self):
        self.asked.append("shape")
        return (len(self.cells),)

    def __getitem__(self, row):
        self.asked.append(row)
        return self.cells[row]


def test_a_cell_is_read_for_the_search_and_again_for_the_test():
    X = Cells("1", "?", "2")
    assert numpy_isintstr(X, ["?"]) is True
    assert X.asked == ["shape", 0, 0, 1, 2, 2]


def test_every_row_is_examined(monkeypatch):
    isint = record(monkeypatch, "isint")
    X = Cells("x", "1", "?", "y", "2")
    assert numpy_isintstr(X, ["?"]) is False
    assert isint.calls == [((cell,), {}) for cell in ("x", "1", "y", "2")]
    assert X.asked == ["shape", 0, 0, 1, 1, 2, 3, 3, 4, 4]


def test_a_failure_after_a_false_answer_is_not_missed():
    with pytest.raises(OverflowError):
        numpy_isintstr(objects("x", float("inf")))


def test_the_list_itself_is_searched():
    class Markers:
        def __init__(self):
            self.asked = []

        def __contains__(self, cell):
            self.asked.append(cell)
            return cell == "?"

        def __bool__(self):
            raise AssertionError("the truth of the list was taken")

    markers = Markers()
    assert numpy_isintstr(objects("1", "?", "2"), markers) is True
    assert markers.asked == ["1", "?", "2"]


def test_without_a_list_no_cell_is_compared():
    class Cell(int):
        def __eq__(self, other):
            raise AssertionError("compared")

        __hash__ = None  # type: ignore[assignment]

    assert numpy_isintstr(objects(Cell(1), Cell(2))) is True


@pytest.mark.parametrize("answer", [True, 1, "yes", [0], False, 0, "", [], None])
def test_the_truth_of_the_answer_counts(monkeypatch, answer):
    record(monkeypatch, "isint", lambda value: answer)
    assert numpy_isintstr(objects("1", "2")) is bool(answer)


@pytest.mark.parametrize(
    "cell, error",
    [(None, TypeError), ([1], TypeError), (float("inf"), OverflowError), (1j, TypeError)],
)
def test_what_isint_raises_propagates(cell, error):
    with pytest.raises(error) as excinfo:
        numpy_isintstr(objects("1", cell))
    assert str(excinfo.value) == message_of(error, int, cell)
    names = names_in_traceback(excinfo)
    assert names.index("numpy_isintstr") < names.index("isint")


def test_a_comparison_that_fails_propagates(monkeypatch):
    failure = RuntimeError("incomparable")

    class Cell:
        def __eq__(self, other):
            raise failure

        __hash__ = None  # type: ignore[assignment]

    isint = record(monkeypatch, "isint")
    with pytest.raises(RuntimeError) as excinfo:
        numpy_isintstr(objects("1", Cell(), "2"), ["?"])
    assert excinfo.value is failure
    assert "numpy_isintstr" in names_in_traceback(excinfo)
    assert isint.calls == [(("1",), {})]


def test_a_row_of_a_matrix_is_no_integer():
    X = np.array([[1, 2], [3, 4]])
    with pytest.raises(TypeError) as excinfo:
        numpy_isintstr(X)
    assert str(excinfo.value) == message_of(TypeError, int, X[0])


@pytest.mark.parametrize("X", [["1"], "1", None, 5])
def test_a_column_has_a_shape(X):
    with pytest.raises(AttributeError) as excinfo:
        numpy_isintstr(X)
    assert str(excinfo.value) == message_of(AttributeError, lambda: X.shape)
    assert "numpy_isintstr" in names_in_traceback(excinfo)


def test_a_column_has_a_first_dimension():
    with pytest.raises(IndexError, match="^tuple index out of range$"):
        numpy_isintstr(np.array(5))


def test_a_length_is_an_integer():
    with pytest.raises(TypeError) as excinfo:
        numpy_isintstr(SimpleNamespace(shape=(2.0,)))
    assert str(excinfo.value) == message_of(TypeError, range, 2.0)


@pytest.mark.parametrize("cells, markers", [(["1"], 5), (["1"], object())])
def test_a_list_that_cannot_be_searched(cells, markers):
    with pytest.raises(TypeError) as excinfo:
        numpy_isintstr(objects(*cells), markers)
    assert str(excinfo.value) == message_of(TypeError, lambda: "1" in markers)
    assert numpy_isintstr(objects(), markers) is True


def test_a_series_is_read_by_label():
    X = pd.Series(["1", "2"], index=[5, 6])
    with pytest.raises(KeyError):
        numpy_isintstr(X)


@pytest.mark.parametrize(
    "text",
    ["1-d numpy array of strings or ints/floats", "list of missing values", "true or false"],
)
def test_the_documentation(text):
    assert text in " ".join(numpy_isintstr.__doc__.split())


def test_the_test_is_looked_up_only_when_a_cell_is_tested(monkeypatch):
    monkeypatch.delattr(exportable_utils, "isint")
    assert numpy_isintstr(objects("?", "-"), ["?", "-"]) is True
    with pytest.raises(NameError, match="^name 'isint' is not defined$"):
        numpy_isintstr(objects("?", "1"), ["?"])
