"""Column selection, permutation, flattening: results, identity with the input, warnings."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, records_of, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import (
    numpy_flatten_column,
    numpy_permute_array,
    numpy_remove_second_dim,
    numpy_select_columns,
)

ONE_COLUMN = (
    "numpy_select_columns(): Input array has only one column. No column selection will occur."
)


def table():
    return np.arange(6).reshape(2, 3)


# --- numpy_select_columns ---------------------------------------------------------------------


@pytest.mark.parametrize(
    "columns", [None, [], (0, 1), (), "01", 0, 1, True, np.array([0, 1]), {0}, range(2)]
)
@pytest.mark.parametrize("X", [table(), np.arange(3), ["a"], ["a", "b"], "no array at all"])
def test_only_a_list_with_elements_selects(X, columns, caplog):
    result = numpy_select_columns(X, columns)
    assert type(result) is tuple and len(result) == 2
    assert result[0] is X
    assert result[1] is False
    assert caplog.records == []


@pytest.mark.parametrize(
    "columns, expected",
    [
        ([2, 0], [[2, 0], [5, 3]]),
        ([1], [[1], [4]]),
        ([1, 1, 0], [[1, 1, 0], [4, 4, 3]]),
        ([-1], [[2], [5]]),
        ([-3, 2], [[0, 2], [3, 5]]),
        ([np.int64(2)], [[2], [5]]),
    ],
)
def test_columns_come_in_the_order_given(columns, expected, caplog):
    X = table()
    Y, selected = numpy_select_columns(X, columns)
    assert selected is True
    assert typed(Y) == typed(np.array(expected))
    assert not np.shares_memory(X, Y)
    assert typed(X) == typed(table())
    assert caplog.records == []


def test_arguments_may_be_keywords():
    Y, selected = numpy_select_columns(columns_indices_list=[0], X=table())
    assert selected is True
    assert Y.tolist() == [[0], [3]]


def test_a_subclass_of_list_is_a_list():
    class Columns(list):
        pass

    assert numpy_select_columns(table(), Columns([2]))[0].tolist() == [[2], [5]]
    Y, selected = numpy_select_columns(Columns(["a", "b"]), [1])
    assert (type(Y), Y, selected) == (list, ["b"], True)


@pytest.mark.parametrize(
    "X, columns, expected",
    [
        (["a", "b", "c"], [2, 0], [np.str_("c"), np.str_("a")]),
        ([1.5, 2.5], [-1, 0, 0], [np.float64(2.5), np.float64(1.5), np.float64(1.5)]),
        ([[1, 2], [3, 4]], [1], [np.array([3, 4])]),
    ],
)
def test_a_list_is_selected_along_its_first_axis(X, columns, expected, caplog):
    Y, selected = numpy_select_columns(X, columns)
    assert selected is True
    assert typed(Y) == typed(expected)
    assert caplog.records == []


@pytest.mark.parametrize("columns", [[0], [0, 1], [7], [-1]])
def test_a_list_of_one_is_one_column(columns, caplog):
    X = ["a"]
    Y, selected = numpy_select_columns(X, columns)
    assert Y is X
    assert selected is False
    assert records_of(caplog) == [("root", "WARNING", ONE_COLUMN, ())]


def test_an_array_like_with_one_dimension_and_two_lengths_is_one_column(monkeypatch):
    class OneColumn:
        ndim = 1
        shape = (4, 3)

    logger = replace_in(monkeypatch, "logger", warning=Recorder(lambda text: None))
    X = OneColumn()
    Y, selected = numpy_select_columns(X, [0])
    assert Y is X and selected is False
    assert logger.warning.calls == [((ONE_COLUMN,), {})]


def test_an_array_of_one_dimension_has_no_second_length(caplog):
    with pytest.raises(IndexError, match="^tuple index out of range$") as excinfo:
        numpy_select_columns(np.arange(3), [0])
    assert "numpy_select_columns" in names_in_traceback(excinfo)
    assert caplog.records == []


@pytest.mark.parametrize("columns", [[3], [0, 5], [-4]])
def test_numpy_refuses_an_index_out_of_range(columns, caplog):
    words = message_of(IndexError, lambda: table()[:, columns])
    with pytest.raises(IndexError) as excinfo:
        numpy_select_columns(table(), columns)
    assert str(excinfo.value) == words
    assert caplog.records == []


def test_an_empty_list_has_no_column_to_select():
    with pytest.raises(IndexError):
        numpy_select_columns([], [0])


class Index(int):
    """An index that records its comparisons."""

    below = False
    beyond = False

    def __new__(cls, value, below, beyond):
        index = super().__new__(cls, value)
        index.below, index.beyond, index.asked = below, beyond, []
        return index

    def __lt__(self, other):
        self.asked.append(("<", other))
        return self.below

    def __ge__(self, other):
        self.asked.append((">=", other))
        return self.beyond


@pytest.mark.parametrize("X, width", [(table(), 3), (["a", "b"], 2)])
@pytest.mark.parametrize("below, beyond", [(False, False), (False, True), (True, False)])
def test_both_range_conditions_are_needed(X, width, below, beyond):
    index = Index(1, below, beyond)
    _, selected = numpy_select_columns(X, [index])
    assert selected is True
    assert index.asked == [("<", 0), (">=", width)][: 1 + below]


@pytest.mark.parametrize("position", [0, 1])
def test_the_range_warning_fails_while_it_is_built(position, caplog):
    columns = [0, 0]
    columns[position] = Index(0, True, True)
    with pytest.raises(TypeError) as excinfo:
        numpy_select_columns(table(), columns)
    assert str(excinfo.value) == message_of(TypeError, lambda: "text" + position)
    assert "numpy_select_columns" in names_in_traceback(excinfo)
    assert caplog.records == []


def test_np_array_converts_a_list(monkeypatch):
    replace_in(monkeypatch, "np", array=lambda X: np.array(X[::-1]))
    assert numpy_select_columns(["a", "b"], [0]) == (["b"], True)


# --- numpy_flatten_column ---------------------------------------------------------------------


@pytest.mark.parametrize("flags", [(), (True,), (False,)])
@pytest.mark.parametrize(
    "X, expected",
    [
        ([np.array([1]), np.array([2])], np.array([1, 2])),
        (np.array([[1.5], [2.5], [3.5]]), np.array([1.5, 2.5, 3.5])),
        (np.array([["a"], ["?"]]), np.array(["a", "?"])),
        (np.array([["a"], [None]], dtype=object), objects("a", None)),
        (objects(np.array([1]), np.array([2, 3])), np.array([1, 2, 3])),
        (np.arange(4).reshape(2, 1, 2), np.arange(4)),
        ((np.array([[7, 8]]), np.array([[9, 1]])), np.array([7, 8, 9, 1])),
    ],
)
def test_rows_of_length_one_are_flattened(X, expected, flags):
    Y = numpy_flatten_column(X, *flags)
    assert Y is not X
    assert typed(Y) == typed(expected)


@pytest.mark.parametrize(
    "X",
    [
        np.array([1, 2]),
        np.array([[1, 2], [3, 4]]),
        np.empty((2, 0)),
        np.array(["a"], dtype=object),
        objects("a", np.array([1])),
        objects(np.array([1, 2]), np.array([1])),
        [1, 2],
        [[1], [2]],
        "text",
        pd.Series([1, 2]),
    ],
)
@pytest.mark.parametrize("flag", [True, False])
def test_everything_else_is_returned_itself(X, flag):
    assert numpy_flatten_column(X, remove_second_dim=flag) is X


def test_the_second_dimension_is_removed_by_the_routine_of_the_module(monkeypatch):
    answer = object()
    remove = record(monkeypatch, "numpy_remove_second_dim", lambda Y: answer)
    X = np.array([[1], [2]])
    assert numpy_flatten_column(X) is answer
    assert numpy_flatten_column(X, 1) is answer
    assert [(typed(args), kwargs) for args, kwargs in remove.calls] == [
        (typed((np.array([1, 2]),)), {})
    ] * 2


@pytest.mark.parametrize("flag", [False, 0, None, ""])
def test_a_false_flag_leaves_the_second_dimension_alone(monkeypatch, flag):
    remove = record(monkeypatch, "numpy_remove_second_dim")
    assert typed(numpy_flatten_column(np.array([[1], [2]]), flag)) == typed(np.array([1, 2]))
    assert remove.calls == []


@pytest.mark.parametrize(
    "cells, asked",
    [([1, 2], [0]), ([np.array([1, 2])], [0, 0]), ([np.array([1])], [0, 0])],
)
def test_the_first_element_is_read_for_the_test_and_again_for_its_shape(monkeypatch, cells, asked):
    class Cells:
        def __init__(self):
            self.asked = []

        def __getitem__(self, row):
            self.asked.append(row)
            return cells[row]

    replace_in(monkeypatch, "np", concatenate=lambda X: np.array([1]))
    X = Cells()
    numpy_flatten_column(X)
    assert X.asked == asked


@pytest.mark.parametrize("X", [np.array([]), [], np.empty((0, 1)), ""])
def test_an_empty_column_has_no_first_element(X):
    with pytest.raises(IndexError) as excinfo:
        numpy_flatten_column(X)
    assert str(excinfo.value) == message_of(IndexError, lambda: X[0])
    assert "numpy_flatten_column" in names_in_traceback(excinfo)


def test_a_first_element_without_dimensions_has_no_length():
    with pytest.raises(IndexError, match="^tuple index out of range$"):
        numpy_flatten_column(objects(np.array(5)))


def test_numpy_refuses_a_ragged_column():
    X = [np.array([1]), np.array([[2]])]
    with pytest.raises(ValueError) as excinfo:
        numpy_flatten_column(X)
    assert str(excinfo.value) == message_of(ValueError, np.concatenate, X)


# --- numpy_remove_second_dim ------------------------------------------------------------------


@pytest.mark.parametrize(
    "shape, flattened",
    [((4, 1), (4,)), ((1, 1), (1,)), ((0, 1), (0,)), ((2, 1, 3), (6,)), ((2, 1, 0), (0,))],
)
def test_a_second_dimension_of_one_is_removed(shape, flattened):
    X = np.arange(np.prod(shape)).reshape(shape)
    Y = numpy_remove_second_dim(X)
    assert Y.shape == flattened
    assert Y.tolist() == X.ravel().tolist()
    assert Y.base is X.base


@pytest.mark.parametrize("shape", [(), (1,), (4,), (4, 2), (1, 4), (0, 0), (1, 2, 1)])
def test_any_other_shape_is_returned_itself(shape):
    X = np.zeros(shape)
    assert numpy_remove_second_dim(X) is X


def test_a_frame_cannot_be_reshaped():
    frame = pd.DataFrame({"a": [1, 2]})
    with pytest.raises(AttributeError) as excinfo:
        numpy_remove_second_dim(frame)
    assert str(excinfo.value) == message_of(AttributeError, lambda: frame.reshape)


@pytest.mark.parametrize("args, given", [((), 0), ((np.zeros(1), 1), 2)])
def test_exactly_one_argument(args, given):
    with pytest.raises(TypeError) as excinfo:
        numpy_remove_second_dim(*args)
    assert str(excinfo.value) == (
        "numpy_remove_second_dim() takes exactly one argument ({} given)".format(given)
    )


def test_no_keyword():
    with pytest.raises(TypeError) as excinfo:
        numpy_remove_second_dim(X=np.zeros(1))
    assert str(excinfo.value) == "numpy_remove_second_dim() takes no keyword arguments"


# --- numpy_permute_array ----------------------------------------------------------------------


@pytest.mark.parametrize(
    "args, expected",
    [
        (([2, 0, 1],), [[1, 2, 0], [4, 5, 3]]),
        (([2, 0, 1], None), [[1, 2, 0], [4, 5, 3]]),
        (([2, 0, 1], 0), [[1, 2, 0], [4, 5, 3]]),
        (([2, 0, 1], False), [[1, 2, 0], [4, 5, 3]]),
        (((0, 2, 1), 0.0), [[0, 2, 1], [3, 5, 4]]),
        (([30, 10, 20], 0), [[1, 2, 0], [4, 5, 3]]),
        (([1, 0], 0), [[1, 0], [4, 3]]),
        (([1, 0], 1), [[3, 4, 5], [0, 1, 2]]),
        (([1, 0], True), [[3, 4, 5], [0, 1, 2]]),
        ((), [[0, 1, 2], [3, 4, 5]]),
        ((None, 1), [[0, 1, 2], [3, 4, 5]]),
        (([], 0), [[0, 1, 2], [3, 4, 5]]),
        (((), 1), [[0, 1, 2], [3, 4, 5]]),
        (([1, 0], 5), [[0, 1, 2], [3, 4, 5]]),
        (([1, 0], -1), [[0, 1, 2], [3, 4, 5]]),
        (([1, 0], "rows"), [[0, 1, 2], [3, 4, 5]]),
    ],
)
def test_the_inverse_permutation_is_applied_to_a_copy(args, expected, caplog, capsys):
    X = table()
    Y = numpy_permute_array(X, *args)
    assert typed(Y) == typed(np.array(expected))
    assert not np.shares_memory(X, Y)
    assert typed(X) == typed(table())
    assert caplog.records == []
    assert capsys.readouterr().out == ""


def test_the_inverse_permutation_of_rows():
    Y = numpy_permute_array(np.array([["a"], ["b"], ["c"]]), [2, 0, 1], 1)
    assert Y.tolist() == [["b"], ["c"], ["a"]]


def test_permutation_arguments_may_be_keywords():
    Y = numpy_permute_array(axis=1, permutation_indices=[1, 0], X=table())
    assert Y.tolist() == [[3, 4, 5], [0, 1, 2]]


def test_np_argsort_gives_the_order(monkeypatch):
    argsort = Recorder(lambda indices: [0, 0])
    replace_in(monkeypatch, "np", argsort=argsort)
    indices = [1, 0]
    assert numpy_permute_array(table(), indices).tolist() == [[0, 0], [3, 3]]
    assert argsort.calls == [((indices,), {})]
    assert argsort.calls[0][0][0] is indices


@pytest.mark.parametrize("axis", [0, 1, None])
def test_one_dimension_cannot_be_permuted(axis):
    with pytest.raises(IndexError):
        numpy_permute_array(np.arange(3), [2, 0, 1], axis)


def test_one_dimension_is_copied_where_nothing_is_permuted():
    X = np.arange(3)
    for args in ([], 0), ([2, 0, 1], 2):
        Y = numpy_permute_array(X, *args)
        assert Y is not X
        assert Y.tolist() == [0, 1, 2]


def test_an_array_of_indices_has_no_truth_value():
    indices = np.array([1, 0])
    with pytest.raises(ValueError) as excinfo:
        numpy_permute_array(table(), indices)
    assert str(excinfo.value) == message_of(ValueError, bool, indices)


@pytest.mark.parametrize(
    "text",
    [
        "Performs a permultation on rows or columns of an nparray based on a list of permuted "
        "indices.",
        ":param permutation_indices: the list of permutation indices. "
        "If empty no permutation is performed. Default empty.",
        ":param axis: if 0 permute columns, if 1 permute columns. Default value is 0",
    ],
)
def test_the_documentation_of_numpy_permute_array(text):
    assert text in " ".join(numpy_permute_array.__doc__.split())


# --- names of the module ----------------------------------------------------------------------


@pytest.mark.parametrize(
    "name, call",
    [
        ("np", lambda: numpy_select_columns(["a", "b"], [0])),
        ("logger", lambda: numpy_select_columns(["a"], [0])),
        ("np", lambda: numpy_flatten_column(np.zeros((2, 1)))),
        ("numpy_remove_second_dim", lambda: numpy_flatten_column(np.zeros((2, 1)))),
        ("np", lambda: numpy_permute_array(np.zeros((2, 2)), [1, 0])),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, call):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        call()
    assert str(excinfo.value) == "name '{}' is not defined".format(name)
