"""Columns to time on: kind of cell, share of missing, number of distinct values, memory order."""

from __future__ import annotations

import functools
from typing import Any, Callable, NamedTuple, Optional

import numpy as np

# The marker list for the routines.
MARKERS = ["?", "", "-", np.nan]

TABLE_WIDTH = 8

# The share of cells with the marker that is not listed, or with a float among words.
ODD_SHARE = 0.1


class ColumnSpec(NamedTuple):
    """The properties of a column, but for its length.

    `order` is that of the objects in memory: "fresh" in row order, "shuffled" scattered, "shared"
    few objects that many rows point to.
    """

    kind: str
    missing: float = 0.1
    distinct: Optional[int] = None
    order: str = "fresh"

    @property
    def label(self) -> str:
        """The part of a case's name for its column: the kind and properties that are no default."""
        defaults = self._field_defaults
        parts = [self.kind]
        if self.missing != defaults["missing"]:
            parts.append("missing={:g}".format(self.missing))
        if self.distinct != defaults["distinct"]:
            parts.append("distinct={}".format(self.distinct))
        if self.order != defaults["order"]:
            parts.append(self.order)
        return "/".join(parts)


class Kind(NamedTuple):
    """A function that makes values, the markers among them, and the dtype of the column."""

    values: Callable[[Any, int], Any]
    holes: tuple[Any, ...] = ()
    dtype: Any = object
    counted: bool = True  # whether the number of distinct values can be chosen


def _words(rng: Any, rows: int) -> Any:
    letters = rng.integers(97, 123, (rows, 12)).astype(np.uint32)
    lengths = rng.integers(4, 13, rows)
    # Trailing zeros end a fixed-width text: words of unequal length.
    letters[np.arange(12) >= lengths[:, None]] = 0
    return np.ascontiguousarray(letters).view("U12").ravel()


def _labels(rng: Any, rows: int) -> Any:
    words = _words(rng, rows)
    return np.char.add(np.char.add(words, " "), words[::-1])


def _integer_text(rng: Any, rows: int) -> Any:
    return rng.integers(0, 1_000_000, rows).astype("U7")


def _float_text(rng: Any, rows: int) -> Any:
    return np.array([repr(number) for number in rng.random(rows).round(4).tolist()])


def _marker_text(rng: Any, rows: int) -> Any:
    return np.where(rng.random(rows) < ODD_SHARE, "*", _integer_text(rng, rows))


def _mixed(rng: Any, rows: int) -> Any:
    cells = _words(rng, rows).astype(object)
    odd = rng.random(rows) < ODD_SHARE
    cells[odd] = rng.random(int(odd.sum())).astype(object)
    return cells


def _integers(rng: Any, rows: int) -> Any:
    return rng.integers(0, 1_000_000, rows)


def _heights(rng: Any, rows: int) -> Any:
    # Inches, all within the limits of the detector, so that it reads every value.
    return np.clip(rng.normal(66.4, 2.5, rows), 58.0, 75.0)


def _sexes(rng: Any, rows: int) -> Any:
    return np.array(["female", "male"])[rng.integers(0, 2, rows)]


_TEXT_HOLES = ("?", "", np.nan)

KINDS = {
    "words": Kind(_words, _TEXT_HOLES),
    "labels": Kind(_labels, _TEXT_HOLES),
    "integer_text": Kind(_integer_text, _TEXT_HOLES),
    "float_text": Kind(_float_text, _TEXT_HOLES),
    "marker_text": Kind(_marker_text, _TEXT_HOLES),
    "mixed": Kind(_mixed, _TEXT_HOLES),
    "U": Kind(_words, ("?", ""), "U12"),
    "U_labels": Kind(_labels, ("?", ""), "U25"),
    "U_integer_text": Kind(_integer_text, ("?", ""), "U7"),
    "float64": Kind(lambda rng, rows: rng.random(rows), (np.nan,), np.float64),
    "float64_whole": Kind(
        lambda rng, rows: _integers(rng, rows).astype(float), (np.nan,), np.float64
    ),
    "float32": Kind(lambda rng, rows: rng.random(rows), (np.nan,), np.float32),
    "int64": Kind(_integers, (), np.int64),
    "bool": Kind(lambda rng, rows: rng.random(rows) < 0.5, (), np.bool_, counted=False),
    "object_floats": Kind(lambda rng, rows: rng.random(rows), (np.nan,)),
    "object_ints": Kind(_integers, ("?",)),
    "heights": Kind(_heights, (np.nan,), np.float64),
    "sexes": Kind(_sexes, (), object, counted=False),
}

# Two-dimensional kinds, column by column.
TABLES = {
    "object_table": (
        "words",
        "integer_text",
        "float_text",
        "labels",
        "object_floats",
        "object_ints",
        "words",
        "integer_text",
    ),
    "float_table": ("float64", "float64_whole") * (TABLE_WIDTH // 2),
    "object_number_table": ("object_floats",) * TABLE_WIDTH,
}


@functools.lru_cache(maxsize=None)
def every_eighth(rows: int) -> Any:
    """Return a mask, made once before anything is timed."""
    return np.arange(rows) % 8 == 0


def build(spec: ColumnSpec, rows: int, seed: int = 0) -> Any:
    """Make the column of `rows` rows; the same arguments make the same values."""
    if spec.kind in TABLES:
        parts = [
            build(spec._replace(kind=kind), rows, seed + index)
            for index, kind in enumerate(TABLES[spec.kind])
        ]
        return np.ascontiguousarray(np.stack(parts, axis=1))
    kind = KINDS[spec.kind]
    rng = np.random.default_rng(seed)
    if spec.distinct is None or not kind.counted:
        column = kind.values(rng, rows).astype(kind.dtype)
    else:
        pool = kind.values(rng, min(spec.distinct, rows))
        if spec.order == "shared":
            pool = pool.astype(kind.dtype)
        # Unless shared, each cell is an object of its own, as file readers create them.
        column = pool[rng.integers(0, len(pool), rows)].astype(kind.dtype)
    if kind.holes and spec.missing:
        missing = np.flatnonzero(rng.random(rows) < spec.missing)
        for offset, hole in enumerate(kind.holes):
            column[missing[offset :: len(kind.holes)]] = hole
    if spec.order == "shuffled":
        column = column[rng.permutation(rows)]
    return column
