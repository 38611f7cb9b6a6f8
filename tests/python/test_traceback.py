"""The traceback of an exception names the routines that it passed."""

from __future__ import annotations

import traceback
import types

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.arrays import objects
from helpers.interface_table import PRESENT, SOURCES, routine, row_id


class Interrupt(BaseException):
    pass


def interrupt(*args, **kwargs):
    raise Interrupt


EVERY_TEST = types.SimpleNamespace(
    is_constant=interrupt,
    is_string_in_datetime_format=interrupt,
    is_epoch=interrupt,
    is_longitude=interrupt,
    is_latitude=interrupt,
    is_distance=interrupt,
)
UNSORTABLE = objects({}, [])

# A failing call of every routine, the exception and the routines that it passes, outermost first.
CLASSIFIER = ["numpy_whatis", "numpy_flatten_column"]
FAILURES = [
    ("numpy_select_columns", (np.arange(3), [0]), IndexError, []),
    ("numpy_flatten_column", ([],), IndexError, []),
    ("numpy_permute_array", (5,), AttributeError, []),
    ("numpy_floatstr2float", (5,), AttributeError, []),
    ("numpy_boolean2float", (5,), AttributeError, []),
    ("numpy_boolean2float", (np.array([True]), [[]]), TypeError, ["numpy_isin"]),
    ("convert_float32", (5,), AttributeError, []),
    ("numpy_whatis", (objects(b"x"),), UnboundLocalError, []),
    ("numpy_whatis", ([],), IndexError, ["numpy_flatten_column"]),
    (
        "numpy_whatis",
        (objects("a"), [{}]),
        TypeError,
        ["numpy_compute_missing_indicator", "numpy_isin"],
    ),
    ("numpy_whatis", (UNSORTABLE,), Exception, ["get_unique_values", "QSR_raise_exception"]),
    ("numpy_remove_second_dim", (5,), AttributeError, []),
    ("isint", (None,), TypeError, []),
    ("isint", (float("inf"),), OverflowError, []),
    ("numpy_compute_missing_indicator", (5, []), AttributeError, []),
    ("numpy_compute_missing_indicator", (np.arange(2), [[]]), TypeError, ["numpy_isin"]),
    (
        "numpy_compute_missing_indicator",
        (np.arange(0), [1]),
        IndexError,
        ["numpy_isin", "numpy_flatten_column"],
    ),
    ("numpy_isin", (5, [1]), TypeError, ["numpy_flatten_column"]),
    ("numpy_isin", (objects({}), [1]), TypeError, ["indicator_mask", "<lambda>"]),
    ("indicator_mask", ({1}, objects({})), TypeError, ["<lambda>"]),
    ("get_unique_values", (UNSORTABLE,), Exception, ["QSR_raise_exception"]),
    ("isfloat", (None,), TypeError, []),
    ("numpy_column_float2str", (5,), AttributeError, []),
    ("QSR_raise_exception", (), Exception, []),
    ("is_column_constant", (5,), Interrupt, []),
    ("is_column_string_in_datetime_format", (5,), Interrupt, []),
    ("is_column_epoch", (5,), Interrupt, []),
    ("is_column_longitude", (5,), Interrupt, []),
    ("is_column_latitude", (5,), Interrupt, []),
    ("is_column_distance", (5,), Interrupt, []),
    ("numpy_replace_values", (5, 0, [1]), AttributeError, []),
    ("numpy_putmask", (5, [], 0), AttributeError, []),
    ("compress_string", (5,), AttributeError, []),
    ("compress_str_column", (5, []), AttributeError, []),
    ("numpy_get_categories", (5, [], []), AttributeError, []),
    ("numpy_isintstr", (5,), AttributeError, []),
    ("is_num_column_categorical", (np.arange(0),), ZeroDivisionError, []),
    ("is_column_categorical", (5,), TypeError, CLASSIFIER),
    ("find_categorical_columns", (5,), AttributeError, []),
    ("is_numerical", (5,), TypeError, ["is_column_categorical"] + CLASSIFIER),
    ("find_numerical_columns", (5,), AttributeError, []),
    ("is_dataset_for_classification", (5,), TypeError, ["is_column_categorical"] + CLASSIFIER),
    ("is_dataset_preprocessed", (5,), AttributeError, []),
    ("is_dataset_missing", (5,), AttributeError, []),
    ("get_dataset_missing_columns", (5,), AttributeError, []),
    ("is_dataset_numeric", (5,), AttributeError, []),
    ("get_dataset_non_numeric_columns", (5,), AttributeError, []),
    ("check_statistics", (5, 1, 1, 1, 1, 1, [1]), AttributeError, []),
    ("is_column_missing", (5,), TypeError, CLASSIFIER),
    ("is_column_sex", (5,), AttributeError, []),
    ("is_column_height", (5,), AttributeError, []),
    ("is_column_weight", (5,), AttributeError, []),
    ("is_column_age", (5,), AttributeError, []),
    ("is_column_timestamp", (5,), AttributeError, []),
    ("is_column_positive", (5,), AttributeError, []),
    ("is_column_non_negative", (5,), AttributeError, []),
    ("is_column_not_all_non_negative", (5,), AttributeError, []),
    ("is_column_lt80pc_unique_int", (5,), AttributeError, []),
    ("is_column_categorical_mult_cats", (5,), TypeError, ["is_column_categorical"] + CLASSIFIER),
    ("is_column_not_categorical", (5,), TypeError, ["is_column_categorical"] + CLASSIFIER),
    ("is_column_string", (5,), TypeError, CLASSIFIER),
    ("getClasses", (5,), TypeError, CLASSIFIER),
    ("__init__", (object(), 1), AttributeError, []),
    ("AddNewColumns", (5, len), AttributeError, []),
    ("GetTargetType", (5,), AttributeError, []),
]
# They return their argument, or handle every failure.
CANNOT_FAIL = {
    "setValueOrDefault",
    "numpy_is_column_monotonic_increasing",
    "numpy_is_column_monotonic_decreasing",
    "numpy_is_column_datetime",
    "is_column_datetime",
}
ROW_OF = {row.name: row for row in PRESENT}


def native_entries(error):
    entries = traceback.extract_tb(error.__traceback__)
    return [entry for entry in entries if entry[0].endswith(".cpp")]


@pytest.fixture(autouse=True)
def stubs(monkeypatch):
    monkeypatch.setattr(eu, "FC", EVERY_TEST)
    monkeypatch.setattr(eu, "logger", types.SimpleNamespace(error=len, warning=len))


def test_every_routine_that_can_fail_has_a_row():
    assert set(ROW_OF) - {name for name, _, _, _ in FAILURES} == CANNOT_FAIL


@pytest.mark.parametrize("name, args, kind, through", FAILURES)
def test_entries_name_the_routines(name, args, kind, through):
    with pytest.raises(BaseException) as caught:
        routine(eu, ROW_OF[name])(*args)
    assert type(caught.value) is kind
    entries = native_entries(caught.value)
    assert [entry[2] for entry in entries] == [name] + through
    for file, line, entry_name, _ in entries:
        # A long body may continue in another file of the folder.
        owner = name if entry_name == "<lambda>" else entry_name
        assert file.startswith(ROW_OF[owner].folder)
        assert line > 0


def test_entries_are_printed():
    try:
        eu.isint(None)
    except TypeError:
        text = traceback.format_exc()
    assert '  File "{}{}.cpp", line '.format(SOURCES, ROW_OF["isint"].family) in text
    assert ", in isint\n" in text


@pytest.mark.parametrize("row", [row for row in PRESENT if not row.one], ids=row_id)
def test_entry_of_a_wrong_call(row):
    with pytest.raises(TypeError) as caught:
        routine(eu, row)(*range(len(row.parameters) + 1))
    ((file, line, name, _),) = native_entries(caught.value)
    assert file.startswith("src/")
    assert name == row.name
    assert line > 0


def test_lines_differ_between_steps():
    """The line is that of the failing step: two steps give two lines."""
    lines = set()
    for args in [([],), ([np.array(5)],)]:
        with pytest.raises(IndexError) as caught:
            eu.numpy_flatten_column(*args)
        lines.add(native_entries(caught.value)[-1][1])
    assert len(lines) == 2


def test_entry_keeps_the_frames_below():
    class Odd:
        def __int__(self):
            raise KeyError("odd")

    with pytest.raises(KeyError) as caught:
        eu.isint(Odd())
    names = [entry[2] for entry in traceback.extract_tb(caught.value.__traceback__)]
    assert names[-2:] == ["isint", "__int__"]


def test_the_same_exception_object_leaves():
    raised = LookupError("x")

    class Odd:
        def __int__(self):
            raise raised

    with pytest.raises(LookupError) as caught:
        eu.isint(Odd())
    assert caught.value is raised
    assert raised.args == ("x",)
    assert raised.__cause__ is None


def test_caught_failures_leave_no_exception_behind():
    import sys

    assert eu.isint("x") is False
    assert eu.isfloat("x") is False
    assert sys.exc_info() == (None, None, None)
