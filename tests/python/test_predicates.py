"""Predicates of one column that call FC: signs, repeated integers, dates, timestamps."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import object_frame, objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, typed
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
def test_a_first_cell_of_text_ends_the_question(monkeypatch, predicate, cell):
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
def test_the_dtype_tells(dtype, expected):
    series = SimpleNamespace(values=np.zeros((1, 1)), dtype=np.dtype(dtype))
    assert FCplus.is_column_timestamp(series) is expected


def test_a_frame_has_no_dtype_to_tell():
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


# --- is_column_missing, is_column_string ------------------------------------------------------


@pytest.mark.parametrize(
    "column, args, missing, text",
    [
        (objects("a", "b"), (), False, True),
        (objects("a", "?"), (), True, True),
        (objects("a", "?"), (["z"],), False, True),
        (objects("a", "?"), (["a"],), True, True),
        (objects("a", "?"), ([],), False, True),
        (objects("?", "-"), (), True, False),
        (objects("1", "?"), (), True, False),
        (objects("1", "2"), (), False, False),
        (objects("1.5"), (), False, False),
        (np.array([1, 2]), (), False, False),
        (np.array([1.5, np.nan]), (None,), True, False),
        (np.array([[1], [-9]]), ([-9],), True, False),
        (pd.Series(["a", "?"], dtype=object), (), True, True),
    ],
)
def test_markers_and_text(column, args, missing, text, capsys):
    before = typed(column)
    assert FCplus.is_column_missing(column, *args) is missing
    assert FCplus.is_column_string(column, *args) is text
    for markers in args:
        keywords = {"missing_values_reference_list": markers, "column": column}
        assert FCplus.is_column_missing(**keywords) is missing
        assert FCplus.is_column_string(**keywords) is text
    assert typed(column) == before
    assert capsys.readouterr().out == ""


CLASSIFIED = [FCplus.is_column_missing, FCplus.is_column_string]
every_classified = pytest.mark.parametrize("predicate", CLASSIFIED)


@every_classified
@pytest.mark.parametrize("markers", [None, [], ["z"], "any object"])
def test_the_classifier_gets_column_and_markers(monkeypatch, predicate, markers):
    whatis = record(monkeypatch, "numpy_whatis", lambda *args: ([], "int_num"))
    column = object()
    assert predicate(column, markers) is False
    args, kwargs = whatis.only_call()
    assert len(args) == 2 and kwargs == {}
    assert args[0] is column
    assert args[1] is (DEFAULT if markers is None else markers)


class Asked:
    """A half of the classifier's answer; records its operations."""

    def __init__(self, answer):
        self.answer, self.asked = answer, []

    def __bool__(self):
        self.asked.append("truth")
        return self.answer

    def __eq__(self, other):
        self.asked.append(other)
        return ["equal"] if self.answer else ""

    __hash__ = None  # type: ignore[assignment]


@pytest.mark.parametrize("answer", [True, False])
@pytest.mark.parametrize(
    "predicate, of_markers, of_kind",
    [
        (FCplus.is_column_missing, ["truth"], []),
        (FCplus.is_column_string, [], ["char_str"]),
    ],
)
def test_one_half_of_the_answer_counts(monkeypatch, predicate, of_markers, of_kind, answer):
    markers, kind = Asked(answer), Asked(answer)
    record(monkeypatch, "numpy_whatis", lambda *args: (markers, kind))
    assert predicate(object()) is answer
    assert markers.asked == of_markers
    assert kind.asked == of_kind


@pytest.mark.parametrize(
    "kind",
    ["missing", "date_str", "int_str", "float_str", "float_num", "int_num", "boolean", "Unknown",
     "CHAR_STR", "char_str ", None],
)  # fmt: skip
def test_only_one_kind_is_text(monkeypatch, kind):
    record(monkeypatch, "numpy_whatis", lambda *args: (["?"], kind))
    assert FCplus.is_column_string(object()) is False
    assert FCplus.is_column_missing(object()) is True


@every_classified
@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        (([],), "not enough values to unpack (expected 2, got 1)"),
        ([[]], "not enough values to unpack (expected 2, got 1)"),
        ("a", "not enough values to unpack (expected 2, got 1)"),
        (([], "int_num", {}), "too many values to unpack (expected 2)"),
        ("abc", "too many values to unpack (expected 2)"),
    ],
)
def test_the_classifier_must_give_a_pair(monkeypatch, predicate, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args: answer)
    with pytest.raises(ValueError) as excinfo:
        predicate(object())
    assert str(excinfo.value) == words
    assert predicate.__name__ in names_in_traceback(excinfo)


@every_classified
@pytest.mark.parametrize("kind", [list, iter])
def test_any_pair_can_be_unpacked(monkeypatch, predicate, kind):
    record(monkeypatch, "numpy_whatis", lambda *args: kind([["?"], "char_str"]))
    assert predicate(object()) is True


# --- is_column_categorical_mult_cats, is_column_not_categorical -------------------------------


@pytest.mark.parametrize(
    "column, markers, many, numerical",
    [
        (objects("a", "b"), None, False, False),
        (objects("a", "b", "c"), None, True, False),
        (objects("a", "a", "a"), None, False, False),
        (np.array([1, 2, 3] * 50), None, True, False),
        (np.array([1, 2] * 50), None, False, False),
        (np.array([0.5, 1.5, 2.5]), None, False, True),
        (np.arange(400) % 50, None, False, True),
        # A marker counts as a distinct value.
        (objects("a", "b", "?"), ["?"], True, False),
        (np.array([1, 2, -9] * 50), [-9], True, False),
    ],
)
def test_categories(column, markers, many, numerical):
    assert FCplus.is_column_categorical_mult_cats(column, markers) is many
    assert FCplus.is_column_not_categorical(column, markers) is numerical
    keywords = {"missing_values_reference_list": markers, "dfc": column}
    assert FCplus.is_column_categorical_mult_cats(**keywords) is many
    assert FCplus.is_column_not_categorical(**keywords) is numerical
    if markers is None:
        assert FCplus.is_column_categorical_mult_cats(column) is many
        assert FCplus.is_column_not_categorical(column) is numerical


def categorical(monkeypatch, answer):
    return record(
        monkeypatch, "is_column_categorical", lambda *args, **kwargs: answer, owner=FCplus
    )


@pytest.mark.parametrize(
    "answer", [False, None, 0, 0.0, "", [], {}, np.bool_(False), np.array([]).tolist()]
)
def test_the_very_false_value_comes_back(monkeypatch, answer):
    categorical(monkeypatch, answer)
    unique = Recorder(np.unique)
    replace_in(monkeypatch, "np", unique=unique)
    assert FCplus.is_column_categorical_mult_cats([1, 2, 3]) is answer
    assert FCplus.is_column_not_categorical([1, 2, 3]) is True
    assert unique.calls == []


@pytest.mark.parametrize("answer", [True, 1, "yes", [0], object()])
@pytest.mark.parametrize("values", range(5))
def test_more_than_two_distinct_values_are_many(monkeypatch, answer, values):
    categorical(monkeypatch, answer)
    unique = Recorder(lambda dfc: range(values))
    replace_in(monkeypatch, "np", unique=unique)
    dfc = object()
    assert FCplus.is_column_categorical_mult_cats(dfc) is (values > 2)
    assert unique.calls == [((dfc,), {})]
    assert FCplus.is_column_not_categorical(dfc) is False


BOTH = [FCplus.is_column_categorical_mult_cats, FCplus.is_column_not_categorical]
every_of_both = pytest.mark.parametrize("predicate", BOTH)


@every_of_both
@pytest.mark.parametrize("markers", [None, [], ["z"]])
def test_the_list_is_passed_by_keyword(monkeypatch, predicate, markers):
    rule = categorical(monkeypatch, False)
    dfc = object()
    predicate(dfc, markers)
    ((seen,), kwargs) = rule.only_call()
    assert seen is dfc
    assert list(kwargs) == ["missing_values_reference_list"]
    assert kwargs["missing_values_reference_list"] is markers


@every_of_both
@pytest.mark.parametrize("answer", [True, False])
def test_the_truth_is_taken_once(monkeypatch, predicate, answer):
    truth = Asked(answer)
    categorical(monkeypatch, truth)
    predicate([1, 2, 3])
    assert truth.asked == ["truth"]


@every_of_both
def test_an_answer_without_a_truth(monkeypatch, predicate):
    answer = np.array([True, False])
    categorical(monkeypatch, answer)
    with pytest.raises(ValueError) as excinfo:
        predicate([1, 2, 3])
    assert str(excinfo.value) == message_of(ValueError, bool, answer)
    assert predicate.__name__ in names_in_traceback(excinfo)


def test_values_that_cannot_be_told_apart(monkeypatch):
    categorical(monkeypatch, True)
    dfc = objects(1, "a")
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_column_categorical_mult_cats(dfc)
    assert str(excinfo.value) == message_of(TypeError, np.unique, dfc)
