"""Names are looked up when a routine runs, so replacing one changes every routine that uses it."""

from __future__ import annotations

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.arrays import objects
from helpers.replacements import Looked, Overlay, Recorder
from helpers.values import plain

# numpy's own word on `np.float`, which the oldest numpy still has.
pytestmark = pytest.mark.filterwarnings("ignore:`np.float` is a deprecated alias")


def failure():
    try:
        raise KeyError("k")
    except KeyError as error:
        return error


NESTED = np.array([[1], [2]])
MIXED = objects("a", 1.5, "b")
WORDS = objects("a", "?", "b")

# A call, made anew each time, and the names that it looks up.
CALLS = {
    "select one of one": (
        lambda: eu.numpy_select_columns(["a"], [0]),
        ["logger.warning"],
    ),
    "select from a list": (lambda: eu.numpy_select_columns(["a", "b"], [1]), ["np.array"]),
    "flatten": (
        lambda: eu.numpy_flatten_column(NESTED),
        ["np.ndarray", "np.concatenate", "numpy_remove_second_dim"],
    ),
    "permute": (lambda: eu.numpy_permute_array(np.eye(2), [1, 0], 0), ["np.argsort"]),
    "float text": (
        lambda: eu.numpy_floatstr2float(objects("1.5", "?"), ["?"]),
        ["isfloat", "np.nan"],
    ),
    "boolean": (
        lambda: eu.numpy_boolean2float(np.array([True, False]), [False]),
        ["numpy_isin", "np.nan"],
    ),
    "to text": (
        lambda: eu.numpy_column_float2str(objects(1.5, None), False),
        ["pd.isnull"],
    ),
    "isin": (
        lambda: eu.numpy_isin(WORDS, ["?", np.nan]),
        ["numpy_flatten_column", "pd.isnull", "np.any", "np.asarray", "indicator_mask"],
    ),
    "isin without null": (
        lambda: eu.numpy_isin(WORDS, ["?"]),
        ["numpy_flatten_column", "pd.isnull", "np.any", "indicator_mask"],
    ),
    "isin all null": (
        lambda: eu.numpy_isin(WORDS, [None]),
        ["numpy_flatten_column", "pd.isnull", "np.any", "np.asarray"],
    ),
    "isin talking": (lambda: eu.numpy_isin(WORDS, ["?"], True), ["time.time"]),
    "mask": (lambda: eu.indicator_mask({"?"}, WORDS), ["np.vectorize"]),
    "indicator": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, ["?"]),
        ["numpy_isin", "np.any"],
    ),
    "indicator of nothing": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, []),
        ["np.zeros"],
    ),
    "indicator talking": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, ["?"], False, True),
        ["time.time"],
    ),
    "unique": (
        lambda: eu.get_unique_values(WORDS, ["?"], return_counts=True),
        ["numpy_isin", "np.unique"],
    ),
    "unique mixed": (
        lambda: eu.get_unique_values(MIXED),
        ["np.unique", "logger.warning", "numpy_column_float2str"],
    ),
    "unique fails": (
        lambda: eu.get_unique_values(objects([], {})),
        ["np.unique", "QSR_raise_exception"],
    ),
    "whatis": (
        lambda: eu.numpy_whatis(WORDS, ["?"]),
        [
            "numpy_flatten_column",
            "numpy_compute_missing_indicator",
            "get_unique_values",
            "six.string_types",
            "isint",
            "isfloat",
            "FCplus.is_column_string_in_datetime_format",
        ],
    ),
    "whatis without list": (
        lambda: eu.numpy_whatis(objects("1", "2")),
        ["numpy_flatten_column", "np.nan", "get_unique_values", "isint", "isfloat"],
    ),
    "whatis of something else": (
        lambda: eu.numpy_whatis(objects(b"x")),
        ["six.string_types", "np.integer", "numbers.Integral", "np.bool_"],
    ),
    # What the routines that it calls look up in their turn.
    "whatis of a matrix": (
        lambda: eu.numpy_whatis(NESTED, [1]),
        ["np.ndarray", "np.concatenate", "numpy_remove_second_dim"],
    ),
    "whatis below": (
        lambda: eu.numpy_whatis(WORDS, ["?"]),
        [
            "numpy_isin",
            "indicator_mask",
            "pd.isnull",
            "np.any",
            "np.vectorize",
            "np.unique",
            "FC.is_string_in_datetime_format",
        ],
    ),
    "whatis without list below": (
        lambda: eu.numpy_whatis(WORDS),
        ["numpy_isin", "pd.isnull", "np.any", "np.asarray", "np.unique"],
    ),
    "whatis of nothing missing": (lambda: eu.numpy_whatis(WORDS, ["z"]), ["np.zeros"]),
    "whatis mixed": (
        lambda: eu.numpy_whatis(MIXED),
        ["logger.warning", "numpy_column_float2str"],
    ),
    "indicator below": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, ["?", np.nan]),
        ["numpy_flatten_column", "indicator_mask", "pd.isnull", "np.asarray", "np.vectorize"],
    ),
    "unique below": (
        lambda: eu.get_unique_values(WORDS, ["?"]),
        ["numpy_flatten_column", "indicator_mask", "pd.isnull", "np.any", "np.vectorize"],
    ),
    "boolean below": (
        lambda: eu.numpy_boolean2float(np.array([True, False]), [False]),
        ["numpy_flatten_column", "indicator_mask", "pd.isnull", "np.vectorize"],
    ),
    "whatis talking": (lambda: eu.numpy_whatis(WORDS, ["?"], debug=True), ["time.time"]),
    "raise": (lambda: eu.QSR_raise_exception("m", "ValueError"), ["logger.error"]),
    "raise with trace": (
        lambda: eu.QSR_raise_exception("m", "ValueError", failure(), True),
        ["traceback.format_exception", "logger.error"],
    ),
    "constant": (lambda: eu.FCplus.is_column_constant([1]), ["FC.is_constant"]),
    "date text": (
        lambda: eu.FCplus.is_column_string_in_datetime_format(["x"]),
        ["FC.is_string_in_datetime_format"],
    ),
    "epoch": (lambda: eu.FCplus.is_column_epoch([1]), ["FC.is_epoch"]),
    "longitude": (lambda: eu.FCplus.is_column_longitude([1]), ["FC.is_longitude"]),
    "latitude": (lambda: eu.FCplus.is_column_latitude([1]), ["FC.is_latitude"]),
    "distance": (lambda: eu.FCplus.is_column_distance([1]), ["FC.is_distance"]),
}
LOOK_UPS = [(case, name) for case, (_, names) in CALLS.items() for name in names]
GLOBALS = sorted({(case, name.partition(".")[0]) for case, name in LOOK_UPS})
# Looked up inside the guarded step, so the failure is reported as any other of that step.
GUARDED = [("unique mixed", "np"), ("unique fails", "np")]
# Functions of other modules that a test may replace where they live.
ELSEWHERE = [
    (case, name)
    for case, name in LOOK_UPS
    if "." in name and name.partition(".")[0] in ("np", "pd", "time", "traceback", "logger", "FC")
    if name not in ("np.ndarray", "np.nan", "np.integer", "np.bool_")
]


def result_of(case):
    """The result of the call, or the class and the first line of the exception, as a text."""
    try:
        return repr(plain(CALLS[case][0]()))
    except Exception as error:
        return repr((type(error), str(error).splitlines()[:1]))


def replace(monkeypatch, name, **how):
    """Put a stand-in under ``name``: a recorder for a routine, an overlay for a module."""
    owner, _, attribute = name.partition(".")
    original = getattr(eu, owner)
    if attribute:
        stand_in = Overlay(original, **{attribute: how["by"]} if how else {})
    else:
        stand_in = how.get("by") or Recorder(original)
    monkeypatch.setattr(eu, owner, stand_in)
    return stand_in


def look(*args, **kwargs):
    raise Looked


@pytest.mark.parametrize("case, name", LOOK_UPS)
def test_replaced_name_is_used(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        stand_in = replace(patch, name)
        assert result_of(case) == expected
        attribute = name.partition(".")[2]
        if attribute:
            assert attribute in stand_in._read
        else:
            assert stand_in.calls
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", LOOK_UPS)
def test_failure_of_a_replaced_name_propagates(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        replace(patch, name, by=Looked if "." in name else look)
        with pytest.raises(Looked):
            CALLS[case][0]()
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", GLOBALS)
def test_deleted_name(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        patch.delattr(eu, name)
        with pytest.raises(Exception) as caught:
            CALLS[case][0]()
        text = "name '{}' is not defined".format(name)
        if (case, name) in GUARDED:
            assert type(caught.value) is Exception
            assert "\nNameError: {}\n\nExiting ...".format(text) in str(caught.value)
        else:
            assert type(caught.value) is NameError
            assert str(caught.value) == text
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", ELSEWHERE)
def test_function_replaced_where_it_lives(monkeypatch, case, name):
    expected = result_of(case)
    owner, _, attribute = name.partition(".")
    owner = getattr(eu, owner)
    recorder = Recorder(getattr(owner, attribute))
    with monkeypatch.context() as patch:
        patch.setattr(owner, attribute, recorder)
        result = result_of(case)
    assert result == expected
    assert recorder.calls
