"""Signal handlers that raise or change the column while a long transform runs."""

from __future__ import annotations

import functools
import signal
import traceback

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as module

# Signals are answered at most once in 20 ms. A call that ends without an answer is repeated, in the
# end with up to 16 times as many rows.
ROWS = 1600000
ROW_COUNTS = [ROWS * times for times in (1, 1, 1, 2, 4, 8, 16)]
WORDS = ["label a", "x y z", "p  q", "two words"]


class Interrupt(Exception):
    """Raised by the handler of the timer."""


def made_once(make):
    """A function that returns copies of what `make` returns."""
    kept = functools.lru_cache(maxsize=1)(make)
    return lambda *arguments: kept(*arguments).copy()


def objects(cells):
    column = np.empty(len(cells), dtype=object)
    column[:] = cells
    return column


@made_once
def words(rows, dtype):
    column = np.array(WORDS * (rows // len(WORDS)), dtype="U12")
    return column.astype(dtype)


@made_once
def floats(rows):
    return np.arange(rows) + 0.25


@made_once
def number_objects(rows):
    return objects(floats(rows))


@made_once
def number_texts(rows):
    return objects(["{:.6f}".format(i) for i in range(1000)] * (rows // 1000))


def even_rows(column):
    return np.arange(len(column)) % 2 == 0


OUT_OF_PLACE = {
    "numbers to text": lambda rows: (module.numpy_column_float2str, floats(rows)),
    "number objects to text": lambda rows: (module.numpy_column_float2str, number_objects(rows)),
    "texts to numbers": lambda rows: (
        module.numpy_floatstr2float,
        number_texts(rows),
        ["?"],
    ),
    "texts under a mask": lambda rows: (
        module.numpy_putmask,
        words(rows, "U12"),
        even_rows(range(rows)),
        "x",
    ),
    "reference values in texts": lambda rows: (
        module.numpy_replace_values,
        words(rows, "U12"),
        "x",
        ["x y z", "?"],
    ),
    "reference values in a table": lambda rows: (
        module.numpy_replace_values,
        floats(rows).reshape(-1, 4),
        "x",
        [1.25, 2.25],
    ),
}
IN_PLACE = {
    "number objects to text": lambda rows: (
        module.numpy_column_float2str,
        number_objects(rows),
        False,
    ),
    "labels of objects": lambda rows: (module.compress_str_column, words(rows, "O"), ["?"]),
    "digests of objects": lambda rows: (
        module.compress_str_column,
        words(rows, "O"),
        ["?"],
        "hash",
    ),
    "labels of fixed width": lambda rows: (module.compress_str_column, words(rows, "U12"), ["?"]),
    "digests of fixed width": lambda rows: (
        module.compress_str_column,
        words(rows, "U12"),
        ["?"],
        "hash",
    ),
}


def call_with_timer(call, act):
    """What `call` returns or raises if `act` ran inside it; None if `act` ran at another time.

    `call` is a routine and its arguments. If a handler raises, the traceback has an entry of the
    routine only if the routine was running.
    """
    routine, arguments = call[0], call[1:]
    inside = []

    def handle(signum, frame):
        inside.append(frame.f_code.co_name)
        if len(inside) == 1:
            act()

    def run():
        return routine(*arguments)

    before = signal.signal(signal.SIGALRM, handle)
    signal.setitimer(signal.ITIMER_REAL, 0.002)
    try:
        result = run()
        signal.setitimer(signal.ITIMER_REAL, 0)
    except Exception as error:
        names = [entry.name for entry in traceback.extract_tb(error.__traceback__)]
        return error if routine.__name__ in names else None
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)
    return result if inside and inside[0] == "run" else None


def interrupted(make, act):
    """The arguments and the outcome of a call inside which `act` ran."""
    for rows in ROW_COUNTS:
        call = make(rows)
        outcome = call_with_timer(call, lambda: act(call[1]))
        if outcome is not None:
            return call, outcome
    pytest.fail("no signal was answered inside of the call")


def give_up(column):
    raise Interrupt


@pytest.mark.parametrize("case", sorted(OUT_OF_PLACE))
def test_the_argument_stays_as_it_was(case):
    (_, column, *_rest), error = interrupted(OUT_OF_PLACE[case], give_up)
    assert type(error) is Interrupt
    assert (column == OUT_OF_PLACE[case](column.size)[1]).all()


@pytest.mark.parametrize("case", sorted(IN_PLACE))
def test_a_prefix_of_the_rows_is_written(case):
    (_, column, *_rest), error = interrupted(IN_PLACE[case], give_up)
    assert type(error) is Interrupt
    routine, unwritten, *more = IN_PLACE[case](len(column))
    written = routine(unwritten.copy(), *more)
    assert (written != unwritten).all()
    changed = column != unwritten
    rows = np.count_nonzero(changed)
    assert rows < len(column)
    assert changed[:rows].all()
    assert (column[:rows] == written[:rows]).all()


def test_rows_before_the_interrupt_are_written():
    """The texts of a block are written before the next block is converted."""
    (_, column, _flag), _error = interrupted(IN_PLACE["number objects to text"], give_up)
    assert type(column[0]) is str
    assert type(column[-1]) is float


def test_texts_that_grow_meanwhile_are_written_whole():
    long_text = "a text that is longer than every number"

    def lengthen(column):
        column[:] = long_text

    _, result = interrupted(OUT_OF_PLACE["number objects to text"], lengthen)
    numbers = [str(number) for number in floats(len(result))[-10:]]
    assert result[0] in ("0.25", long_text)
    assert result[-10:].tolist() in (numbers, [long_text] * 10)


def test_a_column_that_shrinks_meanwhile():
    def shrink(column):
        column.resize(len(column) // 2, refcheck=False)

    (_, column), result = interrupted(OUT_OF_PLACE["numbers to text"], shrink)
    assert len(column) in [rows // 2 for rows in ROW_COUNTS]
    assert result.shape == column.shape
    assert result[-1] == "{}.25".format(len(column) - 1)


@pytest.mark.parametrize("case", ["digests of objects", "digests of fixed width"])
def test_a_column_that_may_no_longer_be_written_into(case):
    def freeze(column):
        column.flags.writeable = False

    (_, column, *_rest), error = interrupted(IN_PLACE[case], freeze)
    assert type(error) is ValueError
    assert "read-only" in str(error)
    routine, unwritten, *more = IN_PLACE[case](len(column))
    changed = column != unwritten
    rows = np.count_nonzero(changed)
    assert rows < len(column)
    assert changed[:rows].all()
