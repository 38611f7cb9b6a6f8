"""The native route and the interpreter route of a routine, side by side.

A routine may only answer from a column's memory while every name that it would otherwise look up
stands for what the module bound at start-up. So a name replaced by a pass-through, which changes
no answer, forces the interpreter route, and the same call without it shows what the native route
does.
"""

from __future__ import annotations

import contextlib
import functools
import gc
import io
import random
import re
import sys
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple

import numpy as np
import pandas as pd
from columns import GROWING, PALETTES, marked, markers
from comparison import Tally, find_owner, find_routine, module, outcome, replaced, show_call
from hypothesis import strategies as st
from recipes import Recipe, array_of, call, one_object_each
from stand_ins import Overlay

# What each routine looks up by name, in its own steps and in those of the routines it calls.
FLATTEN = ["numpy_flatten_column", "np"]
MASK = ["indicator_mask", "np", "np.vectorize"]
ISIN = FLATTEN + MASK + ["numpy_isin", "pd", "pd.isnull", "np.any", "np.asarray"]
INDICATOR = ISIN + ["numpy_compute_missing_indicator", "np.zeros"]
UNIQUE = ISIN + ["get_unique_values", "np.unique", "numpy_column_float2str"]
WHATIS = INDICATOR + UNIQUE + [
    "numpy_whatis", "isint", "isfloat", "six", "six.string_types", "numbers", "numbers.Integral",
    "np.nan", "FCplus", "FCplus.is_column_string_in_datetime_format", "FC",
    "FC.is_string_in_datetime_format",
]  # fmt: skip
LISTED = ["setValueOrDefault"]
LOOKED_UP: Dict[str, List[str]] = {
    "indicator_mask": MASK,
    "numpy_isin": ISIN,
    "numpy_compute_missing_indicator": INDICATOR,
    "get_unique_values": UNIQUE,
    "numpy_whatis": WHATIS,
    "numpy_isintstr": ["isint", "numpy_isintstr"],
    "numpy_floatstr2float": ["isfloat", "np", "np.nan", "numpy_floatstr2float"],
    "numpy_boolean2float": ISIN + ["np.nan", "numpy_boolean2float"],
    "numpy_column_float2str": ["pd", "pd.isnull", "np", "numpy_column_float2str"],
    "numpy_putmask": ["np", "np.putmask", "numpy_putmask"],
    "numpy_replace_values": ISIN
    + ["np.empty", "np.putmask", "numpy_putmask", "numpy_replace_values"],
    "compress_str_column": ["compress_string", "hashlib", "hashlib.md5", "pd", "pd.isnull", "np"],
    "FCplus.is_num_column_categorical": ["np", "np.unique"],
    "FCplus.is_column_categorical": WHATIS + LISTED + ["FCplus.is_num_column_categorical"],
    "FCplus.is_column_categorical_mult_cats": WHATIS
    + LISTED
    + ["FCplus.is_num_column_categorical", "FCplus.is_column_categorical"],
    "numpy_get_categories": WHATIS + ["compress_string", "numpy_get_categories"],
    "FCplus.getClasses": WHATIS + LISTED + ["Counter"],
    "FCplus.check_statistics": ["FCplus.check_statistics"],
    "FCplus.is_column_height": ["FCplus", "FCplus.check_statistics"],
    "FCplus.is_column_weight": ["FCplus", "FCplus.check_statistics"],
    "FCplus.is_column_age": WHATIS + LISTED + ["FCplus.check_statistics"],
    "FCplus.is_column_sex": ["pd", "pd.Series", "pd.Series.unique"],
}
DATASET_CHECKS = [
    "is_dataset_preprocessed",
    "is_dataset_missing",
    "get_dataset_missing_columns",
    "is_dataset_numeric",
    "get_dataset_non_numeric_columns",
]
for _check in DATASET_CHECKS:
    LOOKED_UP["FCplus." + _check] = WHATIS + LISTED


FLAG = re.compile("invalid value encountered in (not_)?equal$")


class _Instances(type):
    """Stands for another class wherever instances are told by it."""

    def __instancecheck__(cls, value: Any) -> bool:
        return isinstance(value, cls.real)  # type: ignore[attr-defined]


def _plain_value(dotted: str) -> Any:
    owner, name = find_owner(module, dotted)
    return getattr(owner, name)


def pass_through(dotted: str) -> Any:
    """Another object of the same behaviour as the one that stands under the name."""
    value = _plain_value(dotted)
    if dotted == "np.nan":
        return float("nan")
    if dotted == "six.string_types":
        return value + value
    if dotted == "numbers.Integral":
        return _Instances("Integral", (), {"real": value})
    if dotted in ("np", "pd", "six", "numbers", "hashlib", "FC", "FCplus"):
        return Overlay(value)
    if dotted == "pd.Series":
        return type("Series", (value,), {})
    if dotted == "pd.Series.unique":
        return lambda series: value(series)
    # Called from C without a frame of its own, so that profilers see the interpreter route alone.
    passed = functools.partial(value)
    return staticmethod(passed) if dotted.startswith(("FC.", "FCplus.")) else passed


def without_places(description: Any) -> Any:
    """The description of a result that does not tell one of several equal objects from another.

    Which of them stands for the others is left to numpy's sort, which is not stable.
    """
    if not isinstance(description, (tuple, list)):
        return description
    parts = [without_places(part) for part in description]
    if len(parts) == 3 and parts[0] in (str, float, int):
        parts[1] = None
    return tuple(parts)


def shown(
    name: str,
    args: Tuple[Any, ...],
    kwargs: Dict[str, Any],
    names: Dict[str, Any],
    trace: Any = None,
) -> Dict[str, Any]:
    """All that one call shows while some names are replaced.

    Whether the comparison of a fraction with NaN, which is Python code, leaves the processor's flag
    up for numpy to warn about depends on how warm the interpreter is, whatever the route.
    """
    seen = outcome(module, name, args, kwargs, trace, names)
    if "Fraction(" in repr((args, kwargs)):
        seen["warned"] = [warning for warning in seen["warned"] if not FLAG.match(warning[1])]
    return seen


def compare_routes(
    name: str, by: str, args: Tuple[Any, ...], kwargs: Optional[Dict[str, Any]] = None
) -> Dict[str, Any]:
    """Fail unless both routes show the same; hand back what they show."""
    kwargs = kwargs or {}
    Tally.cases += 1
    plain = shown(name, args, kwargs, {})
    forced = shown(name, args, kwargs, {by: pass_through(by)})
    if any(isinstance(arg, Twins) for arg in args):
        for seen in (plain, forced):
            seen["result"] = without_places(seen.get("result"))
    if plain != forced:
        lines = [show_call(name, args, kwargs)]
        for key in sorted(set(plain) | set(forced)):
            if plain.get(key) != forced.get(key):
                lines.append("  {}".format(key))
                lines.append("    as it stands:        {!r}".format(plain.get(key)))
                lines.append("    {} replaced: {!r}".format(by, forced.get(key)))
        raise AssertionError("\n".join(lines))
    return plain


def events_of(name: str, args: Sequence[Any], by: Optional[str] = None) -> List[Tuple[str, str]]:
    """The calls that a profiler sees while the routine runs, as (event, function)."""
    seen: List[Tuple[str, str]] = []

    def note(frame: Any, event: str, arg: Any) -> None:
        if event == "call":
            seen.append(
                (event, "{}.{}".format(frame.f_globals.get("__name__"), frame.f_code.co_name))
            )
        elif event == "c_call":
            seen.append((event, getattr(arg, "__name__", repr(arg))))

    names = {} if by is None else {by: pass_through(by)}
    with replaced(module, names), contextlib.redirect_stdout(io.StringIO()):
        routine = find_routine(module, name)
        gc.disable()  # Hypothesis hangs a function of its own on the collector.
        try:
            sys.setprofile(note)
            try:
                routine(*args)
            except Exception:
                pass
        finally:
            sys.setprofile(None)
            gc.enable()
    # Switching the profiler off is not the call's.
    return [event for event in seen if event != ("c_call", "setprofile")]


# Shapes and strides in which one column can lie in memory.
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
    # As a mask read from a file of bytes may be.
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
# Edges of blocks, of look-ahead and of the capped samples.
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
# What all texts of a column may have in common at their start or end.
STARTS = ["", "", "0", "\u00e9", ".5", "x" * 7, "x" * 8, "x" * 40, "9" * 20, "a\x00", "\u6f22" * 4,
          "\U0001d7d8" * 5, "\ud800", " "]  # fmt: skip


class Twins(Recipe):
    """A column in which equal cells are different objects."""


def twin(value: Any) -> Any:
    """An equal object of its own, where the interpreter does not keep only one."""
    if type(value) is str:
        return value[:1] + value[1:] if len(value) > 1 else value
    if type(value) is float:
        return float.fromhex(value.hex())
    return int(str(value)) if type(value) is int and abs(value) < 10**18 else value


def spread(values: List[Any], dtype: str, shape: str, twins: bool = False) -> Recipe:
    """A column recipe; content that does not fit the dtype is held as objects."""
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
    """A column of one of many lengths: few distinct values or only such, surprises at its edges."""
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
# Numbers mark cells of any type that equal them.
number_markers = st.lists(
    st.sampled_from([0, 1, -999, True, 1.0, 2.5, -0.0, 2**53, 2.0**53, 1e300, "?", None, np.nan]),
    min_size=1,
    max_size=4,
)
route_markers = st.one_of(
    plain_markers, number_markers, plain_markers, st.just(["?", "", "-", np.nan]), markers
)


def cases(kinds: Any = None, lengths: Any = LENGTHS) -> Any:
    """A column and markers, some of them the column's own cells."""
    return marked(long_columns(kinds, lengths), st.one_of(st.none(), route_markers))


def names_for(routine: str) -> Any:
    return st.sampled_from(sorted(set(LOOKED_UP[routine])))


def objects(*cells: Any) -> np.ndarray:
    return array_of(list(cells))


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
    """A table made of the cells of a column, a row of them at a time."""
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
    """Frames of such columns, without those of dates that pandas has no room for."""

    def fits(recipe: Recipe) -> bool:
        try:
            call((recipe,), {})
        except pd.errors.OutOfBoundsDatetime:
            return False
        return True

    return columns.map(frame_of).filter(fits)


# How the columns of a table can lie in memory.
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
    """A table of numbers, few of its cells missing; long enough to make more than one block."""
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
