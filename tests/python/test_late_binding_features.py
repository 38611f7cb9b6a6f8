"""Names are looked up when a column test or a transform runs, on the module and on the class."""

from __future__ import annotations

import collections
from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.arrays import objects
from helpers.replacements import Looked, Overlay, Recorder
from helpers.values import plain

# numpy's own word on `np.float`, which the oldest numpy still has.
pytestmark = pytest.mark.filterwarnings("ignore:`np.float` is a deprecated alias")

FCplus, DatasetS = eu.FCplus, eu.DatasetS
WORDS = objects("a", "?", "b")
INTEGERS = np.array([1, 2, 2, 1])
TABLE = np.array([["a", 1], ["?", 2]], dtype=object)
FRAME = pd.DataFrame({0: [30, 31]})
SEXES = pd.DataFrame({0: ["m", "f"]})
DATES = ["2020-01-01", "2020-01-02"]


class Held:
    """A table that derives nothing."""

    columns = ()


# A call, made anew each time, and the names that it looks up.
CALLS = {
    "replace": (
        lambda: eu.numpy_replace_values(np.array([[1, 2]]), 0, [1]),
        ["np.empty", "numpy_isin", "np.any", "numpy_putmask", "np.putmask"],
    ),
    "putmask": (lambda: eu.numpy_putmask(INTEGERS, INTEGERS == 1, 0), ["np.putmask"]),
    "digest": (lambda: eu.compress_string("a", "hash"), ["hashlib.md5"]),
    "compress a list": (
        lambda: eu.compress_str_column(["a b", "c"], []),
        ["np.asarray", "pd.isnull", "compress_string"],
    ),
    "compress to digests": (
        lambda: eu.compress_str_column(objects("a", "?"), ["?"], "hash"),
        ["pd.isnull", "compress_string", "np.nan", "hashlib.md5"],
    ),
    "categories": (
        lambda: eu.numpy_get_categories(objects("a b", "c"), [0], ["?"]),
        ["numpy_whatis", "pd.isnull", "compress_string"],
    ),
    "integer text": (lambda: eu.numpy_isintstr(objects("1", "x")), ["isint"]),
    "increasing": (lambda: eu.numpy_is_column_monotonic_increasing(DATES), ["pd.to_datetime"]),
    "decreasing": (lambda: eu.numpy_is_column_monotonic_decreasing(DATES), ["pd.to_datetime"]),
    "dates": (lambda: eu.numpy_is_column_datetime(DATES), ["pd.to_datetime"]),
    "dates, on the class": (
        lambda: FCplus.is_column_datetime(DATES),
        ["numpy_is_column_datetime", "pd.to_datetime"],
    ),
    "distinct values": (lambda: FCplus.is_num_column_categorical(INTEGERS), ["np.unique"]),
    "categorical": (
        lambda: FCplus.is_column_categorical(INTEGERS),
        [
            "setValueOrDefault", "global_missing_values_reference_list", "numpy_whatis",
            "FCplus.is_num_column_categorical", "np.unique",
        ],
    ),
    "categorical with markers": (
        lambda: FCplus.is_column_categorical(objects(1, "?", 2)),
        ["numpy_whatis", "np.asarray", "FCplus.is_num_column_categorical", "np.unique"],
    ),
    "categorical columns": (
        lambda: FCplus.find_categorical_columns(TABLE),
        ["FCplus.is_column_categorical", "numpy_whatis"],
    ),
    "categorical columns of one": (
        lambda: FCplus.find_categorical_columns(INTEGERS),
        ["FCplus.is_column_categorical", "numpy_whatis"],
    ),
    "numerical": (
        lambda: FCplus.is_numerical(INTEGERS),
        ["FCplus.is_column_categorical", "FCplus.is_num_column_categorical"],
    ),
    "numerical columns": (
        lambda: FCplus.find_numerical_columns(TABLE),
        ["FCplus.is_numerical", "FCplus.is_column_categorical", "numpy_whatis"],
    ),
    "numerical columns of one": (
        lambda: FCplus.find_numerical_columns(INTEGERS),
        ["FCplus.is_numerical", "FCplus.is_column_categorical"],
    ),
    "target": (
        lambda: FCplus.is_dataset_for_classification(INTEGERS),
        ["FCplus.is_column_categorical", "FCplus.is_num_column_categorical"],
    ),
    "missing": (
        lambda: FCplus.is_column_missing(WORDS),
        ["setValueOrDefault", "global_missing_values_reference_list", "numpy_whatis"],
    ),
    "string": (
        lambda: FCplus.is_column_string(WORDS),
        ["setValueOrDefault", "global_missing_values_reference_list", "numpy_whatis"],
    ),
    "classes": (
        lambda: FCplus.getClasses(WORDS),
        ["setValueOrDefault", "global_missing_values_reference_list", "numpy_whatis", "Counter"],
    ),
    "height": (lambda: FCplus.is_column_height(FRAME), ["FCplus.check_statistics"]),
    "weight": (lambda: FCplus.is_column_weight(FRAME), ["FCplus.check_statistics"]),
    "age": (
        lambda: FCplus.is_column_age(FRAME),
        [
            "setValueOrDefault", "global_missing_values_reference_list", "numpy_whatis",
            "FCplus.check_statistics",
        ],
    ),
    "positive": (lambda: FCplus.is_column_positive(FRAME), ["FC.is_positive"]),
    "not negative": (lambda: FCplus.is_column_non_negative(FRAME), ["FC.is_non_negative"]),
    "not all not negative": (
        lambda: FCplus.is_column_not_all_non_negative(FRAME),
        ["FC.is_not_all_non_negative"],
    ),
    "repeated": (
        lambda: FCplus.is_column_lt80pc_unique_int(FRAME),
        ["FC.is_lt80pc_unique_int"],
    ),
    "timestamp": (lambda: FCplus.is_column_timestamp(FRAME), ["pd.core"]),
    "many categories": (
        lambda: FCplus.is_column_categorical_mult_cats(objects("a", "b")),
        ["FCplus.is_column_categorical", "np.unique"],
    ),
    "not categorical": (
        lambda: FCplus.is_column_not_categorical(INTEGERS),
        ["FCplus.is_column_categorical"],
    ),
    "kind of target": (lambda: DatasetS.GetTargetType([1.5]), ["FC.is_not_categorical"]),
}  # fmt: skip
for check in (
    FCplus.is_dataset_preprocessed, FCplus.is_dataset_missing,
    FCplus.get_dataset_missing_columns, FCplus.is_dataset_numeric,
    FCplus.get_dataset_non_numeric_columns,
):  # fmt: skip
    for X in WORDS, TABLE:
        CALLS["{} of {}".format(check.__name__, X.ndim)] = (
            lambda check=check, X=X: check(X),
            ["setValueOrDefault", "global_missing_values_reference_list", "numpy_whatis"],
        )

LOOK_UPS = [(case, name) for case, (_, names) in CALLS.items() for name in names]
GLOBALS = sorted({(case, name.partition(".")[0]) for case, name in LOOK_UPS})
# Looked up inside a guarded step, so the failure is no date.
GUARDED = [case for case in CALLS if "pd.to_datetime" in CALLS[case][1]]


def result_of(case):
    """The result of the call, or the class and the first line of the exception, as a text."""
    try:
        return repr(plain(CALLS[case][0]()))
    except Exception as error:
        return repr((type(error), str(error).splitlines()[:1]))


def replace(monkeypatch, name, by=None):
    """Put a stand-in under ``name``: a recorder, an overlay of a module, an equal list."""
    owner, _, attribute = name.partition(".")
    original = getattr(eu, owner)
    if owner == "FCplus":
        stand_in = by or Recorder(getattr(original, attribute))
        monkeypatch.setattr(original, attribute, staticmethod(stand_in))
        return stand_in
    if attribute:
        stand_in = Overlay(original, **{attribute: by} if by else {})
    elif isinstance(original, list):
        stand_in = by or list(original)
    else:
        stand_in = by or Recorder(original)
    monkeypatch.setattr(eu, owner, stand_in)
    return stand_in


def look(*args, **kwargs):
    raise Looked


@pytest.mark.parametrize("case", CALLS)
def test_the_calls_give_a_result(case):
    CALLS[case][0]()


@pytest.mark.parametrize("case, name", LOOK_UPS)
def test_replaced_name_is_used(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        stand_in = replace(patch, name)
        assert result_of(case) == expected
        if isinstance(stand_in, Overlay):
            assert name.partition(".")[2] in stand_in._read
        elif isinstance(stand_in, Recorder):
            assert stand_in.calls
    assert result_of(case) == expected


@pytest.mark.parametrize(
    "case, name", [row for row in LOOK_UPS if row[1] != "global_missing_values_reference_list"]
)
def test_failure_of_a_replaced_name_propagates(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        module = "." in name and not name.startswith("FCplus.")
        replace(patch, name, Looked if module else look)
        with pytest.raises(Looked):
            CALLS[case][0]()
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", GLOBALS)
def test_deleted_name(monkeypatch, capsys, case, name):
    expected = result_of(case)
    text = "name '{}' is not defined".format(name)
    with monkeypatch.context() as patch:
        patch.delattr(eu, name)
        if case in GUARDED and name == "pd":
            assert CALLS[case][0]() is False
        elif case == "distinct values":
            # Looked up inside a guarded step, whose report asks an array what only pandas has.
            check_report(case, text, capsys)
        else:
            with pytest.raises(NameError) as caught:
                CALLS[case][0]()
            assert type(caught.value) is NameError
            assert str(caught.value) == text
    assert result_of(case) == expected


def check_report(case, text, capsys):
    capsys.readouterr()
    with pytest.raises(AttributeError) as caught:
        CALLS[case][0]()
    assert type(caught.value.__context__) is NameError
    assert str(caught.value.__context__) == text
    assert capsys.readouterr().out.startswith("exception " + text + "\n")


@pytest.mark.parametrize(
    "case, name",
    [(case, name.partition(".")[2]) for case, name in LOOK_UPS if name.startswith("FCplus.")],
)
def test_deleted_method(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        patch.delattr(FCplus, name)
        with pytest.raises(AttributeError) as caught:
            CALLS[case][0]()
        assert str(caught.value) == "type object 'FCplus' has no attribute '{}'".format(name)
    assert result_of(case) == expected


def test_a_deleted_name_in_the_last_question_is_named(monkeypatch, capsys):
    column = pd.Series([1, 2])
    monkeypatch.delattr(eu, "np")
    with pytest.raises(NameError, match="^name 'np' is not defined$"):
        FCplus.is_num_column_categorical(column)
    assert capsys.readouterr().out == "exception name 'np' is not defined\n{}\n{}\n{}\n".format(
        pd.Series, column, False
    )


# Names that a call does not come to need not be there.


@pytest.mark.parametrize(
    "call, unneeded",
    [
        (lambda: eu.numpy_replace_values(INTEGERS, 0, []), ["np", "numpy_isin", "numpy_putmask"]),
        (lambda: eu.numpy_replace_values(INTEGERS, 0, [7]), ["numpy_putmask"]),
        (lambda: eu.compress_string("a"), ["hashlib"]),
        (lambda: eu.compress_str_column(INTEGERS, []), ["np", "pd", "compress_string"]),
        (lambda: eu.compress_str_column(objects("a"), []), ["np", "compress_string", "hashlib"]),
        (lambda: eu.numpy_isintstr(objects()), ["isint", "np"]),
        (lambda: FCplus.is_column_sex(SEXES), ["np", "pd", "FCplus", "FC"]),
        (lambda: FCplus.is_column_height(SEXES), ["np", "FCplus"]),
        (lambda: FCplus.is_column_weight(SEXES), ["np", "FCplus"]),
        (lambda: FCplus.is_column_timestamp(SEXES), ["pd"]),
        (lambda: FCplus.is_column_positive(SEXES), ["FC"]),
        (lambda: FCplus.check_statistics(FRAME, 1, 1, 1, 1, 1, [1]), ["np", "pd", "FCplus"]),
        (lambda: FCplus.find_categorical_columns(np.empty((1, 0))), ["FCplus", "numpy_whatis"]),
        (lambda: DatasetS(Held()).AddNewColumns(None), ["pd", "FC", "np"]),
    ],
)
def test_names_that_are_not_needed_may_be_gone(monkeypatch, call, unneeded):
    expected = repr(plain(call()))
    for name in unneeded:
        monkeypatch.delattr(eu, name)
    assert repr(plain(call())) == expected


# The markers in force when a call is made.


CHECKED = [case for case, name in LOOK_UPS if name == "global_missing_values_reference_list"]


@pytest.mark.parametrize("case", CHECKED)
def test_the_default_list_is_that_of_the_moment(monkeypatch, case):
    markers, put = ["b"], []
    monkeypatch.setattr(eu, "global_missing_values_reference_list", markers)
    choose = Recorder(lambda variable, default: put or default)
    monkeypatch.setattr(eu, "setValueOrDefault", choose)
    whatis = Recorder(lambda column, given: ([], "boolean"))
    monkeypatch.setattr(eu, "numpy_whatis", whatis)
    CALLS[case][0]()
    assert choose.calls == [((None, markers), {})]
    assert choose.calls[0][0][1] is markers
    assert all(args[1] is markers and not kwargs for args, kwargs in whatis.calls)
    put.append("chosen")
    CALLS[case][0]()
    assert whatis.calls[-1][0][1] is put


# What stands in for a routine is believed, whatever it is.


def test_a_class_of_tests_may_stand_in(monkeypatch):
    asked = []
    monkeypatch.setattr(
        eu,
        "FCplus",
        SimpleNamespace(
            is_column_categorical=lambda y, missing_values_reference_list: asked.append(y) or [0],
            is_numerical=lambda y, missing_values_reference_list: asked.append(y) or [],
            is_num_column_categorical=lambda y, uni_max, uni_ratio: (uni_max, uni_ratio),
            check_statistics=lambda *args: args[1:],
            # The classifier's own question.
            is_column_string_in_datetime_format=lambda column: False,
        ),
    )
    assert FCplus.is_numerical("y") is False
    assert FCplus.is_column_not_categorical("y") is False
    assert FCplus.is_dataset_for_classification("y") == [0]
    assert FCplus.find_categorical_columns(np.empty((1, 2))) == [0, 1]
    assert FCplus.find_numerical_columns(np.empty((1, 2))) == []
    assert FCplus.is_column_categorical(INTEGERS) == (100, 0.1)
    assert FCplus.is_column_age(FRAME) == (40, 20, 0, 100, 2, [1])
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


def test_one_routine_may_stand_in_for_another(monkeypatch):
    assert eu.numpy_isintstr(objects("1.5")) is False
    monkeypatch.setattr(eu, "isint", eu.isfloat)
    assert eu.numpy_isintstr(objects("1.5")) is True


def test_a_stand_in_that_is_not_callable(monkeypatch):
    monkeypatch.setattr(eu, "numpy_whatis", 5)
    for case in CHECKED:
        with pytest.raises(TypeError, match="^'int' object is not callable$"):
            CALLS[case][0]()
