"""Missing-value masks: one per marker found, their union, the early stop, texts under debug."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import Recorder, record, replace_in, set_clock
from helpers.values import names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_compute_missing_indicator

DEFAULT = exportable_utils.global_missing_values_reference_list
NAN = np.nan


@pytest.mark.parametrize(
    "X, markers, masks, found",
    [
        (objects("a", "?", ""), DEFAULT, [mask(0, 1, 0), mask(0, 0, 1)], ["?", ""]),
        (objects("a", "?", ""), ["", "?"], [mask(0, 0, 1), mask(0, 1, 0)], ["", "?"]),
        (np.array(["-", "?", "?"]), DEFAULT, [mask(0, 1, 1), mask(1, 0, 0)], ["?", "-"]),
        (np.array([1.0, NAN]), [NAN], [mask(0, 1)], [NAN]),
        (np.array([1.0, NAN]), DEFAULT, [mask(0, 1)], [NAN]),
        (objects("?", None, "x"), DEFAULT, [mask(1, 0, 0), mask(0, 1, 0)], ["?", NAN]),
        (objects(None, NAN), [None, NAN], [mask(1, 1), mask(1, 1)], [None, NAN]),
        (np.array([1, 0]), [True, 1.0, 7], [mask(1, 0), mask(1, 0)], [True, 1.0]),
        (objects("?", "?"), ["?", "?"], [mask(1, 1), mask(1, 1)], ["?", "?"]),
        (np.array([["a"], ["?"]]), ["?"], [mask(0, 1)], ["?"]),
        (objects("a", "?"), ("?",), [mask(0, 1)], ["?"]),
        (objects("a", "?"), "-?", [mask(0, 1)], ["?"]),
    ],
)
def test_one_mask_for_each_marker_found(X, markers, masks, found):
    before = typed(X), typed(markers)
    union = np.any(masks, axis=0)
    result = numpy_compute_missing_indicator(X, markers)
    assert typed(result) == typed((union, masks, found))
    assert (typed(X), typed(markers)) == before


@pytest.mark.parametrize(
    "X, markers, union, found",
    [
        (objects("a", "?", ""), DEFAULT, mask(0, 1, 0), ["?"]),
        (objects("a", "?", ""), ["-", "", "?"], mask(0, 0, 1), [""]),
        (objects("a", None), DEFAULT, mask(0, 1), [np.nan]),
    ],
)
@pytest.mark.parametrize("flag", [True, 1, "yes"])
def test_the_first_marker_found_may_be_the_last_tried(X, markers, union, found, flag):
    result = numpy_compute_missing_indicator(X, markers, flag)
    assert typed(result) == typed((union, [union], found))


@pytest.mark.parametrize("stop", [True, False])
@pytest.mark.parametrize(
    "X, markers",
    [
        (objects("a", "b"), DEFAULT),
        (objects("a", "?"), []),
        (objects("a", "?"), ()),
        (np.array([1, 2, 3]), ["1"]),
        (np.array([[1.0], [2.0]]), [np.nan]),
    ],
)
def test_without_a_marker_the_second_result_lists_single_truth_values(X, markers, stop):
    union, masks, found = numpy_compute_missing_indicator(X, markers, stop)
    rows = X.shape[0]
    assert typed(union) == typed(np.zeros(rows, dtype=bool))
    assert typed(masks) == typed([np.bool_(False)] * rows)
    assert typed(found) == typed([])
    assert found is not markers


def test_markers_are_returned_themselves():
    markers = ["".join(["N", "A"]), float("nan")]
    _, _, found = numpy_compute_missing_indicator(objects("NA", None), markers)
    assert found[0] is markers[0]
    assert found[1] is markers[1]


def test_a_single_mask_is_the_union_itself():
    union, masks, _ = numpy_compute_missing_indicator(objects("a", "?"), ["?"])
    assert union is masks[0]


def test_several_masks_stay_as_they_were():
    union, masks, _ = numpy_compute_missing_indicator(objects("?", "-", ""), ["?", "-", ""])
    assert typed(masks) == typed([mask(1, 0, 0), mask(0, 1, 0), mask(0, 0, 1)])
    assert not any(np.shares_memory(union, kept) for kept in masks)


def test_markers_may_come_from_an_iterator():
    markers = iter(["?", "-"])
    _, _, found = numpy_compute_missing_indicator(objects("-", "?"), markers, True)
    assert found == ["?"]
    assert next(markers) == "-"


@pytest.mark.parametrize("dtype", [object, "string", None])
def test_a_series_of_text(dtype):
    X = pd.Series(["a", "?", None], dtype=dtype)
    union, masks, found = numpy_compute_missing_indicator(X, DEFAULT)
    assert list(union) == [False, True, True]
    assert [list(kept) for kept in masks] == [[False, True, False], [False, False, True]]
    assert typed(found) == typed(["?", np.nan])


def test_arguments_may_be_keywords():
    union, _, found = numpy_compute_missing_indicator(
        debug=False,
        stop_at_one_missing_value_flag=True,
        missing_values_list=["?", "a"],
        X=objects("a", "?"),
    )
    assert (union.tolist(), found) == ([False, True], ["?"])


# --- what it calls ----------------------------------------------------------------------------


@pytest.mark.parametrize("debug", [False, True])
def test_each_marker_is_matched_alone_and_silently(monkeypatch, debug):
    X, markers = objects("a", "?"), ["?", "-", np.nan]
    isin = record(monkeypatch, "numpy_isin")
    numpy_compute_missing_indicator(X, markers, debug=debug)
    assert [kwargs for _, kwargs in isin.calls] == [{}, {}, {}]
    for (args, _), marker in zip(isin.calls, markers):
        column, reference = args
        assert column is X
        assert type(reference) is list and len(reference) == 1
        assert reference[0] is marker


def test_the_masks_are_those_of_numpy_isin(monkeypatch):
    answers = {"a": mask(1, 0), "b": mask(0, 0), "c": mask(0, 1)}
    record(monkeypatch, "numpy_isin", lambda X, reference: answers[reference[0]])
    union, masks, found = numpy_compute_missing_indicator(None, ["a", "b", "c"])
    assert masks[0] is answers["a"] and masks[1] is answers["c"] and len(masks) == 2
    assert typed(union) == typed(mask(1, 1))
    assert found == ["a", "c"]


def test_np_any_says_whether_a_marker_was_found(monkeypatch):
    asked = Recorder(lambda found: len(asked.calls) == 2)
    replace_in(monkeypatch, "np", any=asked)
    kept = mask(0, 0)
    record(monkeypatch, "numpy_isin", lambda X, reference: kept)
    result = numpy_compute_missing_indicator(objects("a", "b"), ["?", "-"])
    assert typed(result) == typed((kept, [kept], ["-"]))
    assert [(len(args), args[0] is kept, kwargs) for args, kwargs in asked.calls] == [
        (1, True, {})
    ] * 2


def test_np_zeros_makes_the_empty_mask(monkeypatch):
    answer = mask(1, 0, 1)
    zeros = Recorder(lambda shape, dtype: answer)
    replace_in(monkeypatch, "np", zeros=zeros)
    union, masks, found = numpy_compute_missing_indicator(objects("a", "b"), [])
    assert union is answer
    assert typed(masks) == typed(list(answer))
    assert zeros.calls == [(((2,),), {"dtype": bool})]


def test_an_error_of_numpy_isin_propagates(monkeypatch):
    with pytest.raises(IndexError) as excinfo:
        numpy_compute_missing_indicator(np.array([]), ["?"])
    names = names_in_traceback(excinfo)
    assert names.index("numpy_compute_missing_indicator") < names.index("numpy_isin")


def test_an_empty_column_without_markers_has_an_empty_mask():
    result = numpy_compute_missing_indicator(np.array([]), [])
    assert typed(result) == typed((mask(), [], []))


def test_the_markers_must_be_iterable():
    with pytest.raises(TypeError, match="^'NoneType' object is not iterable$"):
        numpy_compute_missing_indicator(objects("a"), None)


@pytest.mark.parametrize(
    "name, args",
    [
        ("numpy_isin", (objects("a"), ["?"])),
        ("np", (objects("a"), [])),
        ("time", (objects("a"), ["?"], False, True)),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, args):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        numpy_compute_missing_indicator(*args)
    assert str(excinfo.value) == "name '{}' is not defined".format(name)


# --- debug ------------------------------------------------------------------------------------


def column_text(column):
    return "numpy_compute_missing_indicator(): Column: " + str(column) + "\n\n\n"


def checking(marker):
    return "\n\nnumpy_compute_missing_indicator():Checking for missing_value=" + marker + "\n"


def checked(marker, found, elapsed):
    return (
        "numpy_compute_missing_indicator():missing_value=" + marker + " found: " + found
        + "\nelapsed_time: numpy_isin_elapsed_end(s): " + elapsed + "\n"
    )  # fmt: skip


def test_debug_prints_every_marker(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    result = numpy_compute_missing_indicator(objects("a", "?"), ["?", "", np.nan], debug=True)
    assert capsys.readouterr().out == (
        column_text("['a' '?']")
        + checking("?")
        + checked("?", "True", clock.between(1, 2))
        + checking("")
        + checked("", "False", clock.between(3, 4))
        + checking("nan")
        + checked("nan", "False", clock.between(5, 6))
    )
    assert clock.readings == 6
    assert typed(result) == typed((mask(0, 1), [mask(0, 1)], ["?"]))


def test_debug_ends_with_the_check_that_stops(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    numpy_compute_missing_indicator(objects("a", "?"), ["-", "?", "a"], True, True)
    assert capsys.readouterr().out == (
        column_text("['a' '?']")
        + checking("-")
        + checked("-", "False", clock.between(1, 2))
        + checking("?")
    )
    assert clock.readings == 3


@pytest.mark.parametrize("rows, shown", [(1, 1), (50, 50), (51, 50)])
def test_debug_shows_fifty_rows_at_most(capsys, rows, shown):
    numpy_compute_missing_indicator(np.arange(rows), [], debug=True)
    assert capsys.readouterr().out == column_text(np.arange(shown))


def test_debug_shows_the_column_before_it_is_flattened(capsys):
    numpy_compute_missing_indicator(np.array([[1], [2]]), [], debug=True)
    assert capsys.readouterr().out == column_text("[[1]\n [2]]")


def test_without_debug_nothing_is_printed_or_timed(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    numpy_compute_missing_indicator(objects("a", "?"), DEFAULT)
    assert capsys.readouterr().out == ""
    assert clock.readings == 0
