"""Values replaced at the places of a mask or of reference values."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_putmask, numpy_replace_values

NAN = np.nan


def of(rows):
    """The object array of these rows."""
    return np.array(rows, dtype=object)


# --- numpy_putmask ----------------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, bits, filling, expected",
    [
        (np.array([1, 2, 3]), mask(1, 0, 1), "?", ["?", 2, "?"]),
        (np.array([1, 2, 3]), mask(0, 0, 0), "?", [1, 2, 3]),
        (np.array([1.5, NAN]), mask(0, 1), None, [1.5, None]),
        (np.array(["a", "b"]), mask(1, 0), NAN, [NAN, "b"]),
        (objects("a", 1), mask(0, 1), 2.5, ["a", 2.5]),
        (np.array([True, False]), [True, False], -1, [-1, False]),
        (np.array([1, 2, 3, 4]), mask(1, 1, 1, 1), [7, 8], [7, 8, 7, 8]),
        (np.array([[1, 2], [3, 4]]), np.array([[True, False], [False, True]]), 0, [[0, 2], [3, 0]]),
        (np.array([]), mask(), 0, []),
    ],
)
def test_masked_entries_are_set_in_an_object_copy(X, bits, filling, expected):
    before = typed(X)
    Y = numpy_putmask(X, bits, filling)
    assert Y is not X
    assert typed(Y) == typed(of(expected))
    assert typed(X) == before


def test_putmask_takes_keywords():
    Y = numpy_putmask(filling_value=0, replace_values_mask=mask(1, 0), X=np.array([1, 2]))
    assert typed(Y) == typed(of([0, 2]))


def test_the_copy_is_handed_to_numpy_and_returned(monkeypatch):
    copy, bits, filling = object(), object(), object()
    X = SimpleNamespace(astype=Recorder(lambda dtype: copy))
    putmask = Recorder(lambda *args: "discarded")
    replace_in(monkeypatch, "np", putmask=putmask)
    assert numpy_putmask(X, bits, filling) is copy
    assert X.astype.calls == [((object,), {})]
    assert putmask.calls == [((copy, bits, filling), {})]


def test_numpy_refuses_a_mask_of_another_size():
    X = np.array([1, 2, 3])
    with pytest.raises(ValueError) as excinfo:
        numpy_putmask(X, mask(1, 0), 0)
    assert str(excinfo.value) == message_of(ValueError, np.putmask, of([1, 2, 3]), mask(1, 0), 0)
    assert "numpy_putmask" in names_in_traceback(excinfo)


def test_numpy_refuses_a_series():
    X = pd.Series([1, 2], dtype=object)
    with pytest.raises(TypeError) as excinfo:
        numpy_putmask(X, mask(1, 0), 0)
    assert str(excinfo.value) == message_of(TypeError, np.putmask, X, mask(1, 0), 0)


def test_a_list_has_no_type_to_change():
    with pytest.raises(AttributeError) as excinfo:
        numpy_putmask([1], [True], 0)
    assert str(excinfo.value) == "'list' object has no attribute 'astype'"


# --- numpy_replace_values ---------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, filling, values, expected",
    [
        (np.array([[1, 2], [3, 1]]), -1, [1], [[-1, 2], [3, -1]]),
        (np.array([[1, 1], [2, 2]]), 0, [[1], [2]], [[0, 1], [2, 0]]),
        (np.array([[1, 1], [2, 2]]), 0, [[1], [2], [3]], [[0, 1], [2, 0]]),
        (np.array([[1, 1], [2, 2]]), 0, [[], [2]], [[1, 1], [2, 0]]),
        (np.array([[1, 2], [3, 4]]), 0, [9], [[1, 2], [3, 4]]),
        (np.array([[1], [2]]), "x", [2], [[1], ["x"]]),
        (np.array([[1.0, NAN], [NAN, 2.0]]), "?", [NAN, 2], [[1.0, "?"], ["?", "?"]]),
        (np.array([["a", "?"], ["?", "b"]]), NAN, ["?"], [["a", NAN], [NAN, "b"]]),
        (of([["a", None], [1, NAN]]), 0, ["a", NAN], [[0, 0], [1, 0]]),
        (np.array([1, 2, 1]), "one", [1], ["one", 2, "one"]),
        (np.array([1, 2, 1]), 0, [[1], [2]], [0, 2, 0]),
        (objects("a", "?", None), "b", ["?"], ["a", "b", None]),
        (np.array([True, False]), None, [True], [None, False]),
        (np.empty((3, 0)), 0, [1], [[], [], []]),
    ],
)
def test_values_of_the_list_are_replaced(X, filling, values, expected, capsys):
    before = typed(X), typed(values)
    Y = numpy_replace_values(X, filling, values)
    assert typed(Y) == typed(of(expected))
    assert not np.shares_memory(X, Y)
    assert (typed(X), typed(values)) == before
    assert typed(numpy_replace_values(X, filling, values, False)) == typed(Y)
    assert capsys.readouterr().out == ""


@pytest.mark.parametrize(
    "X, values, expected",
    [
        (np.array([1, 2, 3]), [2], [0, 2, 0]),
        (np.array([[1, 2], [3, 2]]), [2], [[0, 2], [0, 2]]),
        (np.array([[1, 2], [3, 2]]), [[1], [3]], [[1, 0], [0, 0]]),
        (np.array([1.0, NAN]), [NAN], [0, NAN]),
        (objects("a", 1, None), ["a", None], ["a", 0, None]),
    ],
)
@pytest.mark.parametrize("flag", [True, 1, "yes"])
def test_inverted_all_other_values_are_replaced(X, values, expected, flag):
    assert typed(numpy_replace_values(X, 0, values, flag)) == typed(of(expected))
    assert typed(numpy_replace_values(X, 0, values, invert_flag=flag)) == typed(of(expected))


def test_replace_takes_keywords():
    Y = numpy_replace_values(
        reference_values_list=[1], filling_value=0, invert_flag=0, X=np.array([1, 2])
    )
    assert typed(Y) == typed(of([0, 2]))


@pytest.mark.parametrize("values", [None, [], (), "", 0, {}, False, np.array([])[:0].tolist()])
@pytest.mark.parametrize("X", [np.array([1]), np.array([[1]]), np.array([]), "no array", None])
@pytest.mark.parametrize("flag", [False, True])
def test_without_values_the_input_comes_back(X, values, flag):
    assert numpy_replace_values(X, "?", values, flag) is X


@pytest.mark.parametrize(
    "X, values, flag",
    [
        (np.array([1, 2]), [3], False),
        (np.array([1, 2]), [1, 2], True),
        (objects("a"), ["b"], False),
        (np.array([1.5]), [[2.5]], False),
    ],
)
def test_a_single_column_without_a_match_comes_back_itself(X, values, flag):
    before = typed(X)
    assert numpy_replace_values(X, "?", values, flag) is X
    assert typed(X) == before


def test_fortran_order_strides_and_read_only_input():
    X = np.asfortranarray(np.arange(12).reshape(3, 4))[:, ::2]
    X.setflags(write=False)
    assert typed(numpy_replace_values(X, -1, [2, 8])) == typed(of([[0, -1], [4, 6], [-1, 10]]))


# --- one list for all columns, or one for each ------------------------------------------------


def lists_searched(monkeypatch, X, values, answer):
    isin = record(monkeypatch, "numpy_isin", lambda column, values: answer)
    numpy_replace_values(X, 0, values)
    assert all(len(args) == 2 and not kwargs for args, kwargs in isin.calls)
    return [args[1] for args, _ in isin.calls]


class Sublist(list):
    pass


@pytest.mark.parametrize(
    "values, per_column",
    [
        ([[1], [2]], True),
        ([Sublist([1]), 5], True),
        (([1], (2,)), True),
        ({0: [1], 1: "x"}, True),
        ([(1,), [2]], False),
        ([1, [2]], False),
        ((1, 2), False),
        ("ab", False),
        ({0: 1, 1: [2]}, False),
        (np.array([5]), False),
    ],
)
def test_the_first_element_decides_whether_each_column_has_a_list(monkeypatch, values, per_column):
    X = np.array([[1, 2], [3, 4]])
    searched = lists_searched(monkeypatch, X, values, mask(0, 1))
    assert len(searched) == 2
    for j in 0, 1:
        assert searched[j] is (values[j] if per_column else values)


def test_a_single_column_has_the_first_list(monkeypatch):
    values = [[1], [2]]
    searched = lists_searched(monkeypatch, np.array([1, 2]), values, mask(0, 1))
    assert len(searched) == 1 and searched[0] is values[0]


def test_too_few_lists(monkeypatch):
    isin = record(monkeypatch, "numpy_isin")
    with pytest.raises(IndexError, match="^list index out of range$") as excinfo:
        numpy_replace_values(np.array([[1, 2], [3, 4]]), 0, [[1]])
    assert "numpy_replace_values" in names_in_traceback(excinfo)
    assert len(isin.calls) == 1


@pytest.mark.parametrize("values, error", [({1}, TypeError), (5, TypeError), ({1: 2}, KeyError)])
def test_the_first_element_must_be_there(values, error):
    with pytest.raises(error) as excinfo:
        numpy_replace_values(np.array([1]), 0, values)
    assert str(excinfo.value) == message_of(error, lambda: values[0])


def test_an_array_of_values_has_no_truth():
    values = np.array([1, 2])
    with pytest.raises(ValueError) as excinfo:
        numpy_replace_values(np.array([1]), 0, values)
    assert str(excinfo.value) == message_of(ValueError, bool, values)


# --- order and form of the calls --------------------------------------------------------------


class Grid:
    """Replaces the new array; records reads and writes."""

    def __init__(self, rows=9):
        self.asked = []
        self.rows = rows

    def __getitem__(self, index):
        self.asked.append(index)

    def __setitem__(self, index, value):
        self.asked.append((index, value))


class Columns:
    """A table whose column j is the text of j."""

    ndim = 2
    shape = (5, 2)

    def __getitem__(self, index):
        assert index[0] == slice(None)
        return "column {}".format(index[1])


class Mask:
    def __init__(self, name):
        self.name = name

    def __invert__(self):
        return Mask("~" + self.name)

    def __bool__(self):
        raise AssertionError("the truth of a mask is for numpy to tell")


@pytest.mark.parametrize("flag, name", [(False, "m"), (True, "~m")])
@pytest.mark.parametrize("found", [True, 1, "yes", False, 0, None])
def test_calls_for_two_dimensions(monkeypatch, flag, name, found):
    grid, values, filling = Grid(), ["v"], object()
    empty = Recorder(lambda shape, dtype: grid)
    any_ = Recorder(lambda bits: found)
    replace_in(monkeypatch, "np", empty=empty, any=any_)
    isin = record(monkeypatch, "numpy_isin", lambda column, values: Mask("m"))
    putmask = record(monkeypatch, "numpy_putmask", lambda *args: "put " + args[0])
    assert numpy_replace_values(Columns(), filling, values, flag) is grid
    assert empty.calls == [(((5, 2),), {"dtype": object})]
    assert isin.calls == [(("column 0", values), {}), (("column 1", values), {})]
    assert [args[0].name for args, _ in any_.calls] == [name, name]
    stored = "put column {}" if found else "column {}"
    assert grid.asked == [((slice(None), j), stored.format(j)) for j in (0, 1)]
    seen = [(args[0], args[1].name, args[2], kwargs) for args, kwargs in putmask.calls]
    assert seen == [("column {}".format(j), name, filling, {}) for j in (0, 1)] * bool(found)


@pytest.mark.parametrize("found", [True, False])
def test_calls_for_one_dimension(monkeypatch, found):
    grid, answer, values = Grid(), object(), ["v"]
    X = SimpleNamespace(ndim=1, shape=(5,))
    empty = Recorder(lambda shape, dtype: grid)
    replace_in(monkeypatch, "np", empty=empty, any=lambda bits: found)
    isin = record(monkeypatch, "numpy_isin", lambda column, values: Mask("m"))
    putmask = record(monkeypatch, "numpy_putmask", lambda *args: answer)
    assert numpy_replace_values(X, 0, values) is (answer if found else X)
    assert empty.calls == [(((5, 1),), {"dtype": object})]
    assert grid.asked == [0]
    assert isin.calls == [((X, values), {})]
    assert len(putmask.calls) == found


def test_the_mask_is_inverted_by_its_own_operator(monkeypatch):
    record(monkeypatch, "numpy_isin", lambda column, values: "no mask")
    with pytest.raises(TypeError) as excinfo:
        numpy_replace_values(np.array([1]), 0, [1], True)
    assert str(excinfo.value) == message_of(TypeError, lambda: ~"no mask")


# --- failures ---------------------------------------------------------------------------------


def test_an_empty_column_has_no_first_row(monkeypatch):
    isin = record(monkeypatch, "numpy_isin")
    with pytest.raises(IndexError) as excinfo:
        numpy_replace_values(np.array([]), 0, [1])
    assert str(excinfo.value) == "index 0 is out of bounds for axis 0 with size 0"
    assert names_in_traceback(excinfo)[-1] == "numpy_replace_values"
    assert isin.calls == []


def test_the_columns_of_a_matrix_without_rows_are_read(monkeypatch):
    record(monkeypatch, "numpy_isin", lambda column, values: np.zeros(len(column), dtype=bool))
    Y = numpy_replace_values(np.empty((0, 2)), 0, [1])
    assert typed(Y) == typed(np.empty((0, 2), dtype=object))


@pytest.mark.parametrize("X", [[1], "a", None])
def test_a_column_has_a_shape(X):
    with pytest.raises(AttributeError) as excinfo:
        numpy_replace_values(X, 0, [1])
    assert str(excinfo.value) == message_of(AttributeError, lambda: X.shape)


def test_a_failure_of_the_search_propagates():
    with pytest.raises(TypeError) as excinfo:
        numpy_replace_values(np.array([1]), 0, [1, []])
    names = names_in_traceback(excinfo)
    assert names.index("numpy_replace_values") < names.index("numpy_isin")


@pytest.mark.parametrize(
    "name, X",
    [
        ("np", np.array([1])),
        ("numpy_isin", np.array([1])),
        ("numpy_putmask", np.array([1])),
        ("numpy_putmask", np.array([[1]])),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, X):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        numpy_replace_values(X, 0, [1])
    assert str(excinfo.value) == "name '{}' is not defined".format(name)


@pytest.mark.parametrize(
    "text",
    [
        ":param X: Input matrix",
        ":param reference_values_list: reference list of lists of known values for each column. "
        "if it is a 1-dimensional list, then it is applicable to each column",
        ":param filling_value: special value assigned array entries that match the reference "
        "values",
        ":param invert_flag: If True replace the values NOT in the reference values list. "
        "Default False",
    ],
)
def test_the_documentation(text):
    assert text in " ".join(numpy_replace_values.__doc__.split())
