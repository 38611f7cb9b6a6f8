"""How routines call each other: with which arguments, and that the answer is believed."""

from __future__ import annotations

import functools
import types

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.arrays import objects
from helpers.replacements import Overlay, Recorder
from helpers.values import plain

# numpy's own word on `np.float`, which the oldest numpy still has.
pytestmark = pytest.mark.filterwarnings("ignore:`np.float` is a deprecated alias")

MIXED = objects("a", 1.5, "b")
WORDS = objects("a", "?", "b")


def calls_of(monkeypatch, name, answer, call):
    recorder = Recorder(answer)
    owner, _, attribute = name.rpartition(".")
    if owner == "FCplus":
        monkeypatch.setattr(eu.FCplus, attribute, staticmethod(recorder))
    elif owner:
        monkeypatch.setattr(eu, owner, Overlay(getattr(eu, owner), **{attribute: recorder}))
    else:
        monkeypatch.setattr(eu, attribute, recorder)
    call()
    return recorder.calls


X = objects("a", "?", np.nan)
MARKERS = ["?", np.nan]
MASK = np.array([False, True, False])


@pytest.mark.parametrize(
    "name, answer, call, args, kwargs",
    [
        ("numpy_flatten_column", lambda x: x, lambda: eu.numpy_isin(X, MARKERS), (X,), {}),
        (
            "numpy_isin",
            lambda x, markers: MASK,
            lambda: eu.numpy_compute_missing_indicator(X, ["?"], True, True),
            (X, ["?"]),
            {},
        ),
        (
            "numpy_isin",
            lambda x, markers: MASK,
            lambda: eu.get_unique_values(X, MARKERS),
            (X, MARKERS),
            {},
        ),
        (
            "numpy_isin",
            lambda x, markers: np.array([True]),
            lambda: eu.numpy_boolean2float(np.array([True]), MARKERS),
            (np.array([True]), MARKERS),
            {},
        ),
        (
            "np.unique",
            lambda *args: 1,
            lambda: eu.get_unique_values(X, None, 1, 2, 3, 4),
            (X, 1, 2, 3),
            {},
        ),
        (
            "numpy_column_float2str",
            lambda **kwargs: np.array(["a"]),
            lambda: eu.get_unique_values(MIXED, fast_str_conversion_flag=7),
            (),
            {"X": MIXED, "fast_conversion_flag": 7},
        ),
        (
            "numpy_flatten_column",
            lambda x: x,
            lambda: eu.numpy_whatis(WORDS),
            (WORDS,),
            {},
        ),
        (
            "numpy_compute_missing_indicator",
            lambda x, *args, **kwargs: (np.zeros(3, bool), [], []),
            lambda: eu.numpy_whatis(WORDS, ["?"], 5, 0),
            (WORDS, ["?"]),
            {"stop_at_one_missing_value_flag": 5, "debug": 0},
        ),
        (
            "FCplus.is_column_string_in_datetime_format",
            lambda column: False,
            lambda: eu.numpy_whatis(objects("a", "b")),
            (objects("a", "b"),),
            {},
        ),
    ],
)
def test_arguments(monkeypatch, name, answer, call, args, kwargs):
    seen, keywords = calls_of(monkeypatch, name, answer, call)[0]
    assert repr(plain(seen)) == repr(plain(args))
    assert repr(sorted(keywords.items())) == repr(sorted(kwargs.items()))


def test_arguments_that_are_the_very_objects(monkeypatch):
    calls = calls_of(
        monkeypatch, "pd.isnull", np.vectorize(lambda v: v != v), lambda: eu.numpy_isin(X, MARKERS)
    )
    assert calls[0][0][0] is MARKERS
    assert calls[1][0][0] is X


def test_arguments_of_the_unique_values_of_whatis(monkeypatch):
    column = objects("a", "b")
    answer = (column, np.array([1, 1]))
    calls = calls_of(
        monkeypatch,
        "get_unique_values",
        lambda *args, **kwargs: answer,
        lambda: eu.numpy_whatis(column),
    )
    (((y, excluded), keywords),) = calls
    assert y is column
    assert type(excluded) is list and len(excluded) == 1 and excluded[0] is np.nan
    assert keywords == {"return_counts": True}


def test_arguments_of_the_report_of_a_failure(monkeypatch):
    calls = calls_of(
        monkeypatch,
        "QSR_raise_exception",
        lambda **kwargs: None,
        lambda: pytest.raises(UnboundLocalError, eu.get_unique_values, objects([], {})),
    )
    ((args, kwargs),) = calls
    assert args == ()
    assert list(kwargs) == ["exception_obj", "exception_trace_flag"]
    assert isinstance(kwargs["exception_obj"], TypeError)
    assert kwargs["exception_trace_flag"] is True


# What is answered in place of a routine is believed.


def test_answer_of_a_replaced_routine_is_used(monkeypatch):
    monkeypatch.setattr(eu, "numpy_isin", lambda x, markers: np.array([True, False, True]))
    assert eu.numpy_compute_missing_indicator(WORDS, ["z"])[0].tolist() == [True, False, True]
    assert eu.get_unique_values(WORDS, ["z"]).tolist() == ["?"]
    assert eu.numpy_whatis(objects("1", "x", "2"), ["z"]) == (["z"], "char_str")


@pytest.mark.parametrize("shape", ["partial", "class", "object"])
def test_any_callable_may_stand_in(monkeypatch, shape):
    def isint(value):
        return value == "x"

    class Instance:
        __call__ = staticmethod(isint)

    class Class:
        def __new__(cls, value):
            return isint(value)

    stand_ins = {"partial": functools.partial(isint), "class": Class, "object": Instance()}
    monkeypatch.setattr(eu, "isint", stand_ins[shape])
    assert eu.numpy_whatis(objects("x", "x")) == ([], "int_str")


def test_one_routine_may_stand_in_for_another(monkeypatch):
    monkeypatch.setattr(eu, "isint", eu.isfloat)
    assert eu.numpy_whatis(objects("nan", "nan")) == ([], "int_str")


def test_stand_in_that_is_not_callable(monkeypatch):
    monkeypatch.setattr(eu, "numpy_flatten_column", 5)
    with pytest.raises(TypeError, match="^'int' object is not callable$"):
        eu.numpy_isin(WORDS, ["?"])


def test_date_test_replaced_on_the_class(monkeypatch):
    for answer, expected in [(True, True), (False, False), ("", ""), ([1], True)]:
        stub = staticmethod(lambda column, answer=answer: answer)
        monkeypatch.setattr(eu.FCplus, "is_column_string_in_datetime_format", stub)
        statistics = eu.numpy_whatis(WORDS, ["?"], return_stats_flag=True)[2]
        assert statistics["datetime_column_flag"] == expected
        assert type(statistics["datetime_column_flag"]) is type(expected)


def test_date_test_missing_on_the_class(monkeypatch):
    monkeypatch.delattr(eu.FCplus, "is_column_string_in_datetime_format")
    with pytest.raises(AttributeError) as caught:
        eu.numpy_whatis(WORDS)
    text = "type object 'FCplus' has no attribute 'is_column_string_in_datetime_format'"
    assert str(caught.value) == text


def test_class_of_tests_replaced(monkeypatch):
    stub = types.SimpleNamespace(is_column_string_in_datetime_format=lambda column: 0)
    monkeypatch.setattr(eu, "FCplus", stub)
    assert eu.numpy_whatis(WORDS, ["?"], return_stats_flag=True)[2]["datetime_column_flag"] == 0


class Thing:
    """A value of no known kind, sortable by chance of being alone."""

    def is_integer(self):
        return False


@pytest.mark.parametrize(
    "name, attribute, kind",
    [
        ("numbers", "Integral", "int_num"),
        ("np", "integer", "int_num"),
        ("np", "bool_", "boolean"),
        ("np", "float", "float_num"),
        ("six", "string_types", "char_str"),
    ],
)
def test_kinds_follow_the_replaced_types(monkeypatch, name, attribute, kind):
    column = objects(b"x") if kind == "char_str" else objects(Thing())
    with pytest.raises(UnboundLocalError):
        eu.numpy_whatis(column)
    replaced = (bytes,) if kind == "char_str" else Thing
    monkeypatch.setattr(eu, name, Overlay(getattr(eu, name), **{attribute: replaced}))
    if kind == "char_str":
        monkeypatch.setattr(eu, "isint", lambda value: False)
        monkeypatch.setattr(eu, "isfloat", lambda value: False)
    assert eu.numpy_whatis(column) == ([], kind)


def test_time_replaced(monkeypatch, capsys):
    ticks = iter([10.0, 12.5])
    monkeypatch.setattr(eu, "time", types.SimpleNamespace(time=lambda: next(ticks)))
    eu.numpy_isin(objects("a"), ["a"], debug=True)
    assert capsys.readouterr().out == (
        "Starting numpy_isin(): Starting\n X column: ['a']\n\n"
        "Ending numpy_isin(): Ending, elapsed time (s)2.5\n"
    )


def test_logger_replaced(monkeypatch):
    log = types.SimpleNamespace(warning=Recorder(len))
    monkeypatch.setattr(eu, "logger", log)
    eu.numpy_select_columns(["a"], [0])
    text = (
        "numpy_select_columns(): Input array has only one column. No column selection will occur."
    )
    assert log.warning.calls == [((text,), {})]
