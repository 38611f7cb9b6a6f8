"""Arrays made from single cells."""

from __future__ import annotations

from types import SimpleNamespace
from typing import Any, List

import numpy as np
import pandas as pd


def array_of(values: List[Any], dtype: Any = object) -> np.ndarray:
    """A one-dimensional array, also where the values are sequences themselves."""
    if np.dtype(dtype) == object:
        result = np.empty(len(values), dtype=object)
        for i, value in enumerate(values):
            result[i] = value
        return result
    return np.array(values, dtype=dtype)


def objects(*cells: Any) -> np.ndarray:
    """Return a column of dtype object that holds these cells, sequences included."""
    return array_of(list(cells))


def mask(*bits: int) -> np.ndarray:
    """Return a mask of the given 0 and 1."""
    return np.array(bits, dtype=bool)


def table(*columns: Any) -> np.ndarray:
    """Return an object array of these columns."""
    return np.array(columns, dtype=object).T


def frame(*cells: Any) -> pd.DataFrame:
    """Return a frame of one column with the label 0, of the dtype that pandas infers."""
    return pd.DataFrame(list(cells))


def object_frame(*cells: Any) -> pd.DataFrame:
    """Return a frame of one column that holds these cells unchanged."""
    return pd.DataFrame(objects(*cells).reshape(-1, 1))


def distinct_numbers(rows: int, distinct: int) -> np.ndarray:
    """Return a column with this number of rows and of distinct values."""
    return np.arange(rows) % distinct


def holding(values: Any) -> Any:
    """Return a column that has these `values` and no other attribute."""
    return SimpleNamespace(values=values)
