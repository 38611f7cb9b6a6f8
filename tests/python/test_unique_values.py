"""Distinct values: exclusions, the retry as text; other failures are reported as exceptions."""

from __future__ import annotations

import traceback
from decimal import Decimal

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, records_of, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import get_unique_values

NAN = float("nan")
DEFAULT = exportable_utils.global_missing_values_reference_list


@pytest.mark.parametrize(
    "y, exclusion, expected",
    [
        (objects("b", "?", "a", "b"), ["?"], objects("a", "b")),
        (objects("b", "?", "a", "b"), None, objects("?", "a", "b")),
        (objects("b", "?", "a", "b"), [], objects("?", "a", "b")),
        (objects("b", "?", "a", "b"), (), objects("?", "a", "b")),
        (objects("b", None, "a", NAN), [np.nan], objects("a", "b")),
        (objects("b", None, "-"), DEFAULT, objects("b")),
        (np.array(["b", "?", "a"]), ["?"], np.array(["a", "b"])),
        (np.array([3.0, np.nan, 1.0, 3.0]), [np.nan], np.array([1.0, 3.0])),
        (np.array([3, 1, 2, 3]), [1.0], np.array([2, 3])),
        (np.array([True, False, True]), None, np.array([False, True])),
        (objects("?", "?"), ["?"], objects()),
        (np.array([[2], [1], [2]]), None, np.array([1, 2])),
        (np.array([[2], [1], [2]]), [1], np.array([2])),
        (np.array([]), None, np.array([])),
        (objects(2, 1.0, True), None, objects(1.0, 2)),
        (objects(None), None, objects(None)),
    ],
)
def test_sorted_distinct_values_that_are_not_excluded(y, exclusion, expected, caplog):
    before = typed(y), typed(exclusion)
    assert typed(get_unique_values(y, exclusion)) == typed(expected)
    assert (typed(y), typed(exclusion)) == before
    assert caplog.records == []


@pytest.mark.parametrize("index", [False, True])
@pytest.mark.parametrize("inverse", [False, True])
@pytest.mark.parametrize("counts", [False, True])
def test_extra_results_refer_to_the_column_after_exclusion(index, inverse, counts):
    y = objects("?", "b", "a", "?", "b")
    result = get_unique_values(y, ["?"], index, inverse, counts)
    extras = [
        extra
        for extra, wanted in [([1, 0], index), ([1, 0, 1], inverse), ([1, 2], counts)]
        if wanted
    ]
    if not extras:
        assert typed(result) == typed(objects("a", "b"))
    else:
        assert type(result) is tuple
        assert typed(result[0]) == typed(objects("a", "b"))
        assert typed(list(result[1:])) == typed([np.array(extra, np.intp) for extra in extras])


def test_arguments_may_be_keywords():
    result = get_unique_values(
        fast_str_conversion_flag=True,
        return_counts=True,
        return_inverse=False,
        return_index=False,
        exclusion_list=["a"],
        y=objects("b", "a", "b"),
    )
    assert typed(result) == typed((objects("b"), np.array([2], np.intp)))


@pytest.mark.parametrize("dtype", [object, "string", None])
def test_a_series_of_text(dtype):
    y = pd.Series(["b", "?", "a", None, "b"], dtype=dtype)
    values, counts = get_unique_values(y, DEFAULT, return_counts=True)
    assert list(values) == ["a", "b"]
    assert counts.tolist() == [1, 2]


# --- text beside other values -----------------------------------------------------------------


def refusal(y, *flags):
    """The message of numpy for values that it cannot sort."""
    return message_of(TypeError, np.unique, y, *flags)


def converted(words):
    return [("root", "WARNING", words + ", Converting to string column", ())]


@pytest.mark.parametrize(
    "cells, expected",
    [
        (("a", 1.5, "b"), ["1.5", "a", "b"]),
        ((3, "3", "x"), ["3", "x"]),
        (("a", None), ["None", "a"]),
        (("a", NAN, 2.0), ["2.0", "a", "nan"]),
        (("a", b"b"), ["a", "b"]),
        (("a", Decimal("1.50")), ["1.50", "a"]),
    ],
)
def test_text_beside_other_values_is_counted_as_text(cells, expected, caplog):
    y = objects(*cells)
    result = get_unique_values(y)
    assert result.dtype.kind == "U"
    assert result.tolist() == expected
    assert typed(y) == typed(objects(*cells))
    assert records_of(caplog) == converted(refusal(y))


def test_the_slow_conversion_rewrites_the_column_of_the_caller(caplog):
    y = objects("a", 1.5, 3.0, None)
    words = refusal(y)
    result = get_unique_values(y, fast_str_conversion_flag=False)
    assert typed(result) == typed(objects("1.5", "3", "?", "a"))
    assert typed(y) == typed(objects("a", "1.5", "3", "?"))
    assert records_of(caplog) == converted(words)


def test_after_an_exclusion_the_slow_conversion_rewrites_a_copy(caplog):
    y = objects("a", 1.5, "-", 3.0)
    words = refusal(objects("a", 1.5, 3.0), False, False, True)
    result = get_unique_values(y, ["-"], return_counts=True, fast_str_conversion_flag=False)
    assert typed(result) == typed((objects("1.5", "3", "a"), np.array([1, 1, 1], np.intp)))
    assert typed(y) == typed(objects("a", 1.5, "-", 3.0))
    assert records_of(caplog) == converted(words)


@pytest.mark.parametrize("fast", [True, False, None, "yes"])
def test_conversion_and_second_try(monkeypatch, caplog, fast):
    def unique(column, *flags):
        if column is y:
            raise TypeError("'<' not supported between instances of 'str' and 'int'")
        return answer

    y, text, answer = objects("a"), objects("b"), object()
    unique = Recorder(unique)
    replace_in(monkeypatch, "np", unique=unique)
    convert = record(monkeypatch, "numpy_column_float2str", lambda **kwargs: text)
    flags = ("index", "inverse", "counts")

    assert get_unique_values(y, None, *flags, fast_str_conversion_flag=fast) is answer

    assert [(args[1:], kwargs) for args, kwargs in unique.calls] == [(flags, {})] * 2
    assert unique.calls[0][0][0] is y
    assert unique.calls[1][0][0] is text
    args, kwargs = convert.only_call()
    assert args == ()
    assert list(kwargs) == ["X", "fast_conversion_flag"]
    assert kwargs["X"] is y and kwargs["fast_conversion_flag"] is fast
    assert records_of(caplog) == converted("'<' not supported between instances of 'str' and 'int'")


def test_the_warning_goes_to_the_logger_of_the_module(monkeypatch):
    warning = Recorder(lambda text: None)
    replace_in(monkeypatch, "logger", warning=warning)
    y = objects("a", 1)
    get_unique_values(y)
    assert warning.calls == [((refusal(y) + ", Converting to string column",), {})]


def test_a_failure_of_the_second_try_propagates(monkeypatch, caplog):
    failures = [
        TypeError("'<' not supported between instances of 'str' and 'int'"),
        TypeError("'<' not supported between instances of 'str' and 'float'"),
    ]
    left = list(failures)

    def unique(*args):
        raise left.pop(0)

    replace_in(monkeypatch, "np", unique=unique)
    with pytest.raises(TypeError) as excinfo:
        get_unique_values(objects("a"))
    assert excinfo.value is failures[1]
    assert excinfo.value.__context__ is failures[0]
    assert records_of(caplog) == converted(str(failures[0]))


def test_a_failure_of_the_conversion_propagates(monkeypatch):
    record(monkeypatch, "numpy_column_float2str", lambda **kwargs: {}["none"])
    with pytest.raises(KeyError) as excinfo:
        get_unique_values(objects("a", 1))
    assert type(excinfo.value.__context__) is TypeError
    assert "get_unique_values" in names_in_traceback(excinfo)


# --- every other failure ----------------------------------------------------------------------


@pytest.mark.parametrize(
    "cells", [(1, None), (1.5, b"a"), ({}, {}), (1j, 2j), (Decimal(1), None), ([1], 1)]
)
@pytest.mark.parametrize("flags", [(), (True, True, True)])
def test_another_failure_becomes_a_plain_exception(cells, flags, caplog):
    y = objects(*cells)
    words = message_of(TypeError, np.unique, y, *flags)
    with pytest.raises(Exception) as excinfo:
        get_unique_values(y, None, *flags)

    raised, caught = excinfo.value, excinfo.value.__context__
    assert type(raised) is Exception
    assert type(caught) is TypeError
    assert str(caught) == words
    assert raised.__cause__ is None
    story = "".join(traceback.format_exception(type(caught), caught, caught.__traceback__))
    assert story.startswith("Traceback (most recent call last):\n")
    text = "Exception raised!\n" + story + "\nExiting ..."
    assert raised.args == (text,)
    assert records_of(caplog) == [("root", "ERROR", text, ())]
    names = names_in_traceback(excinfo)
    assert names.index("get_unique_values") < names.index("QSR_raise_exception")


@pytest.mark.parametrize(
    "failure, retried",
    [
        (TypeError("'<' not supported between instances of 'str' and 'int'"), True),
        (RuntimeError("not supported between instances of, 'str'"), True),
        (KeyError("not supported between instances of 'str'"), True),
        (TypeError("'<' not supported between instances of 'str_' and 'int'"), False),
        (TypeError("'<' not supported between instances of str and int"), False),
        (TypeError("'<' not supported between 'str' and 'int'"), False),
        (TypeError("'str' object is not callable"), False),
        (MemoryError(), False),
    ],
)
def test_only_the_words_of_the_failure_decide(monkeypatch, caplog, failure, retried):
    def unique(column, *flags):
        if not calls:
            calls.append(column)
            raise failure
        return "second try"

    calls = []
    replace_in(monkeypatch, "np", unique=unique)
    if retried:
        assert get_unique_values(objects("a")) == "second try"
        assert records_of(caplog) == converted(str(failure))
    else:
        with pytest.raises(Exception, match="^Exception raised!\n") as excinfo:
            get_unique_values(objects("a"))
        assert type(excinfo.value) is Exception
        assert excinfo.value.__context__ is failure
        assert [record.levelname for record in caplog.records] == ["ERROR"]


def test_the_words_are_those_of_str(monkeypatch):
    class Worded(Exception):
        def __str__(self):
            return "'>' not supported between instances of 'int' and 'str'"

    def unique(column, *flags):
        if column.dtype == object:
            raise Worded("otherwise")
        return column

    replace_in(monkeypatch, "np", unique=unique)
    assert get_unique_values(objects("a", 1)).tolist() == ["a", "1"]


@pytest.mark.parametrize("interruption", [KeyboardInterrupt, SystemExit, GeneratorExit])
def test_an_interruption_is_not_caught(monkeypatch, caplog, interruption):
    words = "'<' not supported between instances of 'str' and 'int'"

    def unique(*args):
        raise interruption(words)

    replace_in(monkeypatch, "np", unique=unique)
    with pytest.raises(interruption) as excinfo:
        get_unique_values(objects("a"))
    assert excinfo.value.__context__ is None
    assert caplog.records == []


def test_the_failure_is_handed_to_the_routine_that_raises(monkeypatch):
    class Reported(BaseException):
        pass

    def report(**kwargs):
        raise Reported

    failure = ValueError("no order")
    replace_in(monkeypatch, "np", unique=Recorder(lambda *args: throw(failure)))
    reporter = record(monkeypatch, "QSR_raise_exception", report)
    with pytest.raises(Reported) as excinfo:
        get_unique_values(objects("a"))
    args, kwargs = reporter.only_call()
    assert args == ()
    assert list(kwargs) == ["exception_obj", "exception_trace_flag"]
    assert kwargs["exception_obj"] is failure
    assert kwargs["exception_trace_flag"] is True
    assert excinfo.value.__context__ is failure


def throw(failure):
    raise failure


# --- what it calls ----------------------------------------------------------------------------


def test_the_exclusion_is_left_to_numpy_isin(monkeypatch):
    y, exclusion = objects("c", "b", "a"), ["?"]
    isin = record(monkeypatch, "numpy_isin", lambda y, exclusion_list: mask(0, 1, 0))
    assert typed(get_unique_values(y, exclusion)) == typed(objects("a", "c"))
    (first, second), kwargs = isin.only_call()
    assert first is y and second is exclusion and kwargs == {}


@pytest.mark.parametrize("exclusion", [None, [], (), 0, ""])
def test_without_exclusions_nothing_is_matched(monkeypatch, exclusion):
    isin = record(monkeypatch, "numpy_isin")
    unique = Recorder(lambda *args: args)
    replace_in(monkeypatch, "np", unique=unique)
    y = objects("a")
    result = get_unique_values(y, exclusion)
    assert result[0] is y and result[1:] == (False, False, False)
    assert unique.calls == [(result, {})]
    assert isin.calls == []


def test_a_failure_of_the_exclusion_is_not_reported(caplog):
    with pytest.raises(IndexError) as excinfo:
        get_unique_values(np.array([]), ["?"])
    assert "numpy_isin" in names_in_traceback(excinfo)
    assert caplog.records == []


@pytest.mark.parametrize(
    "name, cells, exclusion",
    [
        ("numpy_isin", ("a",), ["?"]),
        ("logger", ("a", 1), None),
        ("numpy_column_float2str", ("a", 1), None),
        ("QSR_raise_exception", (1, None), None),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, cells, exclusion):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        get_unique_values(objects(*cells), exclusion)
    assert str(excinfo.value) == "name '{}' is not defined".format(name)


def test_a_missing_numpy_is_reported_like_any_failure(monkeypatch):
    monkeypatch.delattr(exportable_utils, "np")
    with pytest.raises(Exception) as excinfo:
        get_unique_values(objects("a"))
    assert type(excinfo.value) is Exception
    assert type(excinfo.value.__context__) is NameError
    assert "name 'np' is not defined" in str(excinfo.value)
