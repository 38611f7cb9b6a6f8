"""Signals are answered while masks and distinct values of long columns are computed."""

from __future__ import annotations

import functools
import signal
import sys
import threading

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.comparison import module

MARKERS = ["?", "", "-", np.nan]

pytestmark = pytest.mark.skipif(
    not hasattr(signal, "setitimer") or threading.current_thread() is not threading.main_thread(),
    reason="needs timer signals in the main thread",
)


class Stop(Exception):
    """Raised by the handler of the timer."""


def repeated(column, rows):
    """A column of `rows` rows that all share the memory of the first element (stride 0)."""
    return np.lib.stride_tricks.as_strided(column, shape=(rows,), strides=(0,))


def many_texts():
    rows = 500000
    return objects(*["word {}".format(i * 7919 % rows) for i in range(rows)])


# Signals are answered at most once in 20 ms. The repeated columns take longer on any machine.
COLUMNS = {
    "one marker": repeated(objects("?"), 160000000),
    "one text": repeated(objects("a text"), 160000000),
    "one fixed-width text": repeated(np.array(["text"]), 160000000),
    "one float": repeated(np.array([np.nan]), 400000000),
    "one integer": repeated(np.array([5]), 400000000),
    "many texts": many_texts(),
}
COLUMNS["many fixed-width texts"] = COLUMNS["many texts"].astype("U11")

CALLS = [
    ("numpy_isin", "one marker", (MARKERS,)),
    ("numpy_isin", "one float", (MARKERS,)),
    ("numpy_isin", "one integer", ([4, 5, 6],)),
    ("numpy_compute_missing_indicator", "one marker", (MARKERS,)),
    ("numpy_compute_missing_indicator", "one text", (MARKERS,)),
    ("numpy_compute_missing_indicator", "one float", (MARKERS, True)),
    ("get_unique_values", "one text", (None, False, False, True)),
    ("get_unique_values", "one text", (MARKERS, False, False, True)),
    ("get_unique_values", "one integer", (None, False, False, True)),
    ("get_unique_values", "one fixed-width text", (None, False, False, True)),
    ("get_unique_values", "many texts", (MARKERS, False, False, True)),
    ("get_unique_values", "many fixed-width texts", (None, False, False, True)),
]


@pytest.fixture
def handle():
    """Calls a function when the timer expires, once or repeatedly."""
    before = signal.getsignal(signal.SIGALRM)

    def start(function, seconds, interval=0.0):
        signal.signal(signal.SIGALRM, lambda number, frame: function())
        signal.setitimer(signal.ITIMER_REAL, seconds, interval)

    try:
        yield start
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)


def raise_stop():
    raise Stop


def finish(done, name, arguments):
    """Appends the result to `done`. No bytecode runs between the call's end and the append."""
    call = functools.partial(getattr(module, name), *arguments[:-1])
    done.extend(map(call, arguments[-1:]))


@pytest.mark.parametrize("name, kind, more", CALLS)
def test_an_exception_of_a_handler_ends_the_call(handle, name, kind, more):
    column = COLUMNS[kind]
    first = column[:1].copy()
    counted = [column, MARKERS] + MARKERS
    before = [sys.getrefcount(value) for value in counted]
    done = []
    handle(raise_stop, 0.001)
    with pytest.raises(Stop):
        finish(done, name, (column,) + more)
    assert done == []
    assert [sys.getrefcount(value) for value in counted] == before
    np.testing.assert_array_equal(column[:1], first)


@pytest.mark.parametrize("seconds", [0.001, 0.05, 0.1, 0.15])
def test_an_interrupted_call_gives_its_texts_back(handle, seconds):
    column = many_texts()
    before = [sys.getrefcount(column[row]) for row in (0, 1, len(column) - 1)]
    handle(raise_stop, seconds)
    try:
        module.get_unique_values(column, ["word 7"], False, False, True)
        signal.setitimer(signal.ITIMER_REAL, 0)  # the call may end before the timer expires
    except Stop as error:
        error.__traceback__ = None
    assert [sys.getrefcount(column[row]) for row in (0, 1, len(column) - 1)] == before


@pytest.mark.parametrize("kind", ["many texts", "many fixed-width texts"])
def test_a_handler_that_returns_does_not_change_the_result(handle, kind):
    column = COLUMNS[kind]
    values, counts = module.get_unique_values(column, None, False, False, True)
    answered = []
    handle(lambda: answered.append(len(done)), 0.001, 0.01)
    done = []
    finish(done, "get_unique_values", (column, None, False, False, True))
    signal.setitimer(signal.ITIMER_REAL, 0)
    assert answered[0] == 0
    np.testing.assert_array_equal(done[0][0], values)
    np.testing.assert_array_equal(done[0][1], counts)
    assert values.tolist() == sorted(column.tolist())


@pytest.mark.parametrize("kind", ["many texts", "many fixed-width texts"])
def test_a_handler_may_replace_the_texts(handle, kind):
    column = COLUMNS[kind].copy()
    answered = []

    def replace():
        answered.append(len(done))
        column[: len(column) // 2] = ["new {}".format(len(answered))] * (len(column) // 2)

    done = []
    handle(replace, 0.001, 0.05)
    finish(done, "get_unique_values", (column, None, False, False, True))
    signal.setitimer(signal.ITIMER_REAL, 0)
    assert answered[0] == 0
    values, counts = done[0]
    assert len(values) == len(counts) and counts.sum() == len(column)
    assert all(text.startswith(("word ", "new ")) for text in values.tolist())


@pytest.mark.filterwarnings("ignore:Setting the shape on a NumPy array:DeprecationWarning")
def test_a_handler_may_change_the_shape(handle):
    column = COLUMNS["many texts"].copy()
    answered = []

    def reshape():
        answered.append(len(done))
        column.shape = (len(column), 1) if column.ndim == 1 else (len(column),)

    done = []
    handle(reshape, 0.001)
    finish(done, "get_unique_values", (column, None, False, False, True))
    assert answered == [0]
    assert done[0][0].tolist() == sorted(column.ravel().tolist())
