"""Cells, numbers and name of one column."""

from __future__ import annotations

from decimal import Decimal

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils._column_cells import (
    cells_of,
    count_different,
    is_missing,
    name_words,
    numbers_of,
)


@pytest.mark.parametrize(
    "name, words",
    [
        ("lat", "lat"),
        ("pickupLat_1", "pickup lat 1"),
        ("GPSLatitude", "gps latitude"),
        ("distance (km)", "distance km"),
        ("a.b-c/d", "a b c d"),
        ("L\u00c4NGE", "l\u00e4nge"),
        (("site", 3, "lon"), "site lon"),
        ("", ""),
        (5, ""),
        (b"lat", ""),
    ],
)
def test_words_of_a_name(name, words):
    expected = frozenset(words.split())
    assert name_words([1], name) == expected
    assert name_words(pd.Series([1], name="other"), name) == expected
    if not isinstance(name, tuple):
        assert name_words(pd.DataFrame({name: [1]})) == expected
    assert name_words(pd.Series([1], name=name)) == expected


def test_columns_without_a_name():
    for column in ([1], np.array([1]), pd.Series([1]), pd.DataFrame([1]), pd.DataFrame(), None):
        assert name_words(column) == frozenset()


# pandas 1.3 writes to standard error that it found a signalling NaN, and raises nothing.
@pytest.mark.filterwarnings("ignore::pytest.PytestUnraisableExceptionWarning")
@pytest.mark.parametrize(
    "cell",
    [
        None,
        float("nan"),
        np.float32("nan"),
        pd.NA,
        pd.NaT,
        np.datetime64("NaT", "s"),
        np.timedelta64("NaT", "s"),
        Decimal("NaN"),
        Decimal("sNaN"),
    ],
    ids=repr,
)
def test_missing_cells(cell):
    assert is_missing(cell) is True
    assert list(numbers_of([cell, 3])) == [3]


@pytest.mark.parametrize("cell", [0, "", "nan", False, np.inf, [], b"", Decimal(0), 1j], ids=repr)
def test_present_cells(cell):
    assert is_missing(cell) is False


@pytest.mark.parametrize(
    "cells, dtype",
    [
        ([1, 2], "int64"),
        ([1, None], "int64"),
        ([1, 2.5], "float64"),
        ([2**63], "float64"),
        ([Decimal("1.5")], "float64"),
        (np.array([1, 2], dtype="uint8"), "uint8"),
        (np.array([1.5], dtype="float32"), "float32"),
        (np.array([1.5], dtype="longdouble"), "float64"),
    ],
)
def test_dtype_of_numbers(cells, dtype):
    assert numbers_of(cells).dtype == dtype


def test_numbers_too_large_become_infinite():
    assert list(numbers_of([10**400, -(10**400), 0.5])) == [np.inf, -np.inf, 0.5]
    largest = float(np.finfo("longdouble").max)  # infinite where it is wider than a double
    assert list(numbers_of(np.array([np.finfo("longdouble").max]))) == [largest]


@pytest.mark.parametrize("dtype", ["int64", "uint8", "float32", "float64"])
def test_count_of_different_numbers(dtype):
    numbers = np.random.RandomState(1).randint(0, 90, size=300).astype(dtype)
    assert count_different(numbers) == len(set(numbers.tolist()))
    assert count_different(numbers[:1]) == 1


def test_cells_are_not_copied_or_guessed():
    array = np.array(["a", 1, [2]], dtype=object)
    assert np.shares_memory(cells_of(array), array)
    assert np.shares_memory(cells_of(array.reshape(-1, 1)), array)
    assert [type(cell) for cell in cells_of([1, "a", [2]])] == [int, str, list]
