"""All values near a mean and between two bounds, in one of several units."""

from __future__ import annotations

import datetime
from decimal import Decimal
from fractions import Fraction

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import frame, holding, objects
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils.exportable_utils import FCplus

NAN = np.nan


# --- check_statistics -------------------------------------------------------------------------


@pytest.mark.parametrize("shape", [(-1,), (-1, 1), (1, -1)])
@pytest.mark.parametrize(
    "cells, mean, std, low, high, num, factors, expected",
    [
        ([10, 12, 8], 10, 1, 0, 100, 2, [1], True),
        ([10, 12, 8], 10, 1, 0, 100, 1, [1], False),
        ([7], 10, 1, 0, 100, 3, [1], True),
        ([13], 10, 1, 0, 100, 3, [1], True),
        ([13.001], 10, 1, 0, 100, 3, [1], False),
        ([5, 15], 10, 100, 5, 15, 1, [1], True),
        ([4.9], 10, 100, 5, 15, 1, [1], False),
        ([15.1], 10, 100, 5, 15, 1, [1], False),
        ([5], 10, 1, 0, 100, 1, [1, 2], True),
        ([20], 10, 1, 0, 100, 1, [2, 0.5], True),
        ([5], 10, 1, 0, 100, 1, [3, 4], False),
        ([5, 10], 10, 1, 0, 100, 1, [1, 2], False),
        ([NAN, NAN], 10, 1, 0, 100, 1, [1], True),
        ([NAN, 10.0], 10, 1, 0, 100, 1, [1], True),
        ([NAN, 20.0], 10, 1, 0, 100, 1, [1], False),
        ([np.inf], 10, 1, 0, 100, 1, [1], False),
        ([10], NAN, 1, 0, 100, 1, [1], True),
        ([10], 10, 1, NAN, NAN, 1, [1], True),
        ([True], 1, 0, 1, 1, 1, [1], True),
        ([10], 10, 1, 0, 100, 1, (1,), True),
        ([10], 10, 1, 0, 100, 1, [], False),
        ([10], 10, 1, 0, 100, 1, (), False),
    ],
)
def test_all_values_pass_with_one_factor(
    shape, cells, mean, std, low, high, num, factors, expected, capsys
):
    values = np.array(cells).reshape(shape)
    before = typed(values)
    column = holding(values)
    assert FCplus.check_statistics(column, mean, std, low, high, num, factors) is expected
    assert typed(values) == before
    assert capsys.readouterr().out == ""
    if values.ndim == 1:
        series = pd.Series(values)
        assert FCplus.check_statistics(series, mean, std, low, high, num, factors) is expected


def test_arguments_may_be_keywords():
    assert FCplus.check_statistics(
        unit_factors_list=[1], num_stds=1, max_value=5, min_value=0, std_value=1, mean_value=2,
        dfc=pd.DataFrame({"a": [1, 3], "b": [2, 2]}),
    ) is True  # fmt: skip


@pytest.mark.parametrize("shape", [(0,), (0, 1), (2, 0)])
def test_where_there_are_no_values_none_fails(shape):
    assert FCplus.check_statistics(holding(np.empty(shape)), 0, 0, 0, 0, 0, [1]) is True
    assert FCplus.check_statistics(holding(np.empty(shape)), 0, 0, 0, 0, 0, []) is False


def test_factors_may_come_one_by_one_and_no_more_are_taken_than_needed():
    factors = iter([3, 2, 1, None])
    assert FCplus.check_statistics(frame(5), 10, 1, 0, 100, 1, factors) is True
    assert list(factors) == [1, None]


@pytest.mark.parametrize("factors", [None, 1])
def test_factors_that_cannot_be_listed(factors):
    with pytest.raises(TypeError) as excinfo:
        FCplus.check_statistics(frame(5), 10, 1, 0, 100, 1, factors)
    assert str(excinfo.value) == message_of(TypeError, iter, factors)
    assert "check_statistics" in names_in_traceback(excinfo)


# dfc.values is read once.


class Values:
    """The cells of a column, of one or two dimensions; records the reads."""

    def __init__(self, log, *rows):
        self.log, self.rows = log, rows
        two = isinstance(rows[0], tuple)
        self.ndim = 1 + two
        self.shape = (len(rows), len(rows[0])) if two else (len(rows),)

    def __getitem__(self, index):
        self.log.append(index)
        return self.rows[index[0]][index[1]] if self.ndim == 2 else self.rows[index]


GOOD, BAD = 10, 99


@pytest.mark.parametrize(
    "rows, factors, expected, read",
    [
        ((GOOD, GOOD, GOOD), [1], True, [0, 1, 2]),
        ((GOOD, BAD, GOOD), [1], False, [0, 1]),
        ((BAD, GOOD), [1, 1], False, [0, 0]),
        ((BAD, GOOD), [], False, []),
        ((GOOD, GOOD), [0, 1, 2], True, [0, 0, 1]),
        # In two dimensions, the first failure ends a row, and the next row is read.
        (((GOOD, GOOD), (GOOD, GOOD)), [1], True, [(0, 0), (0, 1), (1, 0), (1, 1)]),
        (((BAD, GOOD), (GOOD, GOOD)), [1], False, [(0, 0), (1, 0), (1, 1)]),
        (((GOOD, BAD), (BAD, GOOD)), [1], False, [(0, 0), (0, 1), (1, 0)]),
        (((BAD,), (BAD,), (GOOD,)), [1], False, [(0, 0), (1, 0), (2, 0)]),
        (((BAD,), (GOOD,)), [1, 1], False, [(0, 0), (1, 0)] * 2),
    ],
)
def test_a_failure_ends_the_innermost_loop(rows, factors, expected, read):
    log = []
    column = holding(Values(log, *rows))
    assert FCplus.check_statistics(column, 10, 1, 0, 50, 1, factors) is expected
    assert log == read


def test_the_values_of_a_frame_are_read_once():
    class Column:
        asked = 0

        @property
        def values(self):
            self.asked += 1
            return np.array([1, 2])

    column = Column()
    assert FCplus.check_statistics(column, 1, 1, 0, 9, 1, [5, 1]) is True
    assert column.asked == 1


# Every step is an operator of the values.


class Noted:
    """A quantity that records its operators; comparisons return an object with `__bool__`."""

    def __init__(self, log, name, **truths):
        self.log, self.name, self.truths = log, name, truths

    def made(self, name):
        self.log.append(name)
        return Noted(self.log, name, **self.truths)

    def __mul__(self, other):
        return self.made("{}*{}".format(self.name, other.name))

    def __sub__(self, other):
        return self.made("{}-{}".format(self.name, other.name))

    def __abs__(self):
        return self.made("|{}|".format(self.name))

    def __gt__(self, other):
        return self.made("{}>{}".format(self.name, other.name))

    def __lt__(self, other):
        return self.made("{}<{}".format(self.name, other.name))

    def __bool__(self):
        self.log.append("?")
        return self.truths[self.name]

    # No reflected operator is called.
    __rmul__ = __rsub__ = None


AWAY, ABOVE, BELOW = "|k*x-mean|>num*std", "k*x>max", "k*x<min"
FIRST = ["k*x", "k*x-mean", "|k*x-mean|", "num*std", AWAY, "?"]


@pytest.mark.parametrize(
    "true, log",
    [
        (None, [*FIRST, ABOVE, "?", BELOW, "?"]),
        (BELOW, [*FIRST, ABOVE, "?", BELOW, "?"]),
        (ABOVE, [*FIRST, ABOVE, "?"]),
        (AWAY, FIRST),
    ],
)
@pytest.mark.parametrize("shape", [(1,), (1, 1)])
def test_operators_in_their_order(true, log, shape):
    seen = []
    truths = {name: name == true for name in (AWAY, ABOVE, BELOW)}
    k, x, mean, std, low, high, num = (
        Noted(seen, name, **truths) for name in "k x mean std min max num".split()
    )
    column = holding(objects(x).reshape(shape))
    result = FCplus.check_statistics(column, mean, std, low, high, num, [k])
    assert result is (true is None)
    assert seen == log


def test_the_spread_is_computed_for_every_value():
    log = []
    num, std = Noted(log, "num"), Noted(log, "std")
    num.made = lambda name: log.append(name) or 1
    FCplus.check_statistics(holding(np.array([1, 2])), 1, std, 0, 9, num, [1])
    assert log == ["num*std"] * 2


DAY = datetime.timedelta(days=1)


@pytest.mark.parametrize(
    "cells, mean, std, low, high, factors, expected",
    [
        ([Decimal("1.5")], Decimal(1), Decimal("0.5"), 0, 9, [1], True),
        ([Decimal("1.6")], Decimal(1), Decimal("0.5"), 0, 9, [1], False),
        ([Decimal("0.8")], Decimal(1), Decimal("0.7"), 0, 9, [1, 2], True),
        ([Decimal("NaN")], Decimal(1), Decimal("0.5"), 0, 9, [], False),
        ([Fraction(1, 3)], Fraction(1), Fraction(2, 3), 0, 9, [1], True),
        ([Fraction(1, 3)], 1, 0.5, 0, 9, [1], False),
        ([2 * DAY], DAY, DAY, 0 * DAY, 9 * DAY, [1], True),
        ([2 * DAY], DAY, DAY, 0 * DAY, 9 * DAY, [2], False),
        ([2 * DAY], DAY, 9 * DAY, 5 * DAY, 9 * DAY, [1, 2.0], False),
        ([2 * DAY], DAY, 9 * DAY, 5 * DAY, 9 * DAY, [1, 2.5], True),
        ([2**70, 2**70 + 1], 2**70, 1, 0, 2**71, [1], True),
        ([2**70, 2**70 + 2], 2**70, 1, 0, 2**71, [1], False),
    ],
)
def test_values_of_any_kind(cells, mean, std, low, high, factors, expected):
    for shape in (-1,), (-1, 1):
        column = holding(objects(*cells).reshape(shape))
        assert FCplus.check_statistics(column, mean, std, low, high, 1, factors) is expected


@pytest.mark.parametrize(
    "cell, words",
    [
        (None, lambda: 1 * None),
        ("a", lambda: "a" - 66.4),
        (Decimal(60), lambda: Decimal(60) - 66.4),
        (datetime.date(2020, 1, 1), lambda: 1 * datetime.date(2020, 1, 1)),
        ([60], lambda: [60] - 66.4),
        (66j, lambda: 66j > 107.08),
    ],
)
def test_the_words_of_the_operator_that_fails(cell, words):
    with pytest.raises(TypeError) as excinfo:
        FCplus.check_statistics(holding(objects(cell)), 66.4, 100.0, 0, 107.08, 3, [1])
    assert str(excinfo.value) == message_of(TypeError, words)
    assert names_in_traceback(excinfo)[-1] == "check_statistics"


def test_the_words_of_an_undecided_comparison():
    nan = Decimal("NaN")
    with pytest.raises(ArithmeticError) as excinfo:
        FCplus.check_statistics(holding(objects(nan)), 1, 1, 0, 1, 1, [1])
    assert str(excinfo.value) == message_of(ArithmeticError, lambda: nan > 1)


def test_a_column_has_values():
    for dfc in (np.array([1]), [1], None):
        with pytest.raises(AttributeError) as excinfo:
            FCplus.check_statistics(dfc, 1, 1, 0, 1, 1, [1])
        assert str(excinfo.value) == message_of(AttributeError, lambda: dfc.values)
