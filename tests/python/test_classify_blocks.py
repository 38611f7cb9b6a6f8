"""Long columns are read in blocks of rows: facts of different blocks add up, and signals are
answered between two blocks."""

from __future__ import annotations

import gc
import signal
import traceback

import numpy as np
import pytest

from quorin_libs.utils import exportable_utils as module

# Longer than two blocks.
ROWS = 3 * (1 << 17) - 5
LATE = ROWS - 2
MARKERS = ["?", "", "-", np.nan]
KINDS = {
    "missing", "char_str", "int_str", "float_str", "float_num", "float_int_num", "int_num",
    "boolean", "Unknown",
}  # fmt: skip


def column_of(cell, *late, dtype=object, middle=()):
    """A column of `cell`, with other cells in the middle block and in the last one."""
    column = np.full(ROWS, cell, dtype=dtype)
    for row, value in enumerate(middle, start=ROWS // 2):
        column[row] = value
    for row, value in enumerate(late, start=LATE):
        column[row] = value
    return column


def through_interpreter(monkeypatch, routine, *arguments):
    """The result of the interpreter route: a replaced name switches off native routes."""
    isint = module.isint
    with monkeypatch.context() as replaced:
        replaced.setattr(module, "isint", lambda value: isint(value))
        return getattr(module, routine)(*arguments)


COLUMNS = {
    "end marker": column_of("1", "*", "a"),
    "end marker of fixed width": column_of("1", "*", "a", dtype="U2"),
    "text below and end marker": column_of("5", "#", "~", middle=["+x"]),
    "text below and above": column_of("5", "6", "6", middle=["+x", "word"]),
    "two texts, then a lone one and a number": column_of("b", "!", "7", middle=["a"]),
    "two texts, then a number and a lone one": column_of("b", "7", "~", middle=["a"]),
    "numbers between two texts, then a lone one": column_of("b", "~", middle=["a", "2.5", "31"]),
    "one text beside real texts": column_of("2.5", "x", "3"),
    "one text of fixed width": column_of("25", "x", "3", dtype="U3"),
    "one text of fixed width below": column_of("25", "+x", "3", dtype="U3"),
    "null, then a marker": column_of("word", "?", None, middle=[float("nan")]),
    "markers, then a number text": column_of("?", "1"),
    "nulls, then a number": column_of(None, 1, 2),
    "whole floats, then a fraction": column_of(1.0, 2.0, 0.5),
    "integers, then a float": column_of(1, 3, 2.0),
    "equal numbers of three types": column_of(1, 1.0, True),
    "booleans, then an integer": column_of(True, 5, False),
    "floats, then a null and a fraction": column_of(1.0, np.nan, 0.5, dtype=float),
    "nulls, then a float": column_of(np.nan, 1.0, 7.0, dtype=float),
    "short floats, then a fraction": column_of(1.0, 0.5, 0.5, dtype="f4"),
    "integers of 32 bits": column_of(1, -999, -999, dtype="i4"),
    "texts, then a number": column_of("word", 1, 2, middle=["1"]),
    "numbers, then a text": column_of(1, "word", 2, middle=["1"]),
}


@pytest.mark.parametrize("column", COLUMNS.values(), ids=COLUMNS.keys())
@pytest.mark.parametrize(
    "markers", [MARKERS, None, ["?", -999, 7.0, None]], ids=["usual", "none", "numbers"]
)
def test_facts_of_blocks_add_up(monkeypatch, column, markers):
    arguments = (column.copy(), markers)
    expected = through_interpreter(monkeypatch, "numpy_whatis", *arguments)
    found = module.numpy_whatis(*arguments)
    assert repr(found) == repr(expected)
    assert [type(marker) for marker in found[0]] == [type(marker) for marker in expected[0]]


@pytest.mark.parametrize("last", ["4", "x", 4, 0.5, "1" * 700, "\u0663"])
def test_numbers_of_blocks_are_all_tested(monkeypatch, last):
    column = column_of("1", last)
    expected = through_interpreter(monkeypatch, "numpy_isintstr", column, ["?"])
    assert module.numpy_isintstr(column, ["?"]) is expected


@pytest.mark.parametrize("dtype", [object, "U9"])
def test_labels_of_all_blocks_are_compressed(dtype):
    size = (1 << 17) + 9
    column = np.array(["a %d" % i for i in range(size)], dtype=dtype)
    ((*labels,),) = module.numpy_get_categories(column, [0], ["?"])
    assert labels == ["a%d" % i for i in np.sort(np.arange(size).astype(str)).astype(int)]


class Stopped(Exception):
    """Raised by the handler."""


@pytest.fixture
def after_some_work():
    """Starts a timer of this process's CPU time; when it expires, the handler is called."""
    before = []

    def start(handler, seconds=0.02):
        before.append(signal.signal(signal.SIGVTALRM, handler))
        signal.setitimer(signal.ITIMER_VIRTUAL, seconds)

    yield start
    signal.setitimer(signal.ITIMER_VIRTUAL, 0.0)
    signal.signal(signal.SIGVTALRM, before[0])


def stop(_signal, _frame):
    raise Stopped


def keyboard_interrupt(_signal, _frame):
    raise KeyboardInterrupt


DISTINCT = 1500000


@pytest.mark.parametrize(
    "handler, error", [(keyboard_interrupt, KeyboardInterrupt), (stop, Stopped)]
)
def test_categories_of_a_long_column_are_interrupted(after_some_work, handler, error):
    column = np.array(["label %d" % i for i in range(DISTINCT)], dtype=object)
    cells = column.tolist()
    categories = [["before"]]
    after_some_work(handler)
    with pytest.raises(error) as raised:
        module.numpy_get_categories(column, [0], ["?", np.nan], categories)
    inside = [entry.name for entry in traceback.extract_tb(raised.value.__traceback__)]
    assert "numpy_get_categories" in inside
    assert categories == [["before"]]
    assert all(left is right for left, right in zip(column.tolist(), cells))


def test_statistics_of_a_long_column_are_interrupted(after_some_work):
    column = np.array(["%d" % i for i in range(DISTINCT)], dtype=object)
    after_some_work(keyboard_interrupt)
    with pytest.raises(KeyboardInterrupt) as raised:
        module.numpy_whatis(column, ["?"], False, False, True, True)
    inside = [entry.name for entry in traceback.extract_tb(raised.value.__traceback__)]
    assert "numpy_whatis" in inside


@pytest.mark.parametrize("fresh", ["%d.5", "word %d", "+%d", ""], ids=repr)
@pytest.mark.parametrize("dtype", [object, "U12"])
def test_a_handler_may_replace_the_cells(after_some_work, fresh, dtype):
    """Texts that a handler has freed are not read."""
    column = np.empty(ROWS, dtype=dtype)
    texts = [fresh % i if fresh else fresh for i in range(200)]
    replaced = []

    def replace_cells(_signal, _frame):
        column[:] = np.array(texts, dtype=dtype)[np.arange(ROWS) % len(texts)]
        texts[:] = [text + " " for text in texts[1:]] + ["1"]
        gc.collect()
        replaced.append(True)

    for _ in range(6):
        column[:] = np.array(["%d" % i for i in range(1000)], dtype=dtype)[np.arange(ROWS) % 1000]
        column[5] = "a plain text"
        column[7] = "~"
        after_some_work(replace_cells, seconds=0.003)
        markers, kind = module.numpy_whatis(column, MARKERS)
        assert kind in KINDS
        assert all(isinstance(marker, (str, float)) for marker in markers)
    assert replaced
