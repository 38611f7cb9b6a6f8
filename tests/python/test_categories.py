"""The category labels of selected columns; labels of text with white space are compressed."""

from __future__ import annotations

from collections import deque
from types import SimpleNamespace

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import compress_string, numpy_get_categories

NAN = np.nan
KINDS = [
    "missing", "date_str", "int_str", "float_str", "float_num", "float_int_num", "int_num",
    "boolean", "Unknown", "CHAR_STR", "",
]  # fmt: skip


def classified(monkeypatch, labels, misslist=(), dtype_str="char_str"):
    """Make the classifier return this for every column."""
    answer = (list(misslist), dtype_str, {"unique_values": labels})
    return record(monkeypatch, "numpy_whatis", lambda *args, **kwargs: answer)


@pytest.mark.parametrize(
    "X, indices, markers, expected",
    [
        (objects("b", "a", "b"), [0], ["z"], [["a", "b"]]),
        (objects("b", "a", "b"), [1], ["z"], []),
        (objects("b", "a", "b"), [], None, []),
        (objects("?", "b", "a"), [0], ["z"], [["?", "a", "b"]]),
        (objects("?", "b", "a"), [0], ["?"], [["a", "b"]]),
        (objects("new york", "rome"), [0], ["z"], [["newyork", "rome"]]),
        (np.array(["a b", "ab", "a-b"]), [0], ["?"], [["ab", "a-b", "ab"]]),
        (np.array([3, 1, 3]), [0], ["z"], [[1, 3]]),
        (np.array([0.5, -1.5]), [0], ["z"], [[-1.5, 0.5]]),
        (np.array([True, False]), [0], ["z"], [[False, True]]),
        (objects("2", "10"), [0], ["z"], [["10", "2"]]),
        (objects("1.5", "-2.5"), [0], ["z"], [["-2.5", "1.5"]]),
        (np.array([["a a"], ["b"]]), [0], ["z"], [["aa", "b"]]),
        (np.array([["x", "1"], ["y z", "2"]]), [0, 1], ["z"], [["x", "yz"], ["1", "2"]]),
        (np.array([["x", "1"], ["y z", "2"]]), [1, 0], ["z"], [["x", "yz"], ["1", "2"]]),
        (np.array([["x", "1"], ["y z", "2"]]), [1, 2, 7], ["z"], [["1", "2"]]),
        (np.array([["x", "1"], ["y z", "2"]]), [-1], ["z"], []),
        (np.empty((3, 0)), [0], ["z"], []),
    ],
)
def test_labels_of_the_selected_columns(X, indices, markers, expected, capsys):
    before = typed(X)
    assert typed(numpy_get_categories(X, indices, markers)) == typed(expected)
    earlier = ["earlier"]
    assert numpy_get_categories(X, indices, markers, earlier) is earlier
    assert typed(earlier) == typed(["earlier", *expected])
    assert typed(X) == before
    assert capsys.readouterr().out == ""


def test_without_a_list_each_call_makes_one():
    X = objects("a")
    first, second = numpy_get_categories(X, [], None), numpy_get_categories(X, [], None, None)
    assert first == second == []
    assert first is not second
    assert type(first) is list


def test_an_empty_list_is_filled():
    mine = []
    assert numpy_get_categories(objects("a"), [0], ["z"], mine) is mine
    assert mine == [["a"]]


def test_arguments_may_be_keywords():
    result = numpy_get_categories(
        categories_list2=[], missing_values_list=["?"], cat_indices=[0], X=objects("?", "a")
    )
    assert result == [["a"]]


@pytest.mark.parametrize("make", [deque, type("Labels", (list,), {})])
def test_anything_with_an_append_collects(make):
    mine = make()
    assert numpy_get_categories(objects("a"), [0], ["z"], mine) is mine
    assert list(mine) == [["a"]]


def test_append_of_a_subclass_is_called():
    class Labels(list):
        def append(self, entry):
            super().append(("mine", entry))

    assert numpy_get_categories(objects("a"), [0], ["z"], Labels()) == [("mine", ["a"])]


def test_what_cannot_append_fails_at_the_first_column():
    assert numpy_get_categories(objects("a"), [], None, ()) == ()
    with pytest.raises(AttributeError) as excinfo:
        numpy_get_categories(objects("a"), [0], ["z"], ())
    assert str(excinfo.value) == message_of(AttributeError, lambda: ().append)


# --- columns ----------------------------------------------------------------------------------


class Table:
    """A table whose column j is a text of j; records what is read."""

    ndim = 2

    def __init__(self, width):
        self.shape = (9, width)
        self.asked = []

    def __getitem__(self, index):
        self.asked.append(index)
        return "column {}".format(index[1])


class Indices:
    """A container with `__contains__` only."""

    def __init__(self, *indices):
        self.indices = indices
        self.asked = []

    def __contains__(self, index):
        self.asked.append(index)
        return index in self.indices


def test_each_column_is_looked_for_and_cut_out_if_found(monkeypatch):
    whatis = classified(monkeypatch, np.array([1]), dtype_str="int_num")
    X, indices, markers = Table(4), Indices(3, 1, 9), ["?"]
    assert numpy_get_categories(X, indices, markers) == [[1], [1]]
    assert indices.asked == [0, 1, 2, 3]
    assert all(type(index) is int for index in indices.asked)
    assert X.asked == [(slice(None), 1), (slice(None), 3)]
    flag = {"return_stats_flag": True}
    assert whatis.calls == [(("column 1", markers), flag), (("column 3", markers), flag)]
    assert all(args[1] is markers for args, _ in whatis.calls)


@pytest.mark.parametrize("shape", [(3,), (3, 1)])
def test_a_single_column_is_handed_on_itself(monkeypatch, shape):
    whatis = classified(monkeypatch, np.array([1]), dtype_str="int_num")
    X = np.zeros(shape)
    numpy_get_categories(X, [0], None)
    args, kwargs = whatis.only_call()
    assert args[0] is X and args[1] is None
    assert kwargs == {"return_stats_flag": True}


@pytest.mark.parametrize("ndim", [1, 1.0, True])
def test_one_dimension_has_no_width(monkeypatch, ndim):
    whatis = classified(monkeypatch, np.array([1]), dtype_str="int_num")
    X = SimpleNamespace(ndim=ndim)
    assert numpy_get_categories(X, range(5), None) == [[1]]
    assert whatis.only_call()[0][0] is X


@pytest.mark.parametrize("indices", [{1}, (1,), {1: "x"}, range(1, 2), frozenset([1]), [1.0]])
def test_any_container_selects(indices):
    assert numpy_get_categories(np.array([[1, 2], [1, 3]]), indices, ["z"]) == [[2, 3]]


def test_indices_that_cannot_be_searched():
    with pytest.raises(TypeError) as excinfo:
        numpy_get_categories(objects("a"), 0, None)
    assert str(excinfo.value) == message_of(TypeError, lambda: 0 in 0)


# --- labels -----------------------------------------------------------------------------------


@pytest.mark.parametrize("kind", KINDS)
def test_only_text_is_compressed(monkeypatch, kind):
    classified(monkeypatch, objects("a b", "?"), ["?"], kind)
    compress, isnull = record(monkeypatch, "compress_string"), Recorder(lambda label: False)
    replace_in(monkeypatch, "pd", isnull=isnull)
    assert numpy_get_categories(objects("x"), [0], None) == [["a b", "?"]]
    assert compress.calls == isnull.calls == []


def test_labels_that_are_no_words_are_compressed_in_order(monkeypatch):
    labels = objects("a b", "?", "ab", None, NAN, "-", "c,d", "", "3")
    classified(monkeypatch, labels, ["?", "z"])
    compress = record(monkeypatch, "compress_string", lambda label: "<" + label + ">")
    assert typed(numpy_get_categories(objects("x"), [0], None)) == typed(
        [["<a b>", "?", "ab", None, NAN, "<->", "<c,d>", "<>", "3"]]
    )
    assert compress.calls == [((label,), {}) for label in ("a b", "-", "c,d", "")]
    assert labels[0] == "<a b>"


def test_a_question_mark_that_is_no_marker_is_compressed(monkeypatch):
    compress = record(monkeypatch, "compress_string")
    assert numpy_get_categories(objects("a", "b", "?"), [0], ["-"]) == [["?", "a", "b"]]
    assert compress.calls == [(("?",), {})]
    assert compress_string("?") == "?"


def test_fixed_width_labels_keep_their_width(monkeypatch):
    classified(monkeypatch, np.array(["a b", "c"]))
    record(monkeypatch, "compress_string", lambda label: "longer than three")
    assert numpy_get_categories(objects("x"), [0], None) == [["lon", "c"]]


class Label(str):
    """A label that records its tests in a log shared by all labels."""

    log = []

    def __new__(cls, text, null=False):
        label = super().__new__(cls, text)
        label.null = null
        return label

    def isalnum(self):
        self.log.append(("isalnum", str(self)))
        return super().isalnum()


class Markers(list):
    def __contains__(self, label):
        Label.log.append(("in", str(label)))
        return super().__contains__(label)


def test_the_tests_of_a_label_stop_at_the_first_that_decides(monkeypatch):
    def isnull(label):
        Label.log.append(("isnull", str(label)))
        return label.null

    def compress(label):
        Label.log.append(("compress", str(label)))
        return str(label).upper()

    monkeypatch.setattr(Label, "log", [])
    labels = objects(Label("n n", null=True), Label("?"), Label("ab"), Label("c d"))
    answer = (Markers(["?"]), "char_str", {"unique_values": labels})
    record(monkeypatch, "numpy_whatis", lambda *args, **kwargs: answer)
    record(monkeypatch, "compress_string", compress)
    replace_in(monkeypatch, "pd", isnull=isnull)
    assert numpy_get_categories(objects("x"), [0], None) == [["n n", "?", "ab", "C D"]]
    assert Label.log == [
        ("isnull", "n n"),
        ("isnull", "?"), ("in", "?"),
        ("isnull", "ab"), ("in", "ab"), ("isalnum", "ab"),
        ("isnull", "c d"), ("in", "c d"), ("isalnum", "c d"), ("compress", "c d"),
    ]  # fmt: skip


def test_the_entry_is_what_tolist_gives(monkeypatch):
    entry = object()
    classified(monkeypatch, SimpleNamespace(tolist=lambda: entry), dtype_str="int_num")
    assert numpy_get_categories(objects("x"), [0], None)[0] is entry


# --- failures ---------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 3, got 0)"),
        (([], "int_num"), "not enough values to unpack (expected 3, got 2)"),
        ([[], "int_num"], "not enough values to unpack (expected 3, got 2)"),
        (iter(["x"]), "not enough values to unpack (expected 3, got 1)"),
        (([], "int_num", {}, 0), "too many values to unpack (expected 3)"),
        (iter("abcd"), "too many values to unpack (expected 3)"),
    ],
)
def test_the_classifier_must_give_three_results(monkeypatch, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args, **kwargs: answer)
    with pytest.raises(ValueError) as excinfo:
        numpy_get_categories(objects("x"), [0], None)
    assert str(excinfo.value) == words
    assert "numpy_get_categories" in names_in_traceback(excinfo)


@pytest.mark.parametrize("markers", [None, []])
def test_the_statistics_of_the_classifier_need_a_reference_list(markers):
    mine = []
    with pytest.raises(UnboundLocalError) as excinfo:
        numpy_get_categories(objects("a"), [0], markers, mine)
    assert "cum_missing_mask_arr" in str(excinfo.value)
    names = names_in_traceback(excinfo)
    assert names.index("numpy_get_categories") < names.index("numpy_whatis")
    assert mine == []


def test_the_statistics_must_hold_the_values(monkeypatch):
    record(monkeypatch, "numpy_whatis", lambda *args, **kwargs: ([], "int_num", {}))
    with pytest.raises(KeyError, match="unique_values"):
        numpy_get_categories(objects("x"), [0], None)


def test_text_without_a_test_for_words(monkeypatch):
    classified(monkeypatch, objects("a", 5))
    with pytest.raises(AttributeError) as excinfo:
        numpy_get_categories(objects("x"), [0], None)
    assert str(excinfo.value) == "'int' object has no attribute 'isalnum'"


def test_columns_before_a_failure_stay_listed(monkeypatch):
    failure = RuntimeError("compress")

    def compress(label):
        raise failure

    record(monkeypatch, "compress_string", compress)
    mine = []
    with pytest.raises(RuntimeError) as excinfo:
        numpy_get_categories(np.array([["a", "b c"], ["d", "e"]]), [0, 1], ["z"], mine)
    assert excinfo.value is failure
    assert mine == [["a", "d"]]


@pytest.mark.parametrize("X", [["a"], None])
def test_a_table_has_a_number_of_dimensions(X):
    with pytest.raises(AttributeError) as excinfo:
        numpy_get_categories(X, [0], None)
    assert str(excinfo.value) == message_of(AttributeError, lambda: X.ndim)


def test_names_are_looked_up_only_when_needed(monkeypatch):
    for name in ("compress_string", "pd"):
        monkeypatch.delattr(exportable_utils, name)
    classified(monkeypatch, np.array([1]), dtype_str="int_num")
    assert numpy_get_categories(objects(1), [0], None) == [[1]]
    monkeypatch.delattr(exportable_utils, "numpy_whatis")
    assert numpy_get_categories(objects(1), [], None) == []
