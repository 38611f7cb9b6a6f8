"""Whether a column contains dates, and their order."""

from __future__ import annotations

import sys

import numpy as np
import pandas as pd
import pytest

from helpers.replacements import Recorder, replace_in
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import (
    numpy_is_column_datetime,
    numpy_is_column_monotonic_decreasing,
    numpy_is_column_monotonic_increasing,
)

# The warning of pandas before it parses each text separately.
pytestmark = pytest.mark.filterwarnings("ignore:Could not infer format:UserWarning")

UP = ["2020-01-01", "2020-01-02", "2021-01-01"]
SAME = ["2020-01-01"] * 3
ORDERS = [
    (numpy_is_column_monotonic_increasing, "is_monotonic_increasing"),
    (numpy_is_column_monotonic_decreasing, "is_monotonic_decreasing"),
]
every_order = pytest.mark.parametrize("routine, attribute", ORDERS)
ROUTINES = [numpy_is_column_datetime, *(routine for routine, _ in ORDERS)]
every_routine = pytest.mark.parametrize("routine", ROUTINES)


@pytest.mark.parametrize("make", [list, np.array, pd.Series, pd.DatetimeIndex])
@pytest.mark.parametrize(
    "dates, increasing, decreasing",
    [
        (UP, True, False),
        (UP[::-1], False, True),
        (SAME, True, True),
        ([UP[0], UP[0], UP[1]], True, False),
        ([UP[1], UP[0], UP[0]], False, True),
        ([UP[0], UP[2], UP[1]], False, False),
        (UP[:1], True, True),
    ],
)
def test_dates(make, dates, increasing, decreasing, capsys, caplog):
    column = make(dates)
    assert numpy_is_column_datetime(column) is True
    assert numpy_is_column_monotonic_increasing(column) is increasing
    assert numpy_is_column_monotonic_decreasing(column) is decreasing
    assert list(column) == list(make(dates))
    assert capsys.readouterr().out == ""
    assert caplog.records == []


@pytest.mark.parametrize(
    "column, datetime, increasing, decreasing",
    [
        (np.array(UP, dtype="M8[ns]"), True, True, False),
        ([3, 2, 1], True, False, True),
        ([], True, True, True),
        ([UP[0], None], True, False, False),
        # A scalar is a date without an order; None is returned by to_datetime().
        (UP[0], True, False, False),
        (None, True, False, False),
        ([UP[0], "no date"], False, False, False),
        (pd.Series(["no date"]), False, False, False),
        ([object()], False, False, False),
        (np.zeros((2, 2)), False, False, False),
        (object(), False, False, False),
    ],
)
def test_other_columns(column, datetime, increasing, decreasing):
    assert numpy_is_column_datetime(column) is datetime
    assert numpy_is_column_monotonic_increasing(column) is increasing
    assert numpy_is_column_monotonic_decreasing(column) is decreasing


@every_routine
def test_the_column_alone_is_handed_to_pandas(monkeypatch, routine):
    column = object()
    to_datetime = Recorder(lambda column: None)
    replace_in(monkeypatch, "pd", to_datetime=to_datetime)
    routine(column)
    args, kwargs = to_datetime.only_call()
    assert len(args) == 1 and args[0] is column
    assert kwargs == {}


class Dates:
    """Records which attributes are read; each read returns or raises the given object."""

    def __init__(self, answer):
        self.__dict__.update(answer=answer, read=[])

    def __getattr__(self, name):
        self.read.append(name)
        if isinstance(self.answer, BaseException):
            raise self.answer
        return self.answer

    def __bool__(self):
        raise AssertionError("the truth of the dates was taken")


@every_order
@pytest.mark.parametrize("answer", [True, False, None, 0, "", [], np.bool_(True), object()])
def test_the_order_is_what_the_attribute_says(monkeypatch, routine, attribute, answer):
    dates = Dates(answer)
    replace_in(monkeypatch, "pd", to_datetime=lambda column: dates)
    assert routine([]) is answer
    assert dates.read == [attribute]


def test_the_dates_themselves_are_not_looked_at(monkeypatch):
    dates = Dates(None)
    replace_in(monkeypatch, "pd", to_datetime=lambda column: dates)
    assert numpy_is_column_datetime([]) is True
    assert dates.read == []


FAILURES = [Exception("e"), ValueError("v"), MemoryError("m"), StopIteration(), Warning("w")]
INTERRUPTIONS = [KeyboardInterrupt("k"), SystemExit(3), GeneratorExit(), BaseException("b")]


def failing(failure):
    def fail(column):
        raise failure

    return fail


@every_routine
@pytest.mark.parametrize("failure", FAILURES, ids=repr)
def test_any_exception_of_pandas_is_no_date(monkeypatch, routine, failure, capsys, caplog):
    replace_in(monkeypatch, "pd", to_datetime=failing(failure))
    assert routine([]) is False
    assert sys.exc_info() == (None, None, None)
    assert capsys.readouterr().out == ""
    assert caplog.records == []


@every_order
@pytest.mark.parametrize("failure", FAILURES, ids=repr)
def test_any_exception_of_the_attribute_is_no_order(monkeypatch, routine, attribute, failure):
    replace_in(monkeypatch, "pd", to_datetime=lambda column: Dates(failure))
    assert routine([]) is False


@every_routine
@pytest.mark.parametrize("interruption", INTERRUPTIONS, ids=repr)
def test_an_interruption_of_pandas_propagates(monkeypatch, routine, interruption):
    replace_in(monkeypatch, "pd", to_datetime=failing(interruption))
    with pytest.raises(type(interruption)) as excinfo:
        routine([])
    assert excinfo.value is interruption


@every_order
@pytest.mark.parametrize("interruption", INTERRUPTIONS, ids=repr)
def test_an_interruption_of_the_attribute_propagates(monkeypatch, routine, attribute, interruption):
    replace_in(monkeypatch, "pd", to_datetime=lambda column: Dates(interruption))
    with pytest.raises(type(interruption)) as excinfo:
        routine([])
    assert excinfo.value is interruption


@every_routine
def test_a_name_that_is_gone_is_a_failure_like_any_other(monkeypatch, routine):
    monkeypatch.setattr(exportable_utils, "pd", object())
    assert routine(UP) is False
    monkeypatch.delattr(exportable_utils, "pd")
    assert routine(UP) is False
