"""Which columns of numbers are moments since 1970."""

from __future__ import annotations

import random

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils.fc_methods import FC

NAN = float("nan")

MOMENTS = [
    [1609459200, 1612137600, 1614556800],
    [1609459200],
    [1609459200, 1640995200],
    [1600000123, 1600086417],
    [1600000123, 1600000123, 1600086417, None],
    [1600000123.0, NAN, 1600086417.0],
    [1009843200, 1012521600],
    [1041379200, 1672531200],  # 20 years, whole days
    [1700000000123, 1700000100456, 1700000300789],
    [1700000000123456, 1700000100456789],
    [1700000000123456700, 1700000100456789000],
    [1.7e18, 1.7000001e18, 1.70000027e18],
]

NOT_MOMENTS = [
    [],
    [None, NAN],
    [0, 1, 2],
    [1, 1000, 100000],
    [20260131, 20260201],
    [1609459200.5, 1612137600.25],
    ["1609459200", "1612137600"],
    [1609459200, "1612137600"],
    [True, False],
    [float("inf"), 1609459200.0],
    [-1609459200, -1612137600],
    [1609459201],  # one value, no whole minute
    [1609459200, 1609459200000],  # two units
    [1609459200, 5],
    [1000000001, 1000000052, 1000000103],  # serial numbers given by hand
    [2000000001, 2000000052, 2000000103],
    [1700000001, 1700000002, 1700000003, 1700000005],  # serial
    [1200000000, 1500000000, 1800000000],  # amounts
    [2125551234, 2125559876, 3105551234],  # phones
    [123456789, 987654321, 456789123],
    [4006381333931, 5000112637922],  # product codes
    [885909950805, 711719541028],
    [4111111111111111, 5500005555555559],  # cards
    [1234567890123456789, 1310020030040050060 + 7],  # message identifiers
    [10**30, 10**31],
]


@pytest.mark.parametrize("cells", MOMENTS, ids=repr)
def test_moments(cells):
    for column in (cells, tuple(cells), pd.Series(cells), pd.DataFrame({"x": cells})):
        assert FC.is_epoch(column) is True
    assert FC.is_epoch(pd.Series(cells, name="customer_id")) is False


@pytest.mark.parametrize("cells", NOT_MOMENTS, ids=repr)
def test_other_numbers(cells):
    for column in (cells, pd.Series(cells, dtype=object), pd.DataFrame({"x": cells}, dtype=object)):
        assert FC.is_epoch(column) is False


@pytest.mark.parametrize(
    "name, expected",
    [
        ("timestamp", True),
        ("createdAt", True),
        ("event_ts", True),
        ("Unix time", True),
        (("rating", "timestamp"), True),
        (None, False),
        (0, False),
        ("time", False),
        ("rating", False),
        ("timestamp_id", False),
        ("update_count", False),
    ],
)
def test_names_widen_the_window(name, expected):
    """Film ratings of 1997 and 1998: nine digits, recognised only by the column's name."""
    ratings = [881250949, 891717742, 878887116, 880606923]
    assert FC.is_epoch(pd.Series(ratings, name=name)) is expected
    assert FC.is_epoch(pd.DataFrame({name: ratings})) is expected


def test_named_moments_may_be_dense_or_lone_but_must_be_in_range():
    assert FC.is_epoch(pd.Series([1700000001, 1700000002, 1700000003], name="timestamp"))
    assert FC.is_epoch(pd.Series([1700000001], name="timestamp"))
    assert not FC.is_epoch(pd.Series([1, 2, 3], name="epoch"))
    assert not FC.is_epoch(pd.Series([315532799, 1700000001], name="epoch"))
    assert not FC.is_epoch(pd.Series([4102444800], name="epoch"))
    assert not FC.is_epoch(pd.Series(["1700000001"], name="epoch"))


@pytest.mark.parametrize("unit", [1, 10**3, 10**6, 10**9])
@pytest.mark.parametrize("dtype", ["int64", "uint64", "float64"])
def test_logs_of_every_unit(unit, dtype):
    chance = np.random.RandomState(3)
    seconds = 1690000000 + chance.randint(0, 10**7, size=500)
    column = (seconds * np.int64(unit)).astype(dtype)
    assert FC.is_epoch(column) is True
    assert FC.is_epoch(column.reshape(-1, 1)) is True


def test_arbitrary_numbers_are_no_moments():
    """Columns of 50 identifiers of 8 to 19 digits by chance, and those that all start with 1."""
    chance = random.Random(5)
    for _ in range(300):
        digits = chance.randrange(8, 20)
        column = [chance.randrange(10 ** (digits - 1), 10**digits) for _ in range(50)]
        assert FC.is_epoch(column) is False
        column = [chance.randrange(10**9, 2 * 10**9) for _ in range(50)]
        assert FC.is_epoch(column) is False
