"""Predicates of one column that use FC or pandas: signs, repeated integers, dates, timestamps."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import object_frame
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list

# Routine, the test of FC that it calls, whether the answer is converted by its bool().
GUARDED = [
    (FCplus.is_column_positive, "is_positive", True),
    (FCplus.is_column_non_negative, "is_non_negative", True),
    (FCplus.is_column_not_all_non_negative, "is_not_all_non_negative", False),
    (FCplus.is_column_lt80pc_unique_int, "is_lt80pc_unique_int", False),
]
every_guarded = pytest.mark.parametrize("predicate, test, converts", GUARDED)
LOOK_AT_THE_FIRST_CELL = [*(row[0] for row in GUARDED), FCplus.is_column_timestamp]
every_look = pytest.mark.parametrize("predicate", LOOK_AT_THE_FIRST_CELL)


def set_fc(monkeypatch, **tests):
    monkeypatch.setattr(exportable_utils, "FC", SimpleNamespace(**tests))


class Truth:
    """An answer that is returned as it is, or converted by `.bool()`."""

    def __init__(self, answer=None):
        self.bool = Recorder(lambda: answer)

    def __bool__(self):
        raise AssertionError("the truth of the answer was taken")


# --- the guard --------------------------------------------------------------------------------


class Text(str):
    pass


@every_look
@pytest.mark.parametrize("cell", ["x", "", "5", Text("x"), np.str_("x")])
def test_a_first_cell_of_text_ends_the_test(monkeypatch, predicate, cell):
    for name in "FC", "pd":
        monkeypatch.delattr(exportable_utils, name)
    assert predicate(object_frame(cell)) is False
    assert predicate(object_frame(cell, 5)) is False


def test_a_column_of_text_is_not_positive(monkeypatch):
    monkeypatch.delattr(exportable_utils, "FC")
    assert FCplus.is_column_positive(pd.DataFrame({"a": ["x", "y"]})) is False


class Column:
    """A column whose values can only be indexed; records the reads."""

    def __init__(self, first=5):
        self.asked, self.first = [], first

    @property
    def values(self):
        self.asked.append("values")
        return self

    def __getitem__(self, index):
        self.asked.append(index)
        return self.first


@every_look
def test_the_first_cell_is_read_once(monkeypatch, predicate):
    set_fc(monkeypatch, **{test: lambda dfc: Truth() for _, test, _ in GUARDED})
    both = SimpleNamespace(
        is_datetime64_ns_dtype=lambda series: True, is_timedelta64_ns_dtype=lambda series: True
    )
    types = SimpleNamespace(dtypes=SimpleNamespace(common=both))
    replace_in(monkeypatch, "pd", core=types)
    for first in 5, "text":
        column = Column(first)
        predicate(column)
        assert column.asked == ["values", (0, 0)]


@every_look
@pytest.mark.parametrize(
    "dfc", [pd.DataFrame({"a": []}), pd.DataFrame(), pd.Series([1, 2]), pd.Series(["x"])]
)
def test_a_frame_with_a_cell_is_needed(monkeypatch, predicate, dfc):
    for name in "FC", "pd":
        monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(IndexError) as excinfo:
        predicate(dfc)
    assert str(excinfo.value) == message_of(IndexError, lambda: dfc.values[0, 0])
    assert predicate.__name__ in names_in_traceback(excinfo)


@every_look
@pytest.mark.parametrize("dfc", [np.array([[1]]), None, 5])
def test_a_frame_has_values(predicate, dfc):
    with pytest.raises(AttributeError) as excinfo:
        predicate(dfc)
    assert str(excinfo.value) == message_of(AttributeError, lambda: dfc.values)


# --- what FC answers --------------------------------------------------------------------------


@every_guarded
@pytest.mark.parametrize("answer", [True, False, None, 0, "", [], object()])
@pytest.mark.parametrize("cells", [(5,), (5, "x"), (None,), (b"x", "x"), (np.nan,), (["x"],)])
def test_fc_decides(monkeypatch, predicate, test, converts, answer, cells):
    truth = Truth(answer)
    question = Recorder(lambda dfc: truth)
    set_fc(monkeypatch, **{test: question})
    dfc = object_frame(*cells)
    assert predicate(dfc) is (answer if converts else truth)
    ((seen,), kwargs) = question.only_call()
    assert seen is dfc and kwargs == {}
    assert truth.bool.calls == [((), {})] * converts


@every_guarded
@pytest.mark.parametrize("answer", [True, None, 1, np.array([True])])
def test_an_answer_without_bool(monkeypatch, predicate, test, converts, answer):
    set_fc(monkeypatch, **{test: lambda dfc: answer})
    if converts:
        with pytest.raises(AttributeError) as excinfo:
            predicate(object_frame(5))
        assert str(excinfo.value) == message_of(AttributeError, lambda: answer.bool)
        assert predicate.__name__ in names_in_traceback(excinfo)
    else:
        assert predicate(object_frame(5)) is answer


@every_guarded
def test_a_failure_of_fc_propagates(monkeypatch, predicate, test, converts):
    failure = KeyboardInterrupt()

    def question(dfc):
        raise failure

    set_fc(monkeypatch, **{test: question})
    with pytest.raises(KeyboardInterrupt) as excinfo:
        predicate(object_frame(5))
    assert excinfo.value is failure


@every_guarded
def test_a_failure_of_the_conversion_propagates(monkeypatch, predicate, test, converts):
    failure = ValueError("two")

    def convert():
        raise failure

    answer = SimpleNamespace(bool=convert)
    set_fc(monkeypatch, **{test: lambda dfc: answer})
    if converts:
        with pytest.raises(ValueError) as excinfo:
            predicate(object_frame(5))
        assert excinfo.value is failure
    else:
        assert predicate(object_frame(5)) is answer


@every_guarded
def test_fc_is_looked_up_behind_the_guard(monkeypatch, predicate, test, converts):
    monkeypatch.setattr(exportable_utils, "FC", type("FC", (), {}))
    with pytest.raises(AttributeError) as excinfo:
        predicate(object_frame(5))
    assert str(excinfo.value) == "type object 'FC' has no attribute '{}'".format(test)
    monkeypatch.delattr(exportable_utils, "FC")
    with pytest.raises(NameError, match="^name 'FC' is not defined$"):
        predicate(object_frame(5))


@pytest.mark.parametrize(
    "cells, expected",
    [
        ([1, 2], [True, True, False, False]),
        ([0, 0, 0, 1], [False, True, False, True]),
        ([-1, 1], [False, False, True, False]),
        ([0.5, 1.5], [True, True, False, False]),
        (["1", "2"], [False, False, False, False]),
    ],
)
def test_columns(cells, expected):
    dfc = pd.DataFrame({"a": cells})
    assert [predicate(dfc) for predicate, _, _ in GUARDED] == expected
    assert [getattr(FCplus(), predicate.__name__)(dfc) for predicate, _, _ in GUARDED] == expected


# --- is_column_timestamp ----------------------------------------------------------------------


class Half:
    """One of two operands of `|`; records the other one."""

    def __init__(self, name, log):
        self.name, self.log = name, log

    def __or__(self, other):
        self.log.append("{}|{}".format(self.name, other.name))
        return self.log

    def __bool__(self):
        raise AssertionError("the truth of an answer was taken")


def set_types(monkeypatch, datetime, timedelta):
    common = SimpleNamespace(is_datetime64_ns_dtype=datetime, is_timedelta64_ns_dtype=timedelta)
    replace_in(monkeypatch, "pd", core=SimpleNamespace(dtypes=SimpleNamespace(common=common)))


def test_both_types_are_tested_and_joined(monkeypatch):
    log = []

    def half(name):
        return Recorder(lambda series: log.append(name) or Half(name, log))

    datetime, timedelta = half("datetime"), half("timedelta")
    set_types(monkeypatch, datetime, timedelta)
    series = object_frame(5)
    assert FCplus.is_column_timestamp(series) is log
    assert log == ["datetime", "timedelta", "datetime|timedelta"]
    for question in datetime, timedelta:
        ((seen,), kwargs) = question.only_call()
        assert seen is series and kwargs == {}


@pytest.mark.parametrize("first", [True, False])
@pytest.mark.parametrize("second", [True, False])
def test_either_type_is_a_timestamp(monkeypatch, first, second):
    second_test = Recorder(lambda series: second)
    set_types(monkeypatch, lambda series: first, second_test)
    assert FCplus.is_column_timestamp(object_frame(5)) is (first or second)
    assert len(second_test.calls) == 1


def test_answers_that_cannot_be_joined(monkeypatch):
    set_types(monkeypatch, lambda series: True, lambda series: "yes")
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_column_timestamp(object_frame(5))
    assert str(excinfo.value) == message_of(TypeError, lambda: True | "yes")


def test_the_tests_of_pandas_itself_may_be_replaced(monkeypatch):
    common = pd.core.dtypes.common
    monkeypatch.setattr(common, "is_datetime64_ns_dtype", lambda series: 4)
    monkeypatch.setattr(common, "is_timedelta64_ns_dtype", lambda series: 3)
    assert FCplus.is_column_timestamp(object_frame(5)) == 7


@pytest.mark.parametrize(
    "dtype, expected",
    [("M8[ns]", True), ("m8[ns]", True), ("M8[D]", False), ("i8", False), ("f8", False)],
)
def test_the_dtype_decides(dtype, expected):
    series = SimpleNamespace(values=np.zeros((1, 1)), dtype=np.dtype(dtype))
    assert FCplus.is_column_timestamp(series) is expected


def test_a_frame_has_no_dtype():
    assert FCplus.is_column_timestamp(pd.DataFrame({"a": pd.to_datetime(["2020-01-01"])})) is False


@pytest.mark.parametrize("path", ["core", "core.dtypes", "core.dtypes.common"])
def test_the_way_to_the_types_is_looked_up(monkeypatch, path):
    holder = last = SimpleNamespace()
    for name in path.split(".")[:-1]:
        setattr(last, name, SimpleNamespace())
        last = getattr(last, name)
    monkeypatch.setattr(exportable_utils, "pd", holder)
    with pytest.raises(AttributeError, match="no attribute '{}'".format(path.split(".")[-1])):
        FCplus.is_column_timestamp(object_frame(5))


# --- is_column_datetime -----------------------------------------------------------------------


@pytest.mark.parametrize("answer", [True, False, None, "", object()])
def test_a_date_is_what_the_routine_of_the_module_takes_for_one(monkeypatch, answer):
    question = record(monkeypatch, "numpy_is_column_datetime", lambda column: answer)
    column = object()
    assert FCplus.is_column_datetime(column) is answer
    assert question.calls == [((column,), {})]


@pytest.mark.filterwarnings("ignore:Could not infer format:UserWarning")
@pytest.mark.parametrize(
    "column, expected",
    [(["2020-01-01"], True), (pd.Series(["2020-01-01", None]), True), (["no date"], False)],
)
def test_dates(column, expected):
    assert FCplus.is_column_datetime(column) is expected
