"""Arguments as recipes: each side of a comparison gets objects of its own.

A recipe is built once for the model and once for the module. Layouts, read-only flags and objects
shared between arguments are the same on both sides; an array written to by one side is not seen by
the other. Immutable values are shared by both sides.
"""

from __future__ import annotations

import warnings
from typing import Any, Callable, Dict, List, Sequence, Tuple

import numpy as np
import pandas as pd

from .arrays import array_of


class Tagged(np.ndarray):
    """An array subclass without behaviour of its own."""


class Recipe:
    """How to make one argument; `text` is an expression for it."""

    def __init__(
        self, text: str, make: Callable[[Callable[[Any], Any]], Any], values: Sequence[Any] = ()
    ) -> None:
        self.text = text
        self.make = make
        self.values = values

    def __repr__(self) -> str:
        return self.text


def build(value: Any, made: Dict[int, Any]) -> Any:
    """Make the argument; one recipe or container used twice gives one object used twice."""
    if isinstance(value, (Recipe, list, tuple, set, dict)):
        if id(value) not in made:
            made[id(value)] = _make(value, made)
        return made[id(value)]
    return value


def _make(value: Any, made: Dict[int, Any]) -> Any:
    if isinstance(value, Recipe):
        return value.make(lambda inner: build(inner, made))
    if type(value) is dict:
        return {key: build(item, made) for key, item in value.items()}
    if type(value) in (list, tuple, set):
        return type(value)([build(item, made) for item in value])
    return value


def _strided(flat: np.ndarray) -> np.ndarray:
    wide = np.repeat(flat, 2, axis=0)
    return wide[::2]


def _packed(flat: np.ndarray) -> np.ndarray:
    if flat.dtype == object:
        return _strided(flat)
    rows = np.zeros(flat.shape[0], dtype=[("pad", "u1"), ("item", flat.dtype)])
    rows["item"] = flat
    return rows["item"]


def _category_series(flat: np.ndarray) -> pd.Series:
    # A lone surrogate cannot be encoded. Older releases of pandas hash texts as UTF-8: they
    # sometimes make two categories of two equal texts, and then raise.
    for cell in flat.tolist():
        if isinstance(cell, str):
            cell.encode()
    return pd.Series(flat, dtype="category")


def _read_only(flat: np.ndarray) -> np.ndarray:
    flat.flags.writeable = False
    return flat


def _swapped(flat: np.ndarray) -> np.ndarray:
    return flat.astype(flat.dtype.newbyteorder())


def _table(width: int, order: str) -> Callable[[np.ndarray], np.ndarray]:
    def shape(flat: np.ndarray) -> np.ndarray:
        rows = -(-flat.shape[0] // width)
        return np.array(np.resize(flat, (rows, width)), order=order)  # type: ignore

    return shape


LAYOUTS: Dict[str, Callable[[np.ndarray], Any]] = {
    "plain": lambda flat: flat,
    "strided": _strided,
    "reversed": lambda flat: flat[::-1].copy()[::-1],
    "packed": _packed,
    "swapped": _swapped,
    "read_only": _read_only,
    "tagged": lambda flat: flat.view(Tagged),
    "masked": lambda flat: np.ma.MaskedArray(flat),
    "matrix_of_one": lambda flat: flat.reshape(-1, 1),
    "strided_matrix_of_one": lambda flat: _strided(flat).reshape(-1, 1),
    "tagged_matrix_of_one": lambda flat: flat.reshape(-1, 1).view(Tagged),
    "column_of_table": lambda flat: np.array([flat, flat], dtype=flat.dtype).T[:, 1],
    "row": lambda flat: flat.reshape(1, -1),
    "table": _table(2, "C"),
    "fortran_table": _table(2, "F"),
    "read_only_table": lambda flat: _read_only(_table(3, "C")(flat)),
    "cube_of_one": lambda flat: flat.reshape(-1, 1, 1),
    "list": lambda flat: list(flat),
    "series": pd.Series,
    "labelled_series": lambda flat: pd.Series(flat, index=["r%d" % i for i in range(len(flat))]),
    "frame": lambda flat: pd.DataFrame({0: flat}),
    "named_frame": lambda flat: pd.DataFrame({"a": flat}),
    "wide_frame": lambda flat: pd.DataFrame({0: flat, 1: flat}),
    "text_series": lambda flat: pd.Series(flat, dtype="string"),
    "integer_series": lambda flat: pd.Series(flat, dtype="Int64"),
    "category_series": _category_series,
    "text_array": lambda flat: pd.array(flat, dtype="string"),
    "integer_array": lambda flat: pd.array(flat, dtype="Int64"),
    "index": pd.Index,
}
FLAT = ("plain", "strided", "reversed", "packed", "swapped", "read_only", "tagged", "masked")
SINGLE = ("matrix_of_one", "strided_matrix_of_one", "tagged_matrix_of_one", "column_of_table")
TABLES = ("row", "table", "fortran_table", "read_only_table", "cube_of_one")
PANDAS = tuple(name for name in LAYOUTS if name not in FLAT + SINGLE + TABLES + ("list",))


LONGEST_STABLE = 16
TOLD_BY_IDENTITY = (str, int, float, np.str_, np.int64, np.float64)


def _written(cell: Any) -> str:
    """The text of a cell after a mixed column was converted to text."""
    try:
        return str(int(cell)) if isinstance(cell, float) and cell.is_integer() else str(cell)
    except Exception:
        return ""


def one_object_each(cells: List[Any]) -> List[Any]:
    """Replaces objects that differ only in identity with one of them.

    A sort that is not stable returns any of several equal objects. If a mixed column is sorted as
    text, a text equals the number with that text: the number replaces both.
    """
    kept: Dict[Tuple[type, Any], Any] = {}
    written = {_written(cell): cell for cell in cells if not isinstance(cell, str)}

    def the_one(cell: Any) -> Any:
        if type(cell) is str and cell:
            cell = written.get(cell, cell)
        if type(cell) not in TOLD_BY_IDENTITY or cell != cell:
            return cell
        # 0.0 and -0.0 have different keys.
        return kept.setdefault((type(cell), repr(cell) if isinstance(cell, float) else cell), cell)

    return [the_one(cell) for cell in cells]


def column(values: List[Any], dtype: str, layout: str) -> Recipe:
    """A column recipe; with dtype object or the plain layout if the cells do not fit others."""
    for try_dtype, try_layout in ((dtype, layout), ("O", layout), ("O", "plain")):
        recipe = _column(values, try_dtype, try_layout)
        try:
            call((recipe,), {})
        except Exception:
            continue
        return recipe
    return _column([], "O", "plain")


def _column(values: List[Any], dtype: str, layout: str) -> Recipe:
    shape = LAYOUTS[layout]
    text = "column({!r}, {!r}, {!r})".format(values, dtype, layout)

    def make(inner: Callable[[Any], Any]) -> Any:
        cells = [inner(value) for value in values]
        # numpy sorts up to this many cells by insertion, which is stable.
        if len(cells) > LONGEST_STABLE:
            cells = one_object_each(cells)
        return shape(array_of(cells, dtype))

    return Recipe(text, make, values)


def call(args: Tuple[Any, ...], kwargs: Dict[str, Any]) -> Tuple[Tuple[Any, ...], Dict[str, Any]]:
    """Build the arguments of one call."""
    made: Dict[int, Any] = {}
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return (
            tuple(build(value, made) for value in args),
            {name: build(value, made) for name, value in kwargs.items()},
        )
