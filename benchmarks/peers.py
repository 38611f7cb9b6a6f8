"""Peers: calls that one would use instead, by the job and the kind of column."""

from __future__ import annotations

from typing import Any, Callable, NamedTuple

import numpy as np
import pandas as pd

from benchmarks.columns import MARKERS, every_eighth


class Peer(NamedTuple):
    """A call of numpy or pandas.

    `subject` makes its argument from the column, which is not timed. `note` says what part of the
    routine's work it leaves out.
    """

    name: str
    call: Callable[[Any], Any]
    subject: Callable[[Any], Any]
    note: str = ""


def as_array(column: Any) -> Any:
    """Return the column itself."""
    return column


def as_series(column: Any) -> Any:
    """Return a Series of the column's objects; of fixed-width text, which pandas lacks, objects."""
    dtype = object if column.dtype.kind == "U" else column.dtype
    return pd.Series(column.astype(dtype, copy=False), dtype=dtype)


def as_frame(column: Any) -> Any:
    """Return a frame of the column's objects, with columns 0, 1 and so on."""
    return pd.DataFrame(column, dtype=column.dtype if column.dtype.kind != "U" else object)


def _numbers(subject: Any) -> Any:
    return pd.to_numeric(subject, errors="coerce")


def _kinds_by_column(frame: Any) -> Any:
    return [pd.api.types.infer_dtype(frame[name], skipna=True) for name in frame.columns]


def _kind(subject: Any) -> Any:
    return pd.api.types.infer_dtype(subject, skipna=True)


def _replace(subject: Any) -> Any:
    return subject.astype(object).replace(MARKERS, "x")


INFER_DTYPE = Peer("pd.api.types.infer_dtype", _kind, as_array, "type only; texts are not read")
FIRST_ODD = INFER_DTYPE._replace(note="type only; ends at the first odd cell")
TO_NUMERIC = Peer("pd.to_numeric", _numbers, as_series, "numbers only; no kind, no markers")
NUMBERS_SAME = TO_NUMERIC._replace(note="no list of markers")
ISNA = Peer("pd.isna", pd.isna, as_array, "NaN only; no kind")
ISIN = Peer("Series.isin", lambda s: s.isin(MARKERS), as_series)
ONE_MASK = ISIN._replace(note="one mask; not one for each marker")
VALUE_COUNTS = Peer(
    "Series.value_counts",
    lambda s: s.value_counts(sort=False),
    as_series,
    "counts only; unsorted, no kind",
)
NP_UNIQUE = Peer(
    "np.unique", lambda c: np.unique(c, return_counts=True), as_array, "counts only; no kind"
)
COUNTS = VALUE_COUNTS._replace(note="unsorted; no markers left out")
CLASSES = VALUE_COUNTS._replace(note="as an array, with no markers left out")
LISTED_CLASSES = Peer(
    "value_counts as list",
    lambda s: list(s.value_counts(sort=False).items()),
    as_series,
    "no markers left out",
)
CATEGORICAL = Peer(
    "pd.Categorical",
    lambda c: pd.Categorical(c).categories.tolist(),
    as_array,
    "sorted; no markers left out, no kind",
)
NP_UNIQUE_SAME = NP_UNIQUE._replace(note="no markers left out")
SERIES_UNIQUE = Peer(
    "Series.unique", lambda s: s.unique(), as_series, "unsorted, no kind, no counts"
)
FLOAT_CAST = Peer("ndarray.astype", lambda c: c.astype(float), as_array, "no markers")
TO_TEXT = Peer("Series.astype(str)", lambda s: s.astype(str), as_series)
REPLACE = Peer("Series.replace", _replace, as_series)
REPLACE_TABLE = REPLACE._replace(name="DataFrame.replace", subject=as_frame)
MASK = Peer(
    "Series.mask",
    lambda s: s.astype(object).mask(every_eighth(len(s)), "x"),
    as_series,
)
REMOVE_BLANKS = Peer(
    "Series.str.replace", lambda s: s.str.replace(r"\s+", "", regex=True), as_series
)
DIGEST = Peer(
    "pd.util.hash_array", pd.util.hash_array, as_array, "64 bits; another number in other versions"
)
NUNIQUE = Peer(
    "Series.nunique", lambda s: s.nunique(), as_series, "count only; no kind, no markers"
)
NUNIQUE_TABLE = Peer(
    "DataFrame.nunique", lambda f: f.nunique(), as_frame, "counts only; no kind, no markers"
)
KINDS_BY_COLUMN = Peer(
    "infer_dtype by column", _kinds_by_column, as_frame, "type only; texts are not read"
)
ISNA_TABLE = Peer("DataFrame.isna", lambda f: f.isna().any(), as_frame, "NaN and None only")
ISIN_TABLE = Peer("DataFrame.isin", lambda f: f.isin(MARKERS).any(), as_frame)
BETWEEN = Peer(
    "Series.between",
    lambda s: s.between(54.625, 78.175).all(),
    as_series,
    "one unit; NaN fails",
)

_OBJECT_TEXT = ("words", "integer_text", "float_text", "marker_text")
_FIXED_TEXT = ("U", "U_integer_text")
_NUMBERS = ("float64", "float64_whole", "float32", "int64", "bool")
_FLOATS = ("float64", "float64_whole", "float32")
_OBJECT_NUMBERS = ("object_floats", "object_ints")
_ANY = (*_OBJECT_TEXT, *_FIXED_TEXT, "mixed", *_NUMBERS, *_OBJECT_NUMBERS)
_LABELS = ("labels", "U_labels")

# A job, the kinds of column, the peers.
_BY_JOB: list[tuple[str, tuple[str, ...], tuple[Peer, ...]]] = [
    ("kind", (*_OBJECT_TEXT, "object_floats"), (INFER_DTYPE,)),
    ("kind", ("mixed", "object_ints"), (FIRST_ODD,)),
    ("kind", ("integer_text", "float_text", "marker_text"), (TO_NUMERIC,)),
    ("kind", ("mixed", *_OBJECT_NUMBERS), (TO_NUMERIC,)),
    ("kind", _FLOATS, (ISNA,)),
    ("kind", (*_FIXED_TEXT, "words"), (VALUE_COUNTS,)),
    ("kind", ("int64", "bool"), (INFER_DTYPE,)),
    ("statistics", (*_OBJECT_TEXT, *_FIXED_TEXT, *_OBJECT_NUMBERS), (VALUE_COUNTS,)),
    ("statistics", (*_FIXED_TEXT, *_NUMBERS), (NP_UNIQUE,)),
    ("membership", _ANY, (ISIN,)),
    ("indicator", _ANY, (ONE_MASK,)),
    ("unique", (*_OBJECT_TEXT, *_FIXED_TEXT, *_OBJECT_NUMBERS), (COUNTS,)),
    ("unique", (*_FIXED_TEXT, *_NUMBERS), (NP_UNIQUE_SAME,)),
    ("unique", ("sexes",), (SERIES_UNIQUE,)),
    ("categories", (*_LABELS, "words", "int64"), (CATEGORICAL,)),
    ("categories", _LABELS, (SERIES_UNIQUE,)),
    ("categories", ("words",), (COUNTS,)),
    ("categories", ("int64",), (NP_UNIQUE_SAME,)),
    ("classes", (*_OBJECT_TEXT, *_FIXED_TEXT, *_NUMBERS, *_OBJECT_NUMBERS), (CLASSES,)),
    ("classes", _NUMBERS, (LISTED_CLASSES,)),
    ("to number", (*_OBJECT_TEXT, *_FIXED_TEXT, *_OBJECT_NUMBERS), (NUMBERS_SAME,)),
    ("bool to float", ("bool",), (FLOAT_CAST,)),
    ("to text", (*_OBJECT_NUMBERS, "float64"), (TO_TEXT,)),
    ("replace", ("words", "U", "float64", "int64", "object_floats"), (REPLACE,)),
    ("replace", ("object_table", "float_table"), (REPLACE_TABLE,)),
    ("put", ("words", "U", "float64"), (MASK,)),
    ("remove blanks", ("words", *_LABELS), (REMOVE_BLANKS,)),
    ("digest", ("words", "labels"), (DIGEST,)),
    ("count distinct", _ANY, (NUNIQUE,)),
    ("count distinct", ("object_table", "float_table"), (NUNIQUE_TABLE,)),
    ("table kinds", ("object_table", "object_number_table"), (KINDS_BY_COLUMN,)),
    ("table kinds", ("float_table",), (ISNA_TABLE,)),
    ("table missing", ("object_table",), (ISIN_TABLE,)),
    ("table missing", ("object_number_table", "float_table"), (ISNA_TABLE,)),
    ("within", ("heights", "float64"), (BETWEEN,)),
]

PEERS: dict[tuple[str, str], tuple[Peer, ...]] = {}
for _job, _kinds, _peers in _BY_JOB:
    for _name in _kinds:
        PEERS[_job, _name] = PEERS.get((_job, _name), ()) + _peers
