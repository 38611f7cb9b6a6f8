"""The rule of distinct values, and the report printed if they cannot be determined."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import distinct_numbers, objects
from helpers.replacements import Recorder, replace_in
from helpers.values import message_of, names_in_traceback
from quorin_libs.utils.exportable_utils import FCplus

# --- is_num_column_categorical ----------------------------------------------------------------


@pytest.mark.parametrize(
    "rows, distinct, expected",
    [
        (1000, 50, True),
        (400, 50, False),
        (1000, 99, True),
        (1001, 100, False),
        (1001, 101, False),
        (990, 99, False),
        (991, 99, True),
        (100, 10, False),
        (101, 10, True),
        (2, 2, True),
        (19, 2, True),
        (20, 2, True),
        (1, 1, True),
        (29, 1, True),
        (29, 3, True),
        (29, 4, True),
        (30, 4, False),
        (30, 3, False),
        (31, 3, True),
        (29, 5, False),
        (10, 5, False),
        (50, 5, False),
        (51, 5, True),
    ],
)
@pytest.mark.parametrize("make", [np.asarray, list, pd.Series, lambda c: pd.DataFrame({"a": c})])
def test_few_distinct_values_are_categories(rows, distinct, expected, make, capsys):
    assert FCplus.is_num_column_categorical(make(distinct_numbers(rows, distinct))) is expected
    assert capsys.readouterr().out == ""


@pytest.mark.parametrize(
    "rows, distinct, thresholds, expected",
    [
        (40, 20, {"uni_max": 21, "uni_ratio": 0.6}, True),
        (40, 20, {"uni_max": 20, "uni_ratio": 0.6}, False),
        (40, 20, {"uni_max": 20.5, "uni_ratio": 0.6}, True),
        (40, 20, {"uni_max": 21, "uni_ratio": 0.5}, False),
        (40, 20, {"uni_ratio": 1}, True),
        (40, 2, {"uni_max": 0, "uni_ratio": 0}, True),
        (29, 4, {"uni_max": 0}, True),
    ],
)
def test_thresholds(rows, distinct, thresholds, expected):
    column = distinct_numbers(rows, distinct)
    assert FCplus.is_num_column_categorical(column, **thresholds) is expected
    positional = (thresholds.get("uni_max", 100), thresholds.get("uni_ratio", 0.1))
    assert FCplus.is_num_column_categorical(column, *positional) is expected
    assert FCplus.is_num_column_categorical(dfc=column, **thresholds) is expected


def test_the_rows_of_a_matrix_are_counted():
    # Six distinct values in three rows.
    assert FCplus.is_num_column_categorical(np.arange(6).reshape(3, 2)) is False
    assert FCplus.is_num_column_categorical(np.arange(6).reshape(3, 2), 100, 2.5) is True


class Counted:
    """An object with a length; records each read by name."""

    def __init__(self, log, name, *lengths):
        self.log, self.name, self.lengths = log, name, list(lengths)

    def __len__(self):
        self.log.append(self.name)
        return self.lengths.pop(0) if len(self.lengths) > 1 else self.lengths[0]


class Bound:
    """A threshold; records what is compared with it and whether `bool()` of the answer is taken."""

    def __init__(self, log, name, answer):
        self.log, self.name, self.answer = log, name, answer

    def __gt__(self, value):
        self.log.append((self.name, value))
        return self

    def __bool__(self):
        self.log.append(self.name + "?")
        return self.answer


U, D = "uni", "dfc"
BELOW_MAX = [U, D, U, ("max", 4), "max?"]
BELOW_RATIO = [("ratio", 0.25), "ratio?"]


@pytest.mark.parametrize(
    "uni, few, sparse, log",
    [
        ([4], True, True, [*BELOW_MAX, *BELOW_RATIO]),
        ([4, 4, 2], True, False, [*BELOW_MAX, *BELOW_RATIO, U]),
        ([4, 4, 5], True, False, [*BELOW_MAX, *BELOW_RATIO, U, U]),
        ([4], True, False, [*BELOW_MAX, *BELOW_RATIO, U, U, D]),
        ([4], False, True, [*BELOW_MAX, U, U, D]),
        ([4, 4, 5, 1], False, True, [*BELOW_MAX, U, U, D]),
    ],
)
def test_lengths_and_comparisons_in_their_order(monkeypatch, uni, few, sparse, log):
    seen = []
    dfc = Counted(seen, D, 16)
    unique = Recorder(lambda column: Counted(seen, U, *uni))
    replace_in(monkeypatch, "np", unique=unique)
    uni_max, uni_ratio = Bound(seen, "max", few), Bound(seen, "ratio", sparse)
    result = FCplus.is_num_column_categorical(dfc, uni_max, uni_ratio)
    assert seen == log
    assert [type(value) for name, value in filter(lambda e: type(e) is tuple, seen)] == (
        [int, float] if few else [int]
    )
    if few and sparse:
        assert result is uni_ratio
    else:
        assert result is (log[-1] == D or uni == [4, 4, 2])
    args, kwargs = unique.only_call()
    assert len(args) == 1 and args[0] is dfc and kwargs == {}


@pytest.mark.parametrize("rows, expected", [(29, True), (30, False)])
def test_the_length_of_the_column_is_read_again(monkeypatch, rows, expected):
    replace_in(monkeypatch, "np", unique=lambda column: [1, 2, 3])
    assert FCplus.is_num_column_categorical(Counted([], D, 3, rows)) is expected


@pytest.mark.parametrize("args", [(None,), ("a",), (100, None), (100, "a"), (1j,)])
def test_a_threshold_must_compare(args):
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_num_column_categorical(distinct_numbers(10, 5), *args)
    left = 5 if len(args) == 1 else 0.5
    assert str(excinfo.value) == message_of(TypeError, lambda: left < args[-1])
    assert "is_num_column_categorical" in names_in_traceback(excinfo)


def test_the_second_threshold_is_not_consulted_above_the_first():
    assert FCplus.is_num_column_categorical(distinct_numbers(10, 5), 5, None) is False


@pytest.mark.parametrize(
    "empty", [np.array([]), [], "", pd.Series([], dtype=float), np.empty((0, 2))]
)
def test_an_empty_column_has_no_share(empty):
    with pytest.raises(ZeroDivisionError, match="^float division$") as excinfo:
        FCplus.is_num_column_categorical(empty)
    assert names_in_traceback(excinfo)[-1] == "is_num_column_categorical"


def test_a_column_without_length(monkeypatch):
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_num_column_categorical(5)
    assert str(excinfo.value) == message_of(TypeError, len, 5)


# The report if the distinct values cannot be determined.


def printed(*values):
    return "".join("{}\n".format(value) for value in values)


@pytest.mark.parametrize(
    "dfc",
    [
        pd.Series([1, "a"], dtype=object),
        pd.Series([1, "a", None], dtype=object),
        pd.DataFrame({"x": [1, "a"]}),
    ],
)
def test_a_failure_of_pandas_data_is_described_and_raised_again(dfc, capsys):
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_num_column_categorical(dfc)
    assert str(excinfo.value) == message_of(TypeError, np.unique, dfc)
    assert excinfo.value.__context__ is None
    assert excinfo.value.__cause__ is None
    assert "is_num_column_categorical" in names_in_traceback(excinfo)
    assert capsys.readouterr().out == printed(
        "exception " + str(excinfo.value), type(dfc), dfc, dfc.isnull().any()
    )


def test_a_failure_of_an_array_ends_in_another(capsys):
    dfc = objects(1, "a")
    with pytest.raises(AttributeError) as excinfo:
        FCplus.is_num_column_categorical(dfc)
    assert str(excinfo.value) == "'numpy.ndarray' object has no attribute 'isnull'"
    cause = excinfo.value.__context__
    assert type(cause) is TypeError
    assert str(cause) == message_of(TypeError, np.unique, dfc)
    assert excinfo.value.__cause__ is None
    assert capsys.readouterr().out == printed("exception " + str(cause), type(dfc), dfc)


def unique_fails(monkeypatch, failure):
    def unique(column):
        raise failure

    replace_in(monkeypatch, "np", unique=unique)


class Nulls:
    """A column with `isnull()`."""

    def __init__(self, answer):
        self.answer = answer

    def __str__(self):
        return "the column"

    def isnull(self):
        return self

    def any(self):
        if isinstance(self.answer, BaseException):
            raise self.answer
        return self.answer


@pytest.mark.parametrize("failure", [ValueError("v\nw"), Exception(), KeyError("k"), MemoryError()])
def test_the_very_exception_is_raised_again(monkeypatch, failure, capsys):
    unique_fails(monkeypatch, failure)
    with pytest.raises(type(failure)) as excinfo:
        FCplus.is_num_column_categorical(Nulls("any"))
    assert excinfo.value is failure
    assert capsys.readouterr().out == printed(
        "exception " + str(failure), Nulls, "the column", "any"
    )


def test_a_failure_of_the_last_question_takes_its_place(monkeypatch, capsys):
    first, second = ValueError("first"), RuntimeError("second")
    unique_fails(monkeypatch, first)
    with pytest.raises(RuntimeError) as excinfo:
        FCplus.is_num_column_categorical(Nulls(second))
    assert excinfo.value is second
    assert second.__context__ is first
    assert capsys.readouterr().out == printed("exception first", Nulls, "the column")


def test_a_column_that_cannot_be_shown_ends_the_description(monkeypatch, capsys):
    first, second = ValueError("first"), RuntimeError("no text")

    class Dark:
        def __str__(self):
            raise second

    unique_fails(monkeypatch, first)
    with pytest.raises(RuntimeError) as excinfo:
        FCplus.is_num_column_categorical(Dark())
    assert excinfo.value is second
    assert second.__context__ is first
    assert capsys.readouterr().out == printed("exception first", Dark)


@pytest.mark.parametrize("interruption", [KeyboardInterrupt(), SystemExit(), GeneratorExit()])
def test_an_interruption_is_not_described(monkeypatch, interruption, capsys):
    unique_fails(monkeypatch, interruption)
    with pytest.raises(type(interruption)) as excinfo:
        FCplus.is_num_column_categorical(Nulls("any"))
    assert excinfo.value is interruption
    assert capsys.readouterr().out == ""
