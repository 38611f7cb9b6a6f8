"""Columns and tables on which both routes of a routine are compared."""

from __future__ import annotations

import random
from typing import Any, Callable, Dict, List

import numpy as np
import pandas as pd
from hypothesis import strategies as st

from .arrays import array_of
from .column_strategies import GROWING, PALETTES, marked, markers
from .recipes import Recipe, call, one_object_each


# Memory layouts of one column.
def _every_other(flat: np.ndarray) -> np.ndarray:
    wide = np.empty(2 * flat.shape[0], dtype=flat.dtype)
    wide[::2], wide[1::2] = flat, flat[::-1]
    return wide[::2]


def _frozen(array: np.ndarray) -> np.ndarray:
    array.flags.writeable = False
    return array


def _in_table(flat: np.ndarray, order: str) -> np.ndarray:
    table = np.empty((flat.shape[0], 3), dtype=flat.dtype, order=order)  # type: ignore[call-overload]
    table[:, 0], table[:, 1], table[:, 2] = flat[::-1], flat, flat
    return table


def _true_by_many_bytes(array: np.ndarray) -> np.ndarray:
    # Like a mask read from a file: any byte but 0 is true.
    if array.dtype != bool:
        return array
    bytes_of_true = 1 + np.arange(array.size).reshape(array.shape) % 255
    return (array * bytes_of_true).astype("u1").view(bool)


SHAPES: Dict[str, Callable[[np.ndarray], np.ndarray]] = {
    "plain": lambda flat: flat,
    "strided": _every_other,
    "reversed": lambda flat: flat[::-1].copy()[::-1],
    "read only": _frozen,
    "one column": lambda flat: flat.reshape(-1, 1),
    "one column in Fortran order": lambda flat: np.array(flat.reshape(-1, 1), order="F"),
    "one strided column": lambda flat: _every_other(flat).reshape(-1, 1),
    "one read-only column": lambda flat: _frozen(flat.reshape(-1, 1)),
    "column of a table": lambda flat: _in_table(flat, "C")[:, 1],
    "column of a Fortran table": lambda flat: _in_table(flat, "F")[:, 1],
    "column of a table, two-dimensional": lambda flat: _in_table(flat, "C")[:, 1:2],
    "true by bytes of any value": _true_by_many_bytes,
    "byte-swapped": lambda flat: flat.astype(flat.dtype.newbyteorder()),
}
# Around the sizes of blocks, of look-ahead and of samples.
LENGTHS = [1, 2, 3, 5, 8, 16, 31, 32, 33, 49, 50, 51, 63, 64, 65, 95, 96, 97, 127, 128, 129, 160,
           255, 256, 257, 300, 400, 1023, 1024, 1025]  # fmt: skip
NUMBER_KINDS = [
    "small integers",
    "integers",
    "floats",
    "whole floats",
    "numbers and missing",
    "numbers",
    "booleans",
    "booleans and missing",
    "numbers beside markers",
    "integers beside markers",
    "numbers of two makes",
]

SHORT = LENGTHS[:16]
# Common prefixes and suffixes of the texts of a column.
STARTS = ["", "", "0", "\u00e9", ".5", "x" * 7, "x" * 8, "x" * 40, "9" * 20, "a\x00", "\u6f22" * 4,
          "\U0001d7d8" * 5, "\ud800", " "]  # fmt: skip


class Twins(Recipe):
    """A column in which equal cells are different objects."""


def twin(value: Any) -> Any:
    """An equal object with another identity, unless the interpreter keeps a single one."""
    if type(value) is str:
        return value[:1] + value[1:] if len(value) > 1 else value
    if type(value) is float:
        return float.fromhex(value.hex())
    return int(str(value)) if type(value) is int and abs(value) < 10**18 else value


def spread(values: List[Any], dtype: str, shape: str, twins: bool = False) -> Recipe:
    """A column recipe; dtype object if the cells do not fit the dtype."""
    if twins:
        values = [twin(value) if i % 2 else value for i, value in enumerate(values)]
    else:
        values = one_object_each(values)
    for kind in (dtype, "O"):
        text = "{}{}: array_of({!r}, {!r})".format("twins " * twins, shape, values, kind)
        recipe = (Twins if twins and kind == "O" else Recipe)(
            text,
            lambda inner, kind=kind: SHAPES[shape](  # type: ignore[misc]
                array_of([inner(value) for value in values], kind)
            ),
            values,
        )
        try:
            call((recipe,), {})
        except Exception:
            continue
        return recipe
    return recipe


@st.composite
def long_columns(draw: Any, kinds: Any = None, lengths: Any = LENGTHS) -> Recipe:
    """A column of one of many lengths, few or all cells distinct, odd cells at its ends."""
    kind = draw(st.sampled_from(sorted(PALETTES) if kinds is None else kinds))
    content, dtypes = PALETTES[kind]
    palette = draw(st.lists(content, min_size=1, max_size=8))
    length = draw(st.sampled_from(lengths + SHORT))
    shuffled = random.Random(draw(st.integers(0, 10**6)))
    if kind in GROWING and draw(st.sampled_from([False, False, True])):
        values = [GROWING[kind](i) for i in range(length)]
        if type(values[0]) is str:
            start, end = draw(st.sampled_from(STARTS)), draw(st.sampled_from(STARTS[:5]))
            values = [start + value + end for value in values]
        values = values[: draw(st.sampled_from([length, length, -(-length // 2)]))]
        values += [shuffled.choice(values) for _ in range(length - len(values))]
        shuffled.shuffle(values)
    else:
        values = [shuffled.choice(palette) for _ in range(length)]
    if draw(st.booleans()):
        places = st.one_of(st.just(length - 1), st.just(0), st.integers(0, length - 1))
        other = PALETTES[draw(st.sampled_from([kind, kind, "text and missing", "anything"]))][0]
        for place in draw(st.lists(places, max_size=3)):
            values[place] = draw(other)
    dtype, shape = draw(st.sampled_from(dtypes)), draw(st.sampled_from(sorted(SHAPES)))
    return spread(values, dtype, shape, draw(st.booleans()))


plain_markers = st.lists(
    st.sampled_from(["?", "", "-", "N/A", "na", "1", "1.5", "a", "\u00e9", None, np.nan]),
    max_size=4,
)
# A number as reference matches equal cells of any type.
number_markers = st.lists(
    st.sampled_from([0, 1, -999, True, 1.0, 2.5, -0.0, 2**53, 2.0**53, 1e300, "?", None, np.nan]),
    min_size=1,
    max_size=4,
)
route_markers = st.one_of(
    plain_markers, number_markers, plain_markers, st.just(["?", "", "-", np.nan]), markers
)


def cases(kinds: Any = None, lengths: Any = LENGTHS) -> Any:
    """A column and references, some of them cells of the column."""
    return marked(long_columns(kinds, lengths), st.one_of(st.none(), route_markers))


# Layouts of a table of some columns.
TABLES: Dict[str, Callable[[np.ndarray], np.ndarray]] = {
    "rows": lambda table: table,
    "columns": np.asfortranarray,
    "transposed": lambda table: table.T,
    "upside down": lambda table: table[::-1],
    "every other column": lambda table: np.repeat(table, 2, axis=1)[:, ::2],
    "read only": lambda table: _frozen(table.copy()),
    "true by bytes of any value": _true_by_many_bytes,
    "byte-swapped": lambda table: table.astype(table.dtype.newbyteorder()),
}


@st.composite
def tables(draw: Any, kinds: Any = None) -> Recipe:
    """A table of the cells of a column, row by row."""
    cells = draw(long_columns(kinds, SHORT))
    width = draw(st.integers(1, 4))
    layout = draw(st.sampled_from(sorted(TABLES)))

    def make(inner: Any) -> np.ndarray:
        flat = inner(cells).reshape(-1)
        return TABLES[layout](flat[: len(flat) // width * width].reshape(-1, width))

    return Recipe("{}, {} wide: {!r}".format(layout, width, cells), make, cells.values)


def frame_of(recipe: Recipe) -> Recipe:
    """The column as the only one of a DataFrame, which keeps its dtype."""

    def make(inner: Callable[[Any], Any]) -> pd.DataFrame:
        column = inner(recipe).reshape(-1)
        kept = column.dtype if column.dtype.kind in "Oiufb" and column.dtype.isnative else None
        return pd.DataFrame({0: column}, dtype=kept)

    return Recipe("frame of {!r}".format(recipe), make)


def framed(columns: Any) -> Any:
    """Frames of such columns, without dates that pandas cannot represent."""

    def fits(recipe: Recipe) -> bool:
        try:
            call((recipe,), {})
        except pd.errors.OutOfBoundsDatetime:
            return False
        return True

    return columns.map(frame_of).filter(fits)


# Memory layouts of a table.
def _wide(table: np.ndarray) -> np.ndarray:
    wide = np.empty((table.shape[0], 2 * table.shape[1]), dtype=table.dtype)
    wide[:, ::2], wide[:, 1::2] = table, table[::-1]
    return wide[:, ::2]


TABLE_SHAPES: Dict[str, Callable[[np.ndarray], np.ndarray]] = {
    "row-major": lambda table: table,
    "column-major": lambda table: np.array(table, order="F"),
    "every other column": _wide,
    "rows reversed": lambda table: table[::-1].copy()[::-1],
    "columns reversed": lambda table: table[:, ::-1].copy()[:, ::-1],
    "read only": _frozen,
    "true by bytes of any value": _true_by_many_bytes,
    "byte-swapped": lambda table: table.astype(table.dtype.newbyteorder()),
}
TABLE_DTYPES = ["f8", "f8", "f4", "i8", "u1", "?", "O", "U3", "f2"]


@st.composite
def number_tables(draw: Any) -> Recipe:
    """A table of numbers with few missing cells; the longest ones take more than one block."""
    dtype, shape = draw(st.sampled_from(TABLE_DTYPES)), draw(st.sampled_from(sorted(TABLE_SHAPES)))
    rows = draw(st.sampled_from([1, 2, 3, 50, 51, 1500, 4200] if dtype[0] == "f" else [1, 2, 51]))
    columns = draw(st.integers(1, 5))
    step = draw(st.sampled_from([0.5, 1]))
    odd = [float("nan"), float("inf"), -0.0, 7.0] if dtype[0] in "fO" else [7, 0]
    places = draw(
        st.lists(
            st.tuples(
                st.one_of(st.just(rows - 1), st.just(0), st.integers(0, rows - 1)),
                st.integers(0, columns - 1),
                st.sampled_from(odd),
            ),
            max_size=4,
        )
    )

    def make(inner: Callable[[Any], Any]) -> np.ndarray:
        numbers = np.arange(rows * columns) % 100 * step
        table = numbers.astype(dtype).reshape(rows, columns)
        for row, column, value in places:
            table[row, column] = value
        return TABLE_SHAPES[shape](table)

    text = "{} table {}x{} of {} by {} with {}".format(shape, rows, columns, dtype, step, places)
    return Recipe(text, make)
