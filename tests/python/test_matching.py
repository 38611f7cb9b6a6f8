"""Matching a column with reference values: set membership, null cells, texts under debug."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import Recorder, record, replace_in, set_clock
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import indicator_mask, numpy_isin

NAN = float("nan")
DEFAULT = exportable_utils.global_missing_values_reference_list


# --- indicator_mask ---------------------------------------------------------------------------


@pytest.mark.parametrize(
    "reference_set, cells, expected",
    [
        ({"?", ""}, objects("a", "?", ""), mask(0, 1, 1)),
        ({"?"}, np.array(["a", "?"]), mask(0, 1)),
        ({"?"}, ["a", "?"], mask(0, 1)),
        (set(), objects("a", None), mask(0, 0)),
        (frozenset({1}), np.array([1, 2]), mask(1, 0)),
        ({1}, objects(1, 1.0, True, "1", 1 + 0j, np.int8(1)), mask(1, 1, 1, 0, 1, 1)),
        ({True}, np.array([0, 1, 2]), mask(0, 1, 0)),
        ({1.0}, np.array([True, False]), mask(1, 0)),
        ({"1"}, objects(1, 1.0, True, "1", b"1"), mask(0, 0, 0, 1, 0)),
        ({None}, objects(None, "None", NAN), mask(1, 0, 0)),
        ({NAN}, objects(NAN, float("nan"), np.nan), mask(1, 0, 0)),
        ({np.nan}, np.array([np.nan, 1.0]), mask(0, 0)),
        ({"a"}, np.array([["a"], ["b"]]), mask(1, 0).reshape(2, 1)),
        ({2}, np.array([[1, 2], [2, 3]]), mask(0, 1, 1, 0).reshape(2, 2)),
        ({2}, np.array([]), mask()),
        ({2}, np.empty((0, 3)), mask().reshape(0, 3)),
        ({2}, 2, mask(1).reshape(())),
        ({frozenset({1})}, objects({1}, frozenset({1}), {2}), mask(1, 1, 0)),
        (["a", 1], objects("a", 1.0, "b"), mask(1, 1, 0)),
        ("abc", objects("ab", "ac"), mask(1, 0)),
    ],
)
def test_membership_is_that_of_the_set(reference_set, cells, expected):
    assert typed(indicator_mask(reference_set, cells)) == typed(expected)


def test_indicator_mask_takes_keywords():
    assert indicator_mask(l=[1, 2], reference_set={2}).tolist() == [False, True]


@pytest.mark.parametrize("cell", [[1], {}, np.array([1, 2])])
def test_a_cell_that_cannot_be_hashed_is_refused(cell):
    with pytest.raises(TypeError) as excinfo:
        indicator_mask({1}, objects("a", cell))
    assert str(excinfo.value) == message_of(TypeError, lambda: cell in {1})
    assert "indicator_mask" in names_in_traceback(excinfo)


def test_an_error_of_a_cell_propagates():
    class Odd:
        def __hash__(self):
            return hash("?")

        def __eq__(self, other):
            raise RuntimeError("odd")

    with pytest.raises(RuntimeError, match="^odd$"):
        indicator_mask({"?"}, objects(Odd()))


def test_vectorize_gets_a_test_of_one_argument_over_the_very_set(monkeypatch):
    answer = object()
    is_in_reference = Recorder(lambda cells: answer)
    vectorize = Recorder(lambda test, otypes: is_in_reference)
    replace_in(monkeypatch, "np", vectorize=vectorize)
    reference_set, cells = {"?"}, object()

    assert indicator_mask(reference_set, cells) is answer

    (test,), keywords = vectorize.only_call()
    assert keywords == {"otypes": [bool]}
    assert is_in_reference.calls == [((cells,), {})]
    assert (test("?"), test("a")) == (True, False)
    reference_set.add("a")
    assert test("a") is True
    with pytest.raises(TypeError):
        test("?", "a")


# --- numpy_isin -------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, reference, expected",
    [
        # No null among the references: only membership.
        (objects("a", "?", "b"), ["?", ""], mask(0, 1, 0)),
        (np.array(["a", "?", "b"]), ["?", ""], mask(0, 1, 0)),
        (objects("a", None, NAN), ["?", ""], mask(0, 0, 0)),
        (np.array([1.0, np.nan]), [1], mask(1, 0)),
        (np.array([0, 1, 2]), [True], mask(0, 1, 0)),
        (np.array([True, False]), [0.0], mask(0, 1)),
        (objects(1, "1"), ["1"], mask(0, 1)),
        (objects(1, "1"), [1, "?"], mask(1, 0)),
        (objects("a", "?"), [], mask(0, 0)),
        (objects("a", "?"), ("?", "b"), mask(0, 1)),
        # Only nulls: null cells, no membership.
        (np.array([1.0, np.nan, 3.0]), [np.nan], mask(0, 1, 0)),
        (objects("a", None, NAN, pd.NaT, "nan"), [np.nan], mask(0, 1, 1, 1, 0)),
        (objects("a", None, NAN), [None, float("nan"), pd.NaT], mask(0, 1, 1)),
        (np.array([1, 2]), [None], mask(0, 0)),
        (np.array(["nan", "NaT"]), [np.nan], mask(0, 0)),
        (np.array(["2020-01-01", "NaT"], dtype="M8[ns]"), [np.nan], mask(0, 1)),
        # Nulls and other values.
        (objects(None, "?", "x"), DEFAULT, mask(1, 1, 0)),
        (objects(NAN, "-", "", "--"), DEFAULT, mask(1, 1, 1, 0)),
        (np.array([1.0, np.nan]), DEFAULT, mask(0, 1)),
        (np.array(["?", "nan"]), DEFAULT, mask(1, 0)),
        (np.array([1.0, np.nan, 3.0]), [3, np.nan], mask(0, 1, 1)),
        (objects(True, 1, "1"), [1, None], mask(1, 1, 0)),
        (objects("a", None, "b"), [pd.NaT, "a"], mask(1, 1, 0)),
        # A mixed list is converted to one dtype: with a text in it, the number 1 becomes a text.
        (objects(1, "1", "?"), [1, "?", np.nan], mask(0, 1, 1)),
        (objects(1, "1", "?"), [1, "?", None], mask(1, 0, 1)),
        (objects(1.0, "1.0", "True"), [True, np.nan], mask(1, 0, 0)),
        # One column in two dimensions.
        (np.array([["a"], ["?"]]), ["?"], mask(0, 1)),
        (np.array([[1.0], [np.nan]]), [np.nan], mask(0, 1)),
        (np.array([["a"], [None], ["?"]], dtype=object), DEFAULT, mask(0, 1, 1)),
        # More columns keep their shape.
        (np.array([["a", "?"], ["-", "b"]]), ["?"], mask(0, 1, 0, 0).reshape(2, 2)),
        (np.array([[1.0, np.nan]] * 2), [1, np.nan], mask(1, 1, 1, 1).reshape(2, 2)),
    ],
)
def test_which_cells_equal_a_reference_value(X, reference, expected):
    before = typed(X), typed(reference)
    assert typed(numpy_isin(X, reference)) == typed(expected)
    assert (typed(X), typed(reference)) == before


@pytest.mark.parametrize("dtype", [object, "string", None])
def test_a_series_of_text(dtype):
    X = pd.Series(["a", "?", ""], dtype=dtype)
    assert list(numpy_isin(X, ["?"])) == [False, True, False]
    assert list(numpy_isin(X, DEFAULT)) == [False, True, True]
    assert list(numpy_isin(X, [np.nan])) == [False, False, False]


def test_any_nan_is_null():
    # NaN objects are not equal, so membership finds none of these cells.
    assert numpy_isin(objects(float("nan"), np.float32("nan")), [np.nan]).tolist() == [True, True]


def test_numpy_isin_takes_keywords():
    result = numpy_isin(debug=False, values_reference_list=["?"], X=objects("?"))
    assert result.tolist() == [True]


@pytest.mark.parametrize("reference", [[["a"]], [{}], [np.nan, {}], [set(), None]])
def test_reference_values_must_be_hashable(reference):
    culprit = [value for value in reference if isinstance(value, (list, dict, set))][0]
    with pytest.raises(TypeError) as excinfo:
        numpy_isin(objects("a"), reference)
    assert str(excinfo.value) == message_of(TypeError, set, [culprit])
    assert "numpy_isin" in names_in_traceback(excinfo)


def test_an_empty_column_is_refused_by_the_flattening():
    with pytest.raises(IndexError) as excinfo:
        numpy_isin(np.array([]), ["?"])
    names = names_in_traceback(excinfo)
    assert names.index("numpy_isin") < names.index("numpy_flatten_column")


# --- what it calls ----------------------------------------------------------------------------


def test_the_column_alone_is_given_to_the_flattening(monkeypatch):
    X = objects("?", "a")
    flatten = record(monkeypatch, "numpy_flatten_column", lambda X: objects("b", "?", "?"))
    assert typed(numpy_isin(X, ["?"])) == typed(mask(0, 1, 1))
    assert typed(numpy_isin(X, [np.nan])) == typed(mask(0, 0, 0))
    assert [(len(args), args[0] is X, kwargs) for args, kwargs in flatten.calls] == [
        (1, True, {})
    ] * 2


def test_nulls_are_those_of_pandas(monkeypatch):
    column, reference = objects("a", "b", "c"), ["x", "c"]
    isnull = Recorder(lambda values: mask(1, 0) if values is reference else mask(0, 1, 0))
    replace_in(monkeypatch, "pd", isnull=isnull)
    assert numpy_isin(column, reference).tolist() == [False, True, True]
    assert [(len(args), kwargs) for args, kwargs in isnull.calls] == [(1, {}), (1, {})]
    assert isnull.calls[0][0][0] is reference
    assert isnull.calls[1][0][0] is column


def test_np_any_and_np_asarray_are_called(monkeypatch):
    replace_in(monkeypatch, "np", any=lambda nulls: True, asarray=lambda values: objects("b"))
    assert numpy_isin(objects("a", "b"), ["a"]).tolist() == [False, True]


@pytest.mark.parametrize(
    "reference, values", [(["?", "-"], {"?", "-"}), (["?", np.nan, "-"], {"?", "-"}), ([], set())]
)
def test_membership_is_left_to_indicator_mask(monkeypatch, reference, values):
    column, answer = objects("a", None), mask(1, 0)
    member = record(monkeypatch, "indicator_mask", lambda reference_set, cells: answer)
    result = numpy_isin(column, reference)
    (reference_set, cells), keywords = member.only_call()
    assert keywords == {}
    assert type(reference_set) is set and reference_set == values
    assert cells is column
    if np.nan in reference:
        assert result.tolist() == [True, True]
    else:
        assert result is answer


def test_nothing_but_nulls_needs_no_membership(monkeypatch):
    member = record(monkeypatch, "indicator_mask")
    answer = object()
    column = objects("a")
    replace_in(monkeypatch, "pd", isnull=lambda v: answer if v is column else mask(1))
    assert numpy_isin(column, [None]) is answer
    assert member.calls == []


@pytest.mark.parametrize(
    "name, call",
    [
        ("np", lambda: indicator_mask({1}, [1])),
        ("np", lambda: numpy_isin(objects("a"), ["?"])),
        ("pd", lambda: numpy_isin(objects("a"), ["?"])),
        ("numpy_flatten_column", lambda: numpy_isin(objects("a"), ["?"])),
        ("indicator_mask", lambda: numpy_isin(objects("a"), ["?"])),
        ("indicator_mask", lambda: numpy_isin(objects("a"), ["?", None])),
        ("time", lambda: numpy_isin(objects("a"), ["?"], True)),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, call):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        call()
    assert str(excinfo.value) == "name '{}' is not defined".format(name)


@pytest.mark.parametrize("name", ["indicator_mask", "time"])
def test_a_name_that_is_not_needed_may_be_gone(monkeypatch, name):
    monkeypatch.delattr(exportable_utils, name)
    assert numpy_isin(objects("a", None), [np.nan]).tolist() == [False, True]


# --- debug ------------------------------------------------------------------------------------


def starting(column):
    return "Starting numpy_isin(): Starting\n X column: " + str(column) + "\n\n"


def ending(clock):
    return "Ending numpy_isin(): Ending, elapsed time (s)" + clock.between(1, 2) + "\n"


@pytest.mark.parametrize("reference", [["?", "-"], [], [np.nan], [None, pd.NaT]])
@pytest.mark.parametrize("flag", [True, 1, "yes"])
def test_debug_prints_a_start_and_an_end(monkeypatch, capsys, reference, flag):
    clock = set_clock(monkeypatch)
    X = objects("a", "?", None)
    silent = numpy_isin(X, reference)
    assert capsys.readouterr().out == ""
    assert clock.readings == 0

    assert typed(numpy_isin(X, reference, flag)) == typed(silent)
    assert capsys.readouterr().out == starting("['a' '?' None]") + ending(clock)
    assert clock.readings == 2


def test_debug_prints_column_and_values_where_both_are_tested(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    X = np.array([["a"], ["?"]])
    assert numpy_isin(X, ["?", np.nan], debug=True).tolist() == [False, True]
    assert capsys.readouterr().out == (
        starting("[['a']\n ['?']]")
        + "['a' '?']\n"
        + "{"
        + repr(np.str_("?"))
        + "}\n"
        + ending(clock)
    )


@pytest.mark.parametrize("rows, shown", [(1, 1), (49, 49), (50, 50), (51, 50), (200, 50)])
def test_debug_shows_fifty_rows_at_most(monkeypatch, capsys, rows, shown):
    clock = set_clock(monkeypatch)
    X = np.arange(rows)
    numpy_isin(X, [0, None], debug=True)
    assert capsys.readouterr().out == (
        starting(np.arange(shown)) + str(np.arange(shown)) + "\n{0}\n" + ending(clock)
    )


def test_a_call_that_fails_prints_no_end(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    with pytest.raises(TypeError):
        numpy_isin(objects("a"), [{}], debug=True)
    assert capsys.readouterr().out == starting("['a']")
    assert clock.readings == 1
