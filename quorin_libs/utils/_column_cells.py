"""One column, whatever holds it: its cells, its numbers, the words of its name."""

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
    """Return the cells as a one-dimensional array, or None when `column` is not one column.

    A Series, a one-column DataFrame, an array of shape (n,) or (n, 1), a list and a tuple are
    columns. A list is never handed to numpy to guess a type for: numpy would turn the numbers
    beside a text into texts, and complain about nested lists.
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
    # numpy's variable-width text (kind T) knows its own missing object; as objects all is alike.
    return cells.astype(object) if cells.dtype.kind == "T" else cells


def present_cells(column: Any) -> Optional[Array]:
    """Return the cells that are not missing, or None when `column` is not one column."""
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
    """Tell whether one cell is None, NaN, NaT or NA."""
    if cell is None or cell is pd.NA or cell is pd.NaT:
        return True
    if isinstance(cell, Decimal):
        return cell.is_nan()  # comparing a signalling NaN with itself raises
    if isinstance(cell, (float, np.floating)):
        return bool(np.isnan(cell))
    if isinstance(cell, (np.datetime64, np.timedelta64)):
        return bool(np.isnat(cell))
    return False


def numbers_of(column: Any) -> Optional[Array]:
    """Return the numbers of a column without its missing cells.

    Returns
    -------
    numpy.ndarray or None
        Integers or floats; empty when all cells are missing. None when `column` is not one
        column or holds anything that is neither a real number nor missing. Truth values,
        number texts, complex numbers and dates are not numbers here. Integers beyond 64 bits
        become floats, beyond the floats' range infinities.
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
    """Tell whether every number is finite and has no fraction."""
    if numbers.dtype.kind != "f":
        return True
    return bool(np.isfinite(numbers).all() and (numbers == np.floor(numbers)).all())


def count_different(numbers: Array) -> int:
    """Count the different numbers of an array that has some, none of them NaN."""
    # np.unique of numpy 2 hashes integers, which takes many times longer on large columns.
    ascending = np.sort(numbers)
    return 1 + int(np.count_nonzero(ascending[1:] != ascending[:-1]))


def name_words(column: Any, name: Any = None) -> FrozenSet[str]:
    """Return the lower-case words of `name`, or of the name the column carries.

    Words end at anything that is neither letter nor digit and where capitals begin:
    ``"pickupLat_1"`` gives pickup, lat and 1. A name that is no text has no words; the texts
    in a tuple (a name of several levels) count together.
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
