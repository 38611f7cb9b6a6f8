"""The routines to time, except those that are a single numpy or pandas call."""

from __future__ import annotations

from typing import Any, Callable, NamedTuple

from benchmarks.columns import MARKERS, every_eighth
from quorin_libs.utils import exportable_utils as eu
from quorin_libs.utils.exportable_utils import FCplus


class Routine(NamedTuple):
    """A call of a routine with all arguments but its column.

    `job` is the key of its peers. `copied`: the call writes into its argument.
    `stops_at_missing`: it returns at the first missing value.
    """

    name: str
    job: str
    call: Callable[[Any], Any]
    kinds: tuple[str, ...]
    copied: bool = False
    takes_frame: bool = False
    stops_at_missing: bool = False


TEXT = ("words", "integer_text", "float_text", "marker_text", "U", "U_integer_text")
LABELS = ("words", "labels", "U_labels")
FLOATS = ("float64", "float64_whole", "float32")
NUMBERS = (*FLOATS, "int64", "bool")
OBJECT_NUMBERS = ("object_floats", "object_ints")
ALL = (*TEXT, "mixed", *NUMBERS, *OBJECT_NUMBERS)
# Without the column of texts and numbers, which cannot be sorted: the interpreter route of the
# classifier takes quadratic time there. One such case is enough.
SORTED = (*TEXT, *NUMBERS, *OBJECT_NUMBERS)
NUMBER_TEXT = ("integer_text", "float_text", "U_integer_text", "object_floats", "object_ints")
OBJECTS_AND_FLOATS = ("object_table", "float_table")

KNOWN = set(MARKERS[:-1])


def _unique(column: Any) -> Any:
    return eu.get_unique_values(column, MARKERS, return_counts=True)


def _slow_text(column: Any) -> Any:
    return eu.numpy_column_float2str(column, False)


ROUTINES = (
    Routine("numpy_whatis", "kind", lambda c: eu.numpy_whatis(c, MARKERS), ALL),
    Routine("numpy_whatis no list", "kind", eu.numpy_whatis, ("words", "float64_whole", "int64")),
    Routine(
        "numpy_whatis statistics",
        "statistics",
        lambda c: eu.numpy_whatis(c, MARKERS, return_stats_flag=True),
        SORTED,
    ),
    Routine("numpy_isin", "membership", lambda c: eu.numpy_isin(c, MARKERS), ALL),
    Routine(
        "indicator_mask",
        "membership",
        lambda c: eu.indicator_mask(KNOWN, c),
        (*TEXT, "object_ints"),
    ),
    Routine(
        "numpy_compute_missing_indicator",
        "indicator",
        lambda c: eu.numpy_compute_missing_indicator(c, MARKERS),
        ALL,
    ),
    Routine("get_unique_values", "unique", _unique, SORTED),
    Routine("numpy_isintstr", "to number", lambda c: eu.numpy_isintstr(c, MARKERS), NUMBER_TEXT),
    Routine(
        "numpy_floatstr2float",
        "to number",
        lambda c: eu.numpy_floatstr2float(c, MARKERS),
        NUMBER_TEXT,
    ),
    Routine(
        "numpy_boolean2float",
        "bool to float",
        lambda c: eu.numpy_boolean2float(c, MARKERS),
        ("bool",),
    ),
    Routine(
        "numpy_column_float2str", "to text", eu.numpy_column_float2str, ("object_floats", "float64")
    ),
    Routine("numpy_column_float2str slow", "to text", _slow_text, ("object_floats",), copied=True),
    Routine(
        "numpy_replace_values",
        "replace",
        lambda c: eu.numpy_replace_values(c, "x", MARKERS),
        ("words", "U", "float64", "int64", "object_floats"),
    ),
    Routine(
        "numpy_replace_values table",
        "replace",
        lambda c: eu.numpy_replace_values(c, "x", MARKERS),
        OBJECTS_AND_FLOATS,
    ),
    Routine(
        "numpy_putmask",
        "put",
        lambda c: eu.numpy_putmask(c, every_eighth(len(c)), "x"),
        ("words", "U", "float64"),
    ),
    Routine(
        "compress_str_column",
        "remove blanks",
        lambda c: eu.compress_str_column(c, MARKERS),
        LABELS,
        copied=True,
    ),
    Routine(
        "compress_str_column hash",
        "digest",
        lambda c: eu.compress_str_column(c, MARKERS, "hash"),
        ("words", "labels"),
        copied=True,
    ),
    Routine(
        "is_num_column_categorical",
        "count distinct",
        FCplus.is_num_column_categorical,
        ("float64_whole", "int64", "bool"),
    ),
    Routine(
        "is_column_categorical",
        "count distinct",
        lambda c: FCplus.is_column_categorical(c, MARKERS),
        SORTED,
    ),
    Routine(
        "is_column_categorical_mult_cats",
        "count distinct",
        lambda c: FCplus.is_column_categorical_mult_cats(c, MARKERS),
        ("int64", "U"),
    ),
    Routine(
        "is_column_missing",
        "membership",
        lambda c: FCplus.is_column_missing(c, MARKERS),
        ("words", "float64"),
    ),
    Routine(
        "is_column_string",
        "kind",
        lambda c: FCplus.is_column_string(c, MARKERS),
        ("words", "integer_text"),
    ),
    Routine(
        "find_categorical_columns",
        "count distinct",
        lambda c: FCplus.find_categorical_columns(c, MARKERS),
        OBJECTS_AND_FLOATS,
    ),
    Routine(
        "find_numerical_columns",
        "count distinct",
        lambda c: FCplus.find_numerical_columns(c, MARKERS),
        OBJECTS_AND_FLOATS,
    ),
    Routine(
        "is_dataset_preprocessed",
        "table kinds",
        lambda c: FCplus.is_dataset_preprocessed(c, MARKERS),
        ("object_number_table", "float_table"),
        stops_at_missing=True,
    ),
    Routine(
        "is_dataset_missing",
        "table missing",
        lambda c: FCplus.is_dataset_missing(c, MARKERS),
        OBJECTS_AND_FLOATS,
        stops_at_missing=True,
    ),
    Routine(
        "get_dataset_missing_columns",
        "table missing",
        lambda c: FCplus.get_dataset_missing_columns(c, MARKERS),
        OBJECTS_AND_FLOATS,
    ),
    Routine(
        "is_dataset_numeric",
        "table kinds",
        lambda c: FCplus.is_dataset_numeric(c, MARKERS),
        ("object_number_table", "float_table"),
    ),
    Routine(
        "get_dataset_non_numeric_columns",
        "table kinds",
        lambda c: FCplus.get_dataset_non_numeric_columns(c, MARKERS),
        OBJECTS_AND_FLOATS,
    ),
    Routine(
        "numpy_get_categories",
        "categories",
        lambda c: eu.numpy_get_categories(c, [0], MARKERS),
        (*LABELS, "int64"),
    ),
    Routine("getClasses", "classes", lambda c: FCplus.getClasses(c, True, MARKERS), SORTED),
    Routine(
        "is_column_height",
        "within",
        FCplus.is_column_height,
        ("heights", "float64"),
        takes_frame=True,
    ),
    Routine("is_column_sex", "unique", FCplus.is_column_sex, ("sexes",), takes_frame=True),
)
