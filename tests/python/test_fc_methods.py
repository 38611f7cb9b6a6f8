"""The column tests of class FC: numbers, constancy, targets, and common properties of all tests."""

from __future__ import annotations

import copy
import os
import pickle
import subprocess
import sys
import warnings
from decimal import Decimal
from fractions import Fraction

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils.fc_methods import FC, Verdict

NAN = float("nan")
INF = float("inf")

WITH_VERDICT = ["is_positive", "is_non_negative"]
PLAIN = [
    "is_not_all_non_negative",
    "is_lt80pc_unique_int",
    "is_constant",
    "is_string_in_datetime_format",
    "is_epoch",
    "is_longitude",
    "is_latitude",
    "is_distance",
    "is_not_categorical",
]


def answer(test, column):
    result = getattr(FC, test)(column)
    if test in WITH_VERDICT:
        assert isinstance(result, pd.Series)
        assert len(result) == 1
        result = result.bool()
    assert type(result) is bool
    return result


def containers(cells):
    """The same column in every container that a test takes."""
    as_objects = np.empty(len(cells), dtype=object)
    for position, cell in enumerate(cells):
        as_objects[position] = cell
    yield "list", list(cells)
    yield "tuple", tuple(cells)
    yield "array of objects", as_objects
    yield "array (n, 1)", as_objects.reshape(-1, 1)
    # With the dtype given: some versions of pandas try to read huge integers as dates and fail.
    yield "Series", pd.Series(as_objects, dtype=object)
    index = range(10, 10 + len(cells))
    yield "Series, other index", pd.Series(as_objects, index=index, dtype=object)
    yield "DataFrame", pd.DataFrame({"x": as_objects}, dtype=object)
    if cells and not any(isinstance(cell, int) and abs(cell) > 2**1000 for cell in cells):
        # pandas warns if it cannot infer a format; older versions raise for some
        yield "Series, inferred", pd.Series(list(cells))
        yield "DataFrame, inferred", pd.DataFrame({0: list(cells)})


NUMBER_CASES = [
    # cells, positive, non-negative, some negative
    ([1, 2, 3], True, True, False),
    ([0.5, 1e-300], True, True, False),
    ([0, 1], False, True, False),
    ([0.0, -0.0], False, True, False),
    ([-1, 5], False, False, True),
    ([-0.5], False, False, True),
    ([1, None, 3], True, True, False),
    ([NAN, 2.5], True, True, False),
    ([pd.NA, 2, pd.NaT], True, True, False),
    ([None, -2, NAN], False, False, True),
    ([INF, 1.0], True, True, False),
    ([-INF, 1.0], False, False, True),
    ([10**30, 1], True, True, False),
    ([-(10**400), 1], False, False, True),
    ([10**400, 0.5], True, True, False),
    ([Decimal("0.1"), Decimal("NaN")], True, True, False),
    ([Decimal("-1"), 3], False, False, True),
    ([Fraction(1, 3), 1], True, True, False),
    ([np.float32(0.5), np.int8(3), 2], True, True, False),
    ([], False, False, False),
    ([None, None], False, False, False),
    ([NAN, NAN], False, False, False),
    ([True, True], False, False, False),
    ([1, True], False, False, False),
    (["1", "2"], False, False, False),
    ([1, "2"], False, False, False),
    ([-1, "x"], False, False, False),
    ([b"1"], False, False, False),
    ([1 + 0j, 2 + 0j], False, False, False),
    ([pd.Timestamp("2026-01-31")], False, False, False),
    ([pd.Timedelta(1), pd.Timedelta(2)], False, False, False),
]


@pytest.mark.parametrize("cells, positive, non_negative, some_negative", NUMBER_CASES)
def test_signs(cells, positive, non_negative, some_negative):
    for container, column in containers(cells):
        assert answer("is_positive", column) is positive, container
        assert answer("is_non_negative", column) is non_negative, container
        assert answer("is_not_all_non_negative", column) is some_negative, container


@pytest.mark.parametrize(
    "dtype", ["int8", "int64", "uint8", "uint64", "float16", "float32", "float64", "longdouble"]
)
def test_signs_of_typed_arrays(dtype):
    column = np.array([1, 2, 100], dtype=dtype)
    assert answer("is_positive", column)
    assert answer("is_positive", column.reshape(-1, 1))
    assert answer("is_non_negative", column - column)
    assert not answer("is_positive", column - column)
    assert not answer("is_not_all_non_negative", column)


@pytest.mark.parametrize("dtype", ["Int64", "UInt8", "Float64"])
def test_signs_of_nullable_columns(dtype):
    column = pd.Series([1, None, 3], dtype=dtype)
    assert answer("is_positive", column)
    assert answer("is_positive", column.to_frame())
    assert not answer("is_not_all_non_negative", column)
    assert not answer("is_positive", pd.Series([True, None], dtype="boolean"))


def test_masked_cells_are_missing():
    column = np.ma.MaskedArray([1, -5, 3], mask=[False, True, False])
    assert answer("is_positive", column)
    assert answer("is_positive", column.reshape(-1, 1))


def test_verdict_keeps_bool_on_every_pandas():
    verdict = FC.is_positive(pd.DataFrame({"a": [1, 2]}))
    assert type(verdict) is Verdict
    assert verdict.bool() is True
    assert bool(verdict) is True
    assert bool(FC.is_positive([-1])) is False
    assert verdict.dtype == bool
    for other in (copy.copy(verdict), copy.deepcopy(verdict), pickle.loads(pickle.dumps(verdict))):
        assert other.bool() is True
    assert (~verdict).bool() is False
    for size in (0, 2):
        with pytest.raises(ValueError, match="exactly one element, got {}".format(size)):
            Verdict([True] * size, dtype=bool).bool()


UNIQUE_INT_CASES = [
    ([1, 1, 2, 2, 3], True),
    ([1, 2, 3, 4], False),
    ([1, 1, 2, 3, 4], False),  # exactly 80 per cent
    ([1, 1, 2, 3, 4, 5, 6, 7, 8, 8, 9], False),  # 9 of 11
    ([1, 1, 2, 2, 3, 4, 5, 6, 7], True),  # 7 of 9
    ([7, 7], True),
    ([7], False),
    ([1.0, 1.0, 2.0, None], True),
    ([1, 1, None, None, None], True),
    ([1, 2, None, None, None], False),
    ([1.5, 1.5, 2.0, 2.0], False),
    ([INF, INF, INF], False),
    ([True, True, False, False], False),
    (["1", "1", "1"], False),
    ([10**30, 10**30, 10**30], True),
    ([], False),
    ([None, NAN], False),
]


@pytest.mark.parametrize("cells, expected", UNIQUE_INT_CASES)
def test_is_lt80pc_unique_int(cells, expected):
    for container, column in containers(cells):
        assert answer("is_lt80pc_unique_int", column) is expected, container


CONSTANT_CASES = [
    ([1, 1, 1], True),
    ([1, 1.0], True),
    ([1, 2], False),
    (["a", "a", None], True),
    (["a", "b"], False),
    (["a", "A"], False),
    (["1", 1], False),
    ([NAN, 3.5, 3.5], True),
    ([None, NAN, pd.NaT], True),
    ([], True),
    ([True, True], True),
    ([True, False], False),
    ([INF, INF], True),
    ([INF, -INF], False),
    ([b"x", b"x"], True),
    ([b"x", "x"], False),
    ([[1, [2]], [1, [2]]], True),
    ([[1, 2], [1, 3]], False),
    ([{"a": 1}, {"a": 1}], True),
    ([np.array([1, 2]), np.array([1, 2])], True),
    ([np.array([1, 2]), np.array([1, 2, 3])], False),
    ([np.array(["x"]), np.array([1])], False),
    (["\ud800", "\ud800"], True),
    (["\ud800", "\udfff"], False),
    ([10**400, 10**400], True),
    ([pd.Timestamp("2026-01-31"), pd.Timestamp("2026-01-31")], True),
    ([pd.Timestamp("2026-01-31"), pd.Timestamp("2026-02-01")], False),
]


@pytest.mark.parametrize("cells, expected", CONSTANT_CASES)
def test_is_constant(cells, expected):
    for container, column in containers(cells):
        assert answer("is_constant", column) is expected, container


@pytest.mark.parametrize(
    "column, expected",
    [
        (np.array([3, 3], dtype="uint8"), True),
        (np.array([3.0, np.nan]), True),
        (np.array([1 + 1j, np.nan]), True),
        (np.array(["a", "a"]), True),
        (np.array(["a", "ab"]), False),
        (np.array([b"a", b"a"]), True),
        (np.array(["2026-01-31", "NaT"], dtype="datetime64[D]"), True),
        (np.array(["2026-01-31", "2026-02-01"], dtype="datetime64[ns]"), False),
        (np.array([1, 1, "NaT"], dtype="timedelta64[s]"), True),
        (np.array([(1, 2), (1, 2)], dtype="i4,i4"), True),
        (np.array([(1, 2), (1, 3)], dtype="i4,i4"), False),
        (pd.Series(["a", "a", None], dtype="category"), True),
        (pd.Series(["a", "b"], dtype="category"), False),
        (pd.Series(["a", None, "a"], dtype="string"), True),
        (pd.Series(pd.to_datetime(["2026-01-31"] * 2).tz_localize("UTC")), True),
        (pd.Index([4, 4]), True),
    ],
)
def test_is_constant_of_typed_columns(column, expected):
    assert answer("is_constant", column) is expected


NOT_CATEGORICAL_CASES = [
    ("measured", [1.5, 2.25, 9.0], True),
    ("one fraction", [1.0] * 50 + [1.5], True),
    ("infinite", [1.0, 2.0, INF] * 20, True),
    ("two labels", [0, 1] * 40, False),
    ("two labels as floats", [0.0, 1.0, 1.0, None], False),
    ("two large labels", [10**18, 5], False),
    ("two labels in many rows", [3, 4] * 500, False),
    ("three labels in few rows", [0, 1, 2], False),
    ("four labels in 29 rows", [0, 1, 2, 3] * 7 + [0], False),
    ("five labels in 29 rows", [0, 1, 2, 3, 4] * 5 + [0] * 4, True),
    ("three labels in 30 rows, a tenth exactly", [0, 1, 2] * 10, True),
    ("three labels in 31 rows", [0, 1, 2] * 10 + [0], False),
    ("ten digits as floats", [float(digit) for digit in range(10)] * 20, False),
    ("99 labels", list(range(99)) * 11, False),
    ("100 labels", list(range(100)) * 11, True),
    ("all different", list(range(60)), True),
    ("missing cells do not count as rows", [0, 1, 2] + [None] * 100, False),
    ("texts", ["a", "b", "c"], False),
    ("number texts", ["1.5", "2.5", "3.5"], False),
    ("truth values", [True, False, True], False),
    ("numbers beside a text", [1.5, 2.5, "x"], False),
    ("dates", [pd.Timestamp(day * 10**15) for day in range(50)], False),
    ("decimals", [Decimal("1.5"), Decimal("2.5"), Decimal("3")], True),
    ("constant", [7.0] * 40, False),
    ("nothing", [], False),
    ("nothing but missing", [None, NAN], False),
]


@pytest.mark.parametrize(
    "cells, expected",
    [case[1:] for case in NOT_CATEGORICAL_CASES],
    ids=[case[0] for case in NOT_CATEGORICAL_CASES],
)
def test_is_not_categorical(cells, expected):
    for container, column in containers(cells):
        assert answer("is_not_categorical", column) is expected, container


def test_pandas_categories_are_categorical():
    categories = pd.Series([1.5, 2.5, 3.5, 4.5], dtype="category")
    assert not answer("is_not_categorical", categories)
    assert not answer("is_not_categorical", categories.to_frame())
    assert not answer("is_not_categorical", categories.values)
    assert answer("is_not_categorical", categories.astype(float))


class Hostile:
    """Raises from every operation."""

    def __eq__(self, other):
        raise RuntimeError("no")

    def __hash__(self):
        raise RuntimeError("no")

    def __bool__(self):
        raise RuntimeError("no")

    def __float__(self):
        raise RuntimeError("no")


def odd_columns():
    yield "bytes", [b"2026-01-31", b"1"]
    yield "bytes array", np.array([b"2026-01-31", b"x"])
    yield "nested lists", [[1, 2], [3, [4]]]
    yield "lists of one", [[1], [2]]
    yield "unequal lists", [[1], [2, 3], "a"]
    yield "arrays", [np.arange(3), np.arange(4), None]
    yield "mappings and sets", [{"a": 1}, {2}, frozenset()]
    yield "mixture", [1, "a", 2.5, None, True, b"x", (1,), Decimal("1"), pd.NaT]
    yield "decimals", [Decimal("1.5"), Decimal("Infinity"), Decimal("1e999999")]
    yield "signalling NaN", [Decimal("sNaN"), 1.5, 2]
    yield "huge integers", [10**5000, -(10**5000), 1]
    yield "huge fractions", [Fraction(10**5000, 3), 0.5]
    yield "lone surrogates", ["\ud800", "2026-01-\udfff", "\udfff"]
    yield "null characters", ["\0", "2026-01-31\0"]
    yield "infinities", [INF, -INF, NAN]
    yield "empty texts", ["", " ", "\t\n"]
    yield "long texts", ["1" * 100000, "2026-" * 50000, "Jan " * 50000]
    yield "other digits", ["\u0661\u0662/\u0661/\u0662\u0660\u0662\u0666", "\u00b2\u00b2"]
    yield "hostile", [Hostile(), Hostile(), "2026-01-31"]
    yield "hostile after dates", ["2026-01-31"] * 40 + [Hostile()] + ["2026-01-31"] * 40
    yield "lists after dates", ["2026-01-31"] * 40 + [[1]] + ["2026-01-31"] * 40
    yield "types and functions", [int, len, Ellipsis, NotImplemented]
    yield "pandas in cells", [pd.Series([1, 2]), pd.DataFrame({"a": [1]})]
    yield "periods", pd.Series(pd.period_range("2026-01", periods=3, freq="D"))
    yield "intervals", pd.Series(pd.interval_range(0, 3))
    yield "sparse", pd.Series(pd.arrays.SparseArray([1.0, np.nan, 3.0]))
    yield "dates with zone", pd.Series(pd.to_datetime(["2026-01-31", None]).tz_localize("UTC"))
    yield "spans", pd.Series(pd.to_timedelta([1, None], unit="s"))
    yield "NaT arrays", np.array(["NaT", "NaT"], dtype="datetime64[ns]")
    yield "numpy dates in objects", [np.datetime64("NaT", "s"), np.timedelta64(1, "s")]
    yield "records", np.array([(1, 2.0)], dtype="i4,f8")
    yield "void", np.zeros(2, dtype="V4")
    yield "complex", np.array([1j, np.nan])
    yield "float16", np.array([6e4, -6e4, np.inf], dtype="float16")
    yield "longdouble", np.array([np.finfo("longdouble").max, 1.5], dtype="longdouble")
    yield "uint64", np.array([2**64 - 1, 0], dtype="uint64")
    yield "least int64", np.array([-(2**63), 2**63 - 1])
    yield "read-only", np.broadcast_to(np.array("2026-01-31"), (5,))
    yield "big-endian", np.array([1, 2, 3], dtype=">i8")
    yield "masked entirely", np.ma.masked_all(3)
    yield "matrix", np.ones((3, 1)).view(np.matrix)
    yield "names of all kinds", pd.Series([1, 2], name=("lat", 3, None, "x"))
    yield "repeated names", pd.concat([pd.Series([1, 2], name="a")], axis=1)
    for size in (0, 1):
        yield "empty of kind {}".format(size), pd.DataFrame({"a": [None] * size})
    for dtype in ("O", "f8", "i8", "U3", "S3", "M8[ns]", "?"):
        yield "empty " + dtype, np.array([], dtype=dtype)
    yield "empty column", np.empty((0, 1))


ODD = list(odd_columns())


# pandas 1.3 writes to standard error that it found a signalling NaN, and raises nothing.
@pytest.mark.filterwarnings("ignore::pytest.PytestUnraisableExceptionWarning")
@pytest.mark.parametrize("test", WITH_VERDICT + PLAIN)
@pytest.mark.parametrize("column", [case[1] for case in ODD], ids=[case[0] for case in ODD])
def test_nothing_raises_or_warns(test, column):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        answer(test, column)
        if test in ("is_longitude", "is_latitude"):
            for name in ("lat", "longitude", "", 3, None, ("lon", 1), b"lat", NAN, Hostile()):
                assert type(getattr(FC, test)(column, name)) is bool


@pytest.mark.parametrize("test", WITH_VERDICT + PLAIN)
@pytest.mark.parametrize(
    "no_column",
    [
        None,
        1,
        "2026-01-31",
        {"a": 1},
        object(),
        np.array("2026-01-31"),
        np.ones((2, 2)),
        np.ones((1, 2, 1)),
        np.array([["2026-01-31", "2026-01-31"]]),
        pd.DataFrame({"a": [1], "b": [1]}),
        pd.DataFrame(),
    ],
    ids=lambda value: type(value).__name__,
)
def test_what_is_no_column_is_false(test, no_column):
    assert answer(test, no_column) is False


@pytest.mark.parametrize("test", WITH_VERDICT + [test for test in PLAIN if test != "is_constant"])
def test_columns_without_values_are_false(test):
    for container, column in containers([]):
        assert answer(test, column) is False, container
    for container, column in containers([None, NAN, pd.NaT, pd.NA]):
        assert answer(test, column) is False, container


@pytest.mark.parametrize("test", WITH_VERDICT + PLAIN)
def test_columns_are_left_as_they_are(test):
    cells = ["2026-01-31", None, 3, NAN, [1]]
    array = np.empty(5, dtype=object)
    array[:] = cells
    frame = pd.DataFrame({"a": array.copy()})
    answer(test, array)
    answer(test, frame)
    assert all(one is other for one, other in zip(array, cells))
    assert all(one is other for one, other in zip(frame["a"].tolist(), cells))
    assert list(frame.columns) == ["a"]


def test_import_needs_numpy_and_pandas_only():
    code = (
        "import sys, numpy, pandas; before = set(sys.modules);"
        "import quorin_libs.utils.fc_methods;"
        "print(sorted(n for n in set(sys.modules) - before if not n.startswith('quorin_libs')))"
    )
    environment = dict(os.environ, PYTHONPATH=os.pathsep.join(filter(None, sys.path)))
    output = subprocess.check_output([sys.executable, "-c", code], env=environment)
    assert output.decode().strip() == "[]"
