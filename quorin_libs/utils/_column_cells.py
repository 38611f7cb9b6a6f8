"""The cells, the numbers and the name of a column, for all supported column types."""

from __future__ import annotations

import numbers
import re
from decimal import Decimal
from typing import TYPE_CHECKING, Any, FrozenSet, List, Optional, Sequence

import numpy as np
import pandas as pd

if TYPE_CHECKING:
    Array = np.ndarray[Any, np.dtype[Any]]

_TRUTH_TYPES = (bool, np.bool_)
_WHOLE_TYPES = (int, np.integer)
_REAL_TYPES = (numbers.Rational, float, np.floating, Decimal)
_MAYBE_MISSING_TYPES = (type(None), type(pd.NA), type(pd.NaT), np.datetime64, np.timedelta64)

_CASE_CHANGE = re.compile(r"(?<=[a-z])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])")
_WORD = re.compile(r"[^\W_]+")


def cells_of(column: Any) -> Optional[Array]:
    """Return the cells as a one-dimensional array, or None if `column` is not one column.

    A Series, a one-column DataFrame, an array of shape (n,) or (n, 1), a list and a tuple are
    columns. A list becomes an array of objects: with a dtype inferred by numpy, numbers beside a
    text would become texts, and nested lists would raise.
    """
    if isinstance(column, pd.DataFrame):
        if column.shape[1] != 1:
            return None
        column = column.iloc[:, 0]
    if isinstance(column, (pd.Series, pd.Index, pd.api.extensions.ExtensionArray)):
        column = np.asarray(column)
    elif isinstance(column, (list, tuple)):
        return _object_array(column)
    if not isinstance(column, np.ndarray):
        return None
    if column.ndim == 2 and column.shape[1] == 1:
        column = column[:, 0]
    if isinstance(column, np.ma.MaskedArray):
        column = column.compressed()
    cells = np.asarray(column)
    if cells.ndim == 2 and cells.shape[1] == 1:  # a matrix stays two-dimensional when indexed
        cells = cells[:, 0]
    if cells.ndim != 1:
        return None
    # numpy's variable-width text (kind T) may have its own null.
    return cells.astype(object) if cells.dtype.kind == "T" else cells


def present_cells(column: Any) -> Optional[Array]:
    """Return the cells that are not null, or None if `column` is not one column."""
    cells = cells_of(column)
    if cells is None:
        return None
    kind = cells.dtype.kind
    if kind in "fc":
        return cells[~np.isnan(cells)]
    if kind in "mM":
        return cells[~np.isnat(cells)]
    if kind == "O":
        return cells[~_missing_among(cells)]
    return cells


def is_missing(cell: Any) -> bool:
    """Return whether a cell is None, NaN, NaT or NA."""
    if cell is None or cell is pd.NA or cell is pd.NaT:
        return True
    if isinstance(cell, Decimal):
        return cell.is_nan()  # comparing a signalling NaN raises
    if isinstance(cell, (float, np.floating)):
        return bool(np.isnan(cell))
    if isinstance(cell, (np.datetime64, np.timedelta64)):
        return bool(np.isnat(cell))
    return False


def numbers_of(column: Any) -> Optional[Array]:
    """Return the numbers of a column without its nulls.

    Returns
    -------
    numpy.ndarray or None
        Integers or floats; empty if all cells are null. None if `column` is not one column or
        holds anything that is neither a real number nor null. Truth values, number texts, complex
        numbers and dates are not numbers here. Integers beyond 64 bits become floats, beyond the
        range of floats infinities.
    """
    cells = cells_of(column)
    if cells is None:
        return None
    kind = cells.dtype.kind
    if kind in "iu":
        return cells
    if kind == "f":
        if cells.dtype.itemsize > 8:
            cells = _as_floats(cells)
        return cells[~np.isnan(cells)]
    if kind != "O":
        return None
    types = set(map(type, cells))
    if not all(_may_be_number(kind_of_cell) for kind_of_cell in types):
        return None
    cells = cells[~_missing_among(cells)]
    types = set(map(type, cells))
    if any(issubclass(kind_of_cell, _MAYBE_MISSING_TYPES) for kind_of_cell in types):
        return None
    if all(issubclass(kind_of_cell, _WHOLE_TYPES) for kind_of_cell in types):
        try:
            return np.array(cells.tolist(), dtype=np.int64)
        except OverflowError:
            pass
    floats = _as_floats(cells)
    return floats[~np.isnan(floats)]


def is_whole(numbers: Array) -> bool:
    """Return whether every number is finite and has no fraction."""
    if numbers.dtype.kind != "f":
        return True
    return bool(np.isfinite(numbers).all() and (numbers == np.floor(numbers)).all())


def count_different(numbers: Array) -> int:
    """Return the number of distinct values of a non-empty array without NaN."""
    # Not np.unique: numpy 2 hashes integers, which is many times slower for large columns.
    ascending = np.sort(numbers)
    return 1 + int(np.count_nonzero(ascending[1:] != ascending[:-1]))


def name_words(column: Any, name: Any = None) -> FrozenSet[str]:
    """Return the lower-case words of `name`, by default of the column's own name.

    Words end at characters that are neither letters nor digits and before capitals:
    ``"pickupLat_1"`` has the words pickup, lat and 1. Of a tuple (a name of several levels) the
    words of all texts are returned; any other name has no words.
    """
    if name is None:
        if isinstance(column, pd.DataFrame) and column.shape[1] == 1:
            name = column.columns[0]
        elif isinstance(column, (pd.Series, pd.Index)):
            name = column.name
    if isinstance(name, tuple):
        name = " ".join(part for part in name if isinstance(part, str))
    if not isinstance(name, str):
        return frozenset()
    return frozenset(_WORD.findall(_CASE_CHANGE.sub(" ", name).lower()))


def _object_array(cells: Sequence[Any]) -> Array:
    array = np.empty(len(cells), dtype=object)
    for position, cell in enumerate(cells):
        array[position] = cell
    return array


def _missing_among(cells: Array) -> Array:
    try:
        return np.asarray(pd.isnull(cells))
    except Exception:  # a cell whose comparison raises, such as a signalling NaN
        return np.array([is_missing(cell) for cell in cells], dtype=bool)


def _may_be_number(kind_of_cell: type) -> bool:
    if issubclass(kind_of_cell, _TRUTH_TYPES):
        return False
    return issubclass(kind_of_cell, _REAL_TYPES + _MAYBE_MISSING_TYPES)


def _as_floats(cells: Array) -> Array:
    with np.errstate(all="ignore"):
        try:
            return cells.astype(np.float64)
        except (OverflowError, ValueError, TypeError):
            floats: List[float] = [_as_float(cell) for cell in cells]
            return np.array(floats, dtype=np.float64)


def _as_float(cell: Any) -> float:
    try:
        return float(cell)
    except OverflowError:
        return float("inf") if cell > 0 else float("-inf")
    except (ValueError, TypeError):
        return float("nan")
