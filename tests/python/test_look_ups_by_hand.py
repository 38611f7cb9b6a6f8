"""Look-ups that no row of a table can describe: arguments, results, order of evaluation."""

from __future__ import annotations

import collections
import functools
import sys
import types
from decimal import Decimal

import numpy as np
import pandas as pd
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.arrays import frame, objects
from helpers.comparison import find_routine
from helpers.look_up_table import ROWS, row_id
from helpers.replacements import Overlay, Recorder, record, replace_in
from helpers.values import as_lists
from quorin_libs.utils.exportable_utils import FCplus, numpy_whatis

# numpy's warning about `np.float`, which the oldest numpy still has.
pytestmark = pytest.mark.filterwarnings("ignore:`np.float` is a deprecated alias")

MIXED = objects("a", 1.5, "b")
WORDS = objects("a", "?", "b")


def calls_of(monkeypatch, name, answer, call):
    recorder = Recorder(answer)
    owner, _, attribute = name.rpartition(".")
    if owner == "FCplus":
        monkeypatch.setattr(FCplus, attribute, staticmethod(recorder))
    elif owner:
        monkeypatch.setattr(eu, owner, Overlay(getattr(eu, owner), **{attribute: recorder}))
    else:
        monkeypatch.setattr(eu, attribute, recorder)
    call()
    return recorder.calls


# --- arguments that callees receive -----------------------------------------------------------

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
            lambda: numpy_whatis(WORDS),
            (WORDS,),
            {},
        ),
        (
            "numpy_compute_missing_indicator",
            lambda x, *args, **kwargs: (np.zeros(3, bool), [], []),
            lambda: numpy_whatis(WORDS, ["?"], 5, 0),
            (WORDS, ["?"]),
            {"stop_at_one_missing_value_flag": 5, "debug": 0},
        ),
        (
            "FCplus.is_column_string_in_datetime_format",
            lambda column: False,
            lambda: numpy_whatis(objects("a", "b")),
            (objects("a", "b"),),
            {},
        ),
    ],
)
def test_arguments(monkeypatch, name, answer, call, args, kwargs):
    seen, keywords = calls_of(monkeypatch, name, answer, call)[0]
    assert repr(as_lists(seen)) == repr(as_lists(args))
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
        lambda: numpy_whatis(column),
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


# --- results of replacements ------------------------------------------------------------------


def test_answer_of_a_replaced_routine_is_used(monkeypatch):
    monkeypatch.setattr(eu, "numpy_isin", lambda x, markers: np.array([True, False, True]))
    assert eu.numpy_compute_missing_indicator(WORDS, ["z"])[0].tolist() == [True, False, True]
    assert eu.get_unique_values(WORDS, ["z"]).tolist() == ["?"]
    assert numpy_whatis(objects("1", "x", "2"), ["z"]) == (["z"], "char_str")


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
    assert numpy_whatis(objects("x", "x")) == ([], "int_str")


def test_one_routine_may_stand_in_for_another(monkeypatch):
    monkeypatch.setattr(eu, "isint", eu.isfloat)
    assert numpy_whatis(objects("nan", "nan")) == ([], "int_str")


def test_stand_in_that_is_not_callable(monkeypatch):
    monkeypatch.setattr(eu, "numpy_flatten_column", 5)
    with pytest.raises(TypeError, match="^'int' object is not callable$"):
        eu.numpy_isin(WORDS, ["?"])


def test_date_test_replaced_on_the_class(monkeypatch):
    for answer, expected in [(True, True), (False, False), ("", ""), ([1], True)]:
        stub = staticmethod(lambda column, answer=answer: answer)
        monkeypatch.setattr(FCplus, "is_column_string_in_datetime_format", stub)
        statistics = numpy_whatis(WORDS, ["?"], return_stats_flag=True)[2]
        assert statistics["datetime_column_flag"] == expected
        assert type(statistics["datetime_column_flag"]) is type(expected)


def test_class_of_tests_replaced(monkeypatch):
    stub = types.SimpleNamespace(is_column_string_in_datetime_format=lambda column: 0)
    monkeypatch.setattr(eu, "FCplus", stub)
    assert numpy_whatis(WORDS, ["?"], return_stats_flag=True)[2]["datetime_column_flag"] == 0


class Thing:
    """A value of no known kind; a single one needs no comparison to be sorted."""

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
        numpy_whatis(column)
    replaced = (bytes,) if kind == "char_str" else Thing
    monkeypatch.setattr(eu, name, Overlay(getattr(eu, name), **{attribute: replaced}))
    if kind == "char_str":
        monkeypatch.setattr(eu, "isint", lambda value: False)
        monkeypatch.setattr(eu, "isfloat", lambda value: False)
    assert numpy_whatis(column) == ([], kind)


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


# --- tests of one column and of tables ---------------------------------------------------------


def test_a_deleted_name_in_the_last_question_is_named(monkeypatch, capsys):
    column = pd.Series([1, 2])
    monkeypatch.delattr(eu, "np")
    with pytest.raises(NameError, match="^name 'np' is not defined$"):
        FCplus.is_num_column_categorical(column)
    assert capsys.readouterr().out == "exception name 'np' is not defined\n{}\n{}\n{}\n".format(
        pd.Series, column, False
    )


CHECKED = [row for row in ROWS if row.look_ups[:1] == ("setValueOrDefault",)]


@pytest.mark.parametrize("row", CHECKED, ids=row_id)
def test_the_default_list_is_read_at_each_call(monkeypatch, row):
    routine = find_routine(eu, row.routine)
    markers, put = ["b"], []
    monkeypatch.setattr(eu, "global_missing_values_reference_list", markers)
    choose = Recorder(lambda variable, default: put or default)
    monkeypatch.setattr(eu, "setValueOrDefault", choose)
    whatis = Recorder(lambda column, given: ([], "boolean"))
    monkeypatch.setattr(eu, "numpy_whatis", whatis)
    routine(*row.arguments())
    assert choose.calls == [((None, markers), {})]
    assert choose.calls[0][0][1] is markers
    assert all(args[1] is markers and not kwargs for args, kwargs in whatis.calls)
    put.append("chosen")
    routine(*row.arguments())
    assert whatis.calls[-1][0][1] is put


def test_a_class_of_tests_may_stand_in(monkeypatch):
    asked = []
    monkeypatch.setattr(
        eu,
        "FCplus",
        types.SimpleNamespace(
            is_column_categorical=lambda y, missing_values_reference_list: asked.append(y) or [0],
            is_numerical=lambda y, missing_values_reference_list: asked.append(y) or [],
            is_num_column_categorical=lambda y, uni_max, uni_ratio: (uni_max, uni_ratio),
            check_statistics=lambda *args: args[1:],
            # The classifier calls it.
            is_column_string_in_datetime_format=lambda column: False,
        ),
    )
    assert FCplus.is_numerical("y") is False
    assert FCplus.is_column_not_categorical("y") is False
    assert FCplus.is_dataset_for_classification("y") == [0]
    assert FCplus.find_categorical_columns(np.empty((1, 2))) == [0, 1]
    assert FCplus.find_numerical_columns(np.empty((1, 2))) == []
    assert FCplus.is_column_categorical(np.array([1, 2, 2, 1])) == (100, 0.1)
    assert FCplus.is_column_age(frame(30, 31)) == (40, 20, 0, 100, 2, [1])
    assert len(asked) == 7


def test_a_method_replaced_without_staticmethod_is_called_all_the_same(monkeypatch):
    monkeypatch.setattr(
        FCplus, "is_column_categorical", lambda y, missing_values_reference_list: y == "yes"
    )
    assert FCplus.is_numerical("yes") is False
    assert FCplus.is_column_not_categorical("no") is True


def test_a_counter_of_another_kind(monkeypatch):
    monkeypatch.setattr(eu, "Counter", lambda seq: collections.OrderedDict.fromkeys(seq, 7))
    assert FCplus.getClasses(WORDS) == [("a", 7.0), ("b", 7.0)]


def test_the_integer_test_may_be_the_float_test(monkeypatch):
    assert eu.numpy_isintstr(objects("1.5")) is False
    monkeypatch.setattr(eu, "isint", eu.isfloat)
    assert eu.numpy_isintstr(objects("1.5")) is True


def test_a_classifier_that_is_not_callable(monkeypatch):
    monkeypatch.setattr(eu, "numpy_whatis", 5)
    for row in CHECKED:
        with pytest.raises(TypeError, match="^'int' object is not callable$"):
            find_routine(eu, row.routine)(*row.arguments())


# --- the callee is looked up before the arguments are evaluated --------------------------------


class Turned:
    """A column whose reshape() replaces the test."""

    ndim = 1

    def __init__(self, name):
        self.name = name

    def reshape(self, *shape):
        setattr(FCplus, self.name, staticmethod(lambda *args, **kwargs: False))
        return np.array([1])


@pytest.mark.parametrize("finder, test", [("find_categorical_columns", "is_column_categorical"),
                                          ("find_numerical_columns", "is_numerical")])  # fmt: skip
def test_finders_look_up_their_test_first(monkeypatch, finder, test):
    monkeypatch.setattr(FCplus, test, staticmethod(lambda *args, **kwargs: True))
    assert getattr(FCplus, finder)(Turned(test)) == [0]
    assert getattr(FCplus, finder)(Turned(test)) == []


@pytest.mark.parametrize("name", ["is_dataset_preprocessed", "is_dataset_missing",
                                  "get_dataset_missing_columns", "is_dataset_numeric",
                                  "get_dataset_non_numeric_columns", "is_column_age"])  # fmt: skip
def test_the_classifier_is_looked_up_before_the_column_is_read(monkeypatch, name):
    monkeypatch.delattr(eu, "numpy_whatis")
    table = 5 if name == "is_column_age" else pd.DataFrame({"a": [1]})
    with pytest.raises(NameError, match="name 'numpy_whatis' is not defined") as caught:
        getattr(FCplus, name)(table)
    if sys.version_info >= (3, 10):
        assert caught.value.name == "numpy_whatis"


def test_the_formatter_is_looked_up_before_the_traceback_is_read(monkeypatch):
    monkeypatch.setattr(eu, "traceback", types.SimpleNamespace())
    with pytest.raises(AttributeError, match="format_exception"):
        eu.QSR_raise_exception("text", "Exception", object(), True, False)


class Shapeless:
    """A column whose shape cannot be read."""

    ndim = 1
    dtype = np.dtype(object)

    @property
    def shape(self):
        raise RuntimeError("no shape")


def test_zeros_is_looked_up_before_the_shape_is_read(monkeypatch):
    monkeypatch.setattr(eu, "np", types.SimpleNamespace())
    with pytest.raises(AttributeError, match="zeros"):
        eu.numpy_compute_missing_indicator(Shapeless(), [])


def test_the_date_test_is_looked_up_before_the_sample_is_cut(monkeypatch):
    monkeypatch.delattr(FCplus, "is_column_string_in_datetime_format")
    monkeypatch.setattr(
        eu, "get_unique_values", lambda *args, **kwargs: (Sliceless(["a"]), np.array([1]))
    )
    with pytest.raises(AttributeError, match="is_column_string_in_datetime_format"):
        numpy_whatis(objects("a"), ["?"])


class Sliceless(list):
    """Distinct values that cannot be sliced."""

    shape = (1,)

    def __getitem__(self, index):
        if isinstance(index, slice):
            raise RuntimeError("no slices")
        return list.__getitem__(self, index)


def test_an_unset_result_has_no_context(monkeypatch):
    """The replacement that received the failure raised nothing."""
    monkeypatch.setattr(eu, "QSR_raise_exception", lambda **kwargs: None)
    with pytest.raises(UnboundLocalError) as caught:
        eu.get_unique_values(objects(None, None))
    assert caught.value.__context__ is None


# --- predicates and types of the classifier ---------------------------------------------------


def test_each_text_is_passed_to_isint_and_isfloat(monkeypatch):
    isint, isfloat = record(monkeypatch, "isint"), record(monkeypatch, "isfloat")
    numpy_whatis(objects("1", "2.5", "?", "a"))
    # The question mark after numbers ends the scan before isint() is called with it.
    assert isint.calls == isfloat.calls == [(("1",), {}), (("2.5",), {})]


@pytest.mark.parametrize(
    "isint, isfloat, text, kind",
    [
        (True, False, "a", "int_str"),
        (True, False, "a.", "char_str"),
        (False, True, "a", "char_str"),
        (False, True, "a.", "float_str"),
        (True, True, "a", "int_str"),
        (True, True, ".", "float_str"),
        ("yes", None, "a", "int_str"),
        ([], 1, "a.", "float_str"),
        (False, False, "1", "char_str"),
        (False, False, "1.5", "char_str"),
    ],
)
def test_the_point_decides_with_the_predicates(monkeypatch, isint, isfloat, text, kind):
    record(monkeypatch, "isint", lambda value: isint)
    record(monkeypatch, "isfloat", lambda value: isfloat)
    assert numpy_whatis(objects(text)) == ([], kind)


def test_texts_are_instances_of_six_string_types(monkeypatch):
    replace_in(monkeypatch, "six", string_types=(bytes,))
    with pytest.raises(UnboundLocalError) as excinfo:
        numpy_whatis(objects("1"))
    assert str(excinfo.value) == "local variable 'dtype_str_found' referenced before assignment"


def test_integers_are_instances_of_numbers_integral(monkeypatch):
    replace_in(monkeypatch, "numbers", Integral=Decimal)
    assert numpy_whatis(objects(Decimal("1.5"))) == ([], "int_num")


@pytest.mark.parametrize(
    "replaced, kind",
    [({"integer": Decimal}, "int_num"), ({"bool_": Decimal}, "boolean")],
)
def test_integers_and_booleans_are_instances_of_the_types_of_np(monkeypatch, replaced, kind):
    # With a `float` of its own the overlay does not read numpy's, about which old versions warn.
    replace_in(monkeypatch, "np", float=float, **replaced)
    assert numpy_whatis(objects(Decimal("1.5"))) == ([], kind)


@pytest.mark.parametrize("whole, kind", [(True, "float_int_num"), (False, "float_num")])
def test_floats_are_instances_of_np_float_as_well(monkeypatch, whole, kind):
    class Fixed:
        def is_integer(self):
            return whole

    replace_in(monkeypatch, "np", float=Fixed)
    assert numpy_whatis(objects(Fixed())) == ([], kind)
    assert numpy_whatis(np.array([0.5])) == ([], "float_num")


def test_is_integer_of_the_cell_is_called(monkeypatch):
    class Odd(float):
        def is_integer(self):
            raise RuntimeError("odd")

    with pytest.raises(RuntimeError, match="^odd$"):
        numpy_whatis(objects(Odd(1.0)))
