"""The native route is taken for the columns that it should answer, and leaks nothing."""

from __future__ import annotations

import sys
import tracemalloc
import types

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.comparison import find_routine, module, replaced
from helpers.leaks import leaks_blocks, repeat
from helpers.native_calls import ALL_TEXT, COLUMNS, MARKERS, NUMBER_COLUMNS, NUMBERS, OBJECTS, TAKEN
from helpers.native_lookups import DATASET_CHECKS
from helpers.route_columns import SHAPES
from helpers.routes import events_of, pass_through

# Calls whose interpreter route is visible to a profiler, by functions of numpy and pandas.
CASES = [
    pytest.param(name, more, column, id="{} {} {} {}".format(name, i, len(more), kind))
    for i, (name, more, columns) in enumerate(TAKEN)
    for kind, column in columns.items()
]


@pytest.mark.parametrize("name, more, column", CASES)
def test_no_python_code_runs(name, more, column):
    assert events_of(name, (column.copy(),) + more, by="numpy_isin")
    assert events_of(name, (column.copy(),) + more) == []


ROWS = 4000


def peak_of(name, arguments, by=None):
    """The peak of the memory that a call allocates."""
    names = {} if by is None else {by: pass_through(by)}
    with replaced(module, names):
        routine = find_routine(module, name)
        routine(*arguments)
        tracemalloc.start()
        try:
            routine(*arguments)
            return tracemalloc.get_traced_memory()[1]
        finally:
            tracemalloc.stop()


CONVERTED = dict(NUMBER_COLUMNS, floats=COLUMNS["floats"])
# Integers cannot be marked as missing, and a copy of booleans is small.
del CONVERTED["integers"], CONVERTED["booleans"]


@pytest.mark.parametrize("kind", sorted(CONVERTED))
def test_conversion_allocates_only_its_result(kind):
    column = np.resize(CONVERTED[kind], ROWS)
    result = 8 * ROWS
    assert peak_of("numpy_floatstr2float", (column, MARKERS), by="isfloat") > 1.9 * result
    assert peak_of("numpy_floatstr2float", (column, MARKERS)) < 1.1 * result


@pytest.mark.parametrize("markers", [MARKERS, [False], [True, "?"]])
def test_flags_need_no_mask(markers):
    column = np.resize(COLUMNS["booleans"], ROWS)
    result = 8 * ROWS
    assert peak_of("numpy_boolean2float", (column.copy(), markers), by="np") > 1.1 * result
    assert peak_of("numpy_boolean2float", (column.copy(), markers)) < 1.1 * result


@pytest.mark.parametrize("shape", sorted(set(SHAPES) - {"byte-swapped"}))
@pytest.mark.parametrize("kind", ["texts", "number texts", "fixed-width texts", "floats"])
@pytest.mark.parametrize("name", ["numpy_whatis", "numpy_isin", "numpy_compute_missing_indicator"])
def test_in_every_layout(name, kind, shape):
    column = SHAPES[shape](COLUMNS[kind].copy())
    assert events_of(name, (column, MARKERS), by="numpy_isin")
    assert events_of(name, (column, MARKERS)) == []


# The statistics report the result of the date test, so it is called on the native route, too.
OF_A_REPLACEMENT = "helpers.replacements."
OF_THE_DATE_TEST = ("quorin_libs.utils.fc_methods.", "quorin_libs.utils._date_text.")


def without_date_test(events):
    """The Python functions called, without those of the date test."""
    return [
        name for event, name in events if event == "call" and not name.startswith(OF_THE_DATE_TEST)
    ]


# For booleans of any byte, numpy decides which are distinct.
@pytest.mark.parametrize(
    "shape", sorted(set(SHAPES) - {"byte-swapped", "true by bytes of any value"})
)
@pytest.mark.parametrize("kind", sorted(dict(NUMBERS, **ALL_TEXT)))
@pytest.mark.parametrize("by", [None, "FC.is_string_in_datetime_format", "FC"])
def test_statistics_run_only_the_date_test(kind, shape, by):
    column = SHAPES[shape](COLUMNS[kind].copy())
    arguments = (column, MARKERS, False, False, True, True)
    assert without_date_test(events_of("numpy_whatis", arguments, by="numpy_isin"))
    found = without_date_test(events_of("numpy_whatis", arguments, by=by))
    assert [name for name in found if not name.startswith(OF_A_REPLACEMENT)] == []


@pytest.mark.parametrize("kind", sorted(ALL_TEXT))
@pytest.mark.parametrize("by", ["FC.is_string_in_datetime_format", "FC"])
def test_foreign_date_test_of_texts(kind, by):
    events = events_of("numpy_whatis", (COLUMNS[kind], MARKERS), by=by)
    assert [
        name for name in without_date_test(events) if not name.startswith(OF_A_REPLACEMENT)
    ] == []
    assert any(name.startswith(OF_THE_DATE_TEST) for _, name in events)


@pytest.mark.parametrize("routine", DATASET_CHECKS)
@pytest.mark.parametrize("dtype", ["f8", "f4", "i8", "i4", "u1", "?"])
@pytest.mark.parametrize("order", ["C", "F"])
def test_tables_of_numbers(routine, dtype, order):
    table = np.array([[1, 0, 1], [0, 1, 0]], dtype=dtype, order=order)
    assert events_of("FCplus." + routine, (table, MARKERS), by="numpy_isin")
    assert events_of("FCplus." + routine, (table, MARKERS)) == []


@pytest.mark.parametrize("kind", sorted(COLUMNS))
def test_membership_runs_no_python_code(kind):
    arguments = ({"?", "a", "1"}, COLUMNS[kind])
    assert events_of("indicator_mask", arguments, by="np.vectorize")
    assert events_of("indicator_mask", arguments) == []


@pytest.mark.parametrize("words", [("male", "female"), ("m", "f"), ("m", "x"), ("f", None)])
def test_sexes(words):
    frame = pd.DataFrame({0: objects(*words * 3)}, dtype=object)

    def unique_asked(by):
        return any("unique" in name for _, name in events_of("FCplus.is_column_sex", (frame,), by))

    assert unique_asked("pd.Series.unique")
    assert not unique_asked(None)


REPEATS = 50
WRITING = ("numpy_column_float2str", "compress_str_column")


@pytest.mark.parametrize("more", [(), (MARKERS,)])
@pytest.mark.parametrize("name", ["numpy_whatis", "numpy_isin", "get_unique_values",
                                  "numpy_compute_missing_indicator", "numpy_isintstr",
                                  "numpy_floatstr2float", "numpy_column_float2str",
                                  "numpy_replace_values", "compress_str_column",
                                  "numpy_putmask", "FCplus.is_column_categorical",
                                  "FCplus.getClasses"])  # fmt: skip
@pytest.mark.parametrize("kind", sorted(OBJECTS))
def test_references_are_given_back(monkeypatch, name, kind, more):
    monkeypatch.setattr(module, "logger", types.SimpleNamespace(warning=len, error=len))
    if name in ("numpy_isin", "numpy_compute_missing_indicator"):
        more = (MARKERS,)
    if name == "numpy_replace_values":
        more = (MARKERS[0], MARKERS)
    if name == "compress_str_column":
        more = (MARKERS, "hash" if more else "string")
    if name == "numpy_column_float2str":
        more = (not more,)
    if name == "numpy_putmask":
        more = (np.resize([bool(more), False], len(OBJECTS[kind])), "".join(["fill", "ing"]))
    column = OBJECTS[kind].copy() if name in WRITING else OBJECTS[kind]
    # Handling a log record changes the reference count of None.
    cells = [cell for cell in OBJECTS[kind].tolist() + MARKERS + [MARKERS] if cell is not None]
    routine = find_routine(module, name)
    # Routines that write in place do so in the first call.
    repeat(lambda: routine(column, *more), 2)
    before = [sys.getrefcount(cell) for cell in cells]
    assert not leaks_blocks(lambda: routine(column, *more), REPEATS)
    after = [sys.getrefcount(cell) for cell in cells]
    for cell, a, b in zip(cells, after, before):
        # The interpreter itself shares short texts, small integers and booleans.
        shared = type(cell) in (bool, int) or (type(cell) is str and len(cell) < 2)
        assert abs(a - b) < REPEATS if shared else a == b, repr(cell)


@pytest.mark.parametrize("name", ["numpy_isin", "numpy_compute_missing_indicator", "numpy_whatis"])
@pytest.mark.parametrize("kind", sorted(COLUMNS))
def test_the_column_is_given_back(name, kind):
    column = COLUMNS[kind].copy()
    before = sys.getrefcount(column)
    for _ in range(REPEATS):
        find_routine(module, name)(column, MARKERS)
    assert sys.getrefcount(column) == before
