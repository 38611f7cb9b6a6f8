"""Routines called by eight threads on columns and lists that other code changes meanwhile.

numpy releases the GIL while it allocates an array of about 1 KiB or more, so other threads may run
in the middle of a routine; so may finalizers, signal handlers and log handlers. No call may crash,
raise SystemError or return a result of a wrong form. The storm runs in a process of its own, which
a crash would end.
"""

from __future__ import annotations

import contextlib
import functools
import gc
import logging
import os
import random
import signal
import subprocess
import sys
import threading

import numpy as np
import pandas as pd
import pytest

import quorin_libs.utils.exportable_utils as eu
from quorin_libs.utils.exportable_utils import FCplus

ROWS = 1500  # a mask of more than 1 KiB
FEWER_ROWS = 1100
THREADS = 8
WRITERS = 4
CALLS_OF_A_THREAD = 600
KINDS = {
    "missing", "char_str", "int_str", "float_str", "float_num", "float_int_num", "int_num",
    "boolean", "Unknown",
}  # fmt: skip
REBOUND = ["isint", "isfloat", "indicator_mask", "numpy_isin", "compress_string"]


def fresh(word, number):
    """A new str, to which only its column refers."""
    return "{} {}".format(word, number)


CELLS = {
    "words": lambda rng: rng.choice(["?", "", None, fresh("word", rng.randrange(40)), "a b"]),
    "numbers as text": lambda rng: rng.choice(["?", "-", str(rng.randrange(10**6)), "2.5"]),
    "numbers": lambda rng: rng.choice([None, float("nan"), rng.randrange(10**6), 2.5]),
    "mixture": lambda rng: rng.choice(["?", None, 1.5, 12345678, fresh("x", rng.random())]),
}


def column_of(cell, rng, rows=ROWS):
    column = np.empty(rows, dtype=object)
    for row in range(rows):
        column[row] = cell(rng)
    return column


class Storm:
    """The shared columns and lists, and everything that changes them."""

    def __init__(self, seed):
        rng = random.Random(seed)
        self.objects = {kind: column_of(cell, rng) for kind, cell in CELLS.items()}
        self.first_cells = {kind: column.copy() for kind, column in self.objects.items()}
        words = column_of(CELLS["words"], rng)
        self.others = [
            np.array([str(word) for word in words]),
            np.array([rng.choice([1.0, 2.5, np.nan]) for _ in range(ROWS)]),
            np.arange(ROWS) % 7,
            np.arange(ROWS) % 2 == 0,
        ]
        self.cells_of_frame = np.array([["f"], ["m"]] * (ROWS // 2), dtype=object)
        # numpy's own loops over objects crash if this column shrinks. It is passed only to routines
        # whose interpreter route indexes the column row by row.
        self.resized = column_of(CELLS["numbers as text"], rng)
        self.frame = pd.DataFrame(self.cells_of_frame, copy=False)
        self.table = np.array([self.others[1]] * 3).T.copy()
        self.markers = ["?", "", "-", None, float("nan"), 1] + [fresh("word", i) for i in range(6)]
        self.old_markers = []
        self.replaced = []
        self.done = False
        self.writers = [
            self.replace_markers, self.replace_markers, self.replace_markers,
            self.replace_markers, self.write_cells, self.write_numbers, self.resize, self.rebind,
        ]  # fmt: skip
        self.changing = threading.local()
        self.random = rng

    def change(self, *unused):
        """Make a random change, unless this thread is already making one."""
        if getattr(self.changing, "now", False):
            return
        self.changing.now = True
        try:
            if self.replaced and self.random.random() < 0.8:
                self.restore()
            self.random.choice(self.writers)()
        except (ValueError, IndexError):
            pass  # another writer has resized the column
        finally:
            self.changing.now = False

    def change_until_done(self):
        while not self.done:
            self.change()

    def replace_markers(self):
        """Replace the words among the markers. The length stays, and the old words stay alive.

        The interpreter route hands the list to numpy.asarray() and pandas.isnull(). numpy reads
        borrowed elements of a list and crashes if they are freed or the list shrinks meanwhile.
        """
        self.old_markers.append(self.markers[6:])
        self.markers[6:] = [fresh("word", self.random.randrange(40)) for _ in range(6)]

    def write_cells(self):
        """Replace all cells with one new text, or with the initial cells."""
        kind = self.random.choice(sorted(self.objects))
        text = fresh("word" * self.random.choice([1, 60]), self.random.random())
        self.objects[kind][:] = self.random.choice([text] + [self.first_cells[kind]] * 4)

    def write_numbers(self):
        self.others[1][self.random.randrange(FEWER_ROWS)] = np.nan
        self.table[self.random.randrange(ROWS), 1] = np.nan
        self.others[0][self.random.randrange(ROWS)] = fresh("w", self.random.randrange(9))
        self.cells_of_frame[self.random.randrange(ROWS), 0] = fresh("f", 1)

    def resize(self):
        if len(self.resized) == ROWS:
            self.resized.resize(FEWER_ROWS, refcheck=False)
        else:
            self.resized = column_of(CELLS["numbers as text"], self.random)

    def rebind(self):
        name = self.random.choice(REBOUND)
        self.replaced.append(name)
        setattr(eu, name, functools.partial(ORIGINAL[name]))

    def restore(self):
        while self.replaced:
            name = self.replaced.pop()
            setattr(eu, name, ORIGINAL[name])

    def resized_column(self, rng):
        return rng.choice([self.resized, self.column(rng)])

    def column(self, rng):
        return rng.choice(list(self.objects.values()) + self.others)


ORIGINAL = {name: getattr(eu, name) for name in REBOUND}


def is_mask(result):
    return type(result) is np.ndarray and result.dtype == bool and result.ndim == 1


def is_column(result):
    return type(result) is np.ndarray and result.ndim in (1, 2)


def is_truth(result):
    return isinstance(result, (bool, np.bool_))


def are_markers(found):
    return type(found) is list and all(
        marker is None or isinstance(marker, (str, float, int)) for marker in found
    )


def is_indicator(result):
    mask, masks, found = result
    return is_mask(mask) and type(masks) is list and are_markers(found)


def is_classified(result):
    markers, kind = result
    return are_markers(markers) and kind in KINDS


def is_unique(result):
    values, counts = result
    return is_column(values) and counts.dtype == np.intp and len(values) == len(counts)


def is_classes(result):
    return type(result) is list and all(
        type(pair) is tuple and len(pair) == 2 and type(pair[1]) is float and pair[1] >= 1
        for pair in result
    )


def is_indices(result):
    return type(result) is list and all(type(index) is int for index in result)


def is_float64(result):
    return type(result) is np.ndarray and result.dtype == np.float64 and result.ndim == 1


def is_categories(result):
    return type(result) is list and len(result) == 1


# The arguments of each routine with a native route, and the form of its result. Where a routine
# writes in place, it gets a copy.
CALLS = {
    "compress_str_column": (
        lambda s, rng: (np.array(s.objects["words"]), s.markers, rng.choice(["string", "hash"])),
        is_column,
    ),
    "get_unique_values": (
        lambda s, rng: (s.column(rng), rng.choice([None, s.markers]), False, False, True),
        is_unique,
    ),
    "indicator_mask": (lambda s, rng: ({"?", "", "a b"}, s.column(rng)), is_mask),
    "numpy_boolean2float": (lambda s, rng: (s.others[3], s.markers), is_float64),
    "numpy_column_float2str": (lambda s, rng: (s.column(rng),), is_column),
    "numpy_compute_missing_indicator": (
        lambda s, rng: (s.column(rng), s.markers, rng.random() < 0.5),
        is_indicator,
    ),
    "numpy_floatstr2float": (lambda s, rng: (s.resized_column(rng), s.markers), is_float64),
    "numpy_get_categories": (
        lambda s, rng: (s.objects["words"].reshape(-1, 1), [0], s.markers),
        is_categories,
    ),
    "numpy_isin": (lambda s, rng: (s.column(rng), s.markers), is_mask),
    "numpy_isintstr": (lambda s, rng: (s.resized_column(rng), s.markers), is_truth),
    "numpy_putmask": (
        lambda s, rng: (s.column(rng), np.arange(ROWS) % 2 == 0, "filling"),
        is_column,
    ),
    "numpy_replace_values": (lambda s, rng: (s.column(rng), "filling", s.markers), is_column),
    "numpy_whatis": (lambda s, rng: (s.column(rng), s.markers, rng.random() < 0.3), is_classified),
    "FCplus.check_statistics": (
        lambda s, rng: (pd.Series(s.others[1], copy=False), 1, 1, 0, 3, 3, [1, 2.5]),
        is_truth,
    ),
    "FCplus.getClasses": (lambda s, rng: (s.column(rng), True, s.markers), is_classes),
    "FCplus.get_dataset_missing_columns": (lambda s, rng: (s.table, s.markers), is_indices),
    "FCplus.get_dataset_non_numeric_columns": (lambda s, rng: (s.table, s.markers), is_indices),
    "FCplus.is_column_categorical": (lambda s, rng: (s.column(rng), s.markers), is_truth),
    "FCplus.is_column_categorical_mult_cats": (lambda s, rng: (s.column(rng), s.markers), is_truth),
    "FCplus.is_column_sex": (lambda s, rng: (s.frame,), is_truth),
    "FCplus.is_dataset_missing": (lambda s, rng: (s.table, s.markers), is_truth),
    "FCplus.is_dataset_numeric": (lambda s, rng: (s.table, s.markers), is_truth),
    "FCplus.is_dataset_preprocessed": (lambda s, rng: (s.table, s.markers), is_truth),
    "FCplus.is_num_column_categorical": (lambda s, rng: (s.column(rng),), is_truth),
}


def find_routine(name):
    return getattr(FCplus, name[len("FCplus.") :]) if "." in name else getattr(eu, name)


class Cell:
    """Cyclic garbage whose finalizer makes a change."""

    def __init__(self, storm):
        self.storm = storm
        self.me = self

    def __del__(self):
        self.storm.change()


class Handler(logging.Handler):
    """Makes a change for each log record."""

    def __init__(self, storm):
        super().__init__()
        self.storm = storm

    def emit(self, record):
        self.storm.change()


def call_routines(storm, seed, results):
    """Call every routine several times; note each result of a wrong form."""
    rng = random.Random(seed)
    names = sorted(CALLS)
    for _ in range(CALLS_OF_A_THREAD):
        name = rng.choice(names)
        arguments, is_well_formed = CALLS[name]
        Cell(storm)
        try:
            result = find_routine(name)(*arguments(storm, rng))
        except (SystemError, MemoryError) as error:
            results.append((name, repr(error)))
        except Exception:  # a routine may reject a column that changes
            results.append((name, "refused"))
        else:
            right = is_well_formed(result)
            results.append((name, "right" if right else "wrong: {!r:.200}".format(result)))


@contextlib.contextmanager
def writers_at_work(storm):
    """Changes by finalizers, by callbacks of garbage collection, by signal and log handlers."""
    handler = Handler(storm)
    callback = lambda phase, info: storm.change()  # noqa: E731
    interval, threshold = sys.getswitchinterval(), gc.get_threshold()
    logging.getLogger().addHandler(handler)
    signal.signal(signal.SIGALRM, storm.change)
    signal.setitimer(signal.ITIMER_REAL, 0.01, 0.01)
    gc.callbacks.append(callback)
    gc.set_threshold(200)
    sys.setswitchinterval(1e-6)
    try:
        yield
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        sys.setswitchinterval(interval)
        gc.set_threshold(*threshold)
        gc.callbacks.remove(callback)
        logging.getLogger().removeHandler(handler)


def run_storm(seed):
    """The results of all calls. This thread is the eighth and receives the signals."""
    storm = Storm(seed)
    results = []
    threads = [
        threading.Thread(target=call_routines, args=(storm, "{} {}".format(seed, i), results))
        for i in range(THREADS - 1)
    ]
    writers = [threading.Thread(target=storm.change_until_done) for _ in range(WRITERS)]
    with writers_at_work(storm):
        for thread in threads + writers:
            thread.start()
        call_routines(storm, seed, results)
        for thread in threads:
            thread.join()
        storm.done = True
        for thread in writers:
            thread.join()
    return results


def main(seed):
    with open(os.devnull, "w") as nowhere, contextlib.redirect_stdout(nowhere):
        results = run_storm(seed)
    wrong = sorted({r for r in results if r[1] not in ("right", "refused")})
    right = {name for name, form in results if form == "right"}
    print("{} calls, {} right".format(len(results), sum(r[1] == "right" for r in results)))
    assert len(results) == THREADS * CALLS_OF_A_THREAD
    assert not wrong, wrong
    assert right == set(CALLS), sorted(set(CALLS) - right)


def test_every_native_route_is_called():
    routines = [(name, getattr(eu, name)) for name in dir(eu)]
    routines += [("FCplus." + name, getattr(FCplus, name)) for name in dir(FCplus)]
    native = {name for name, routine in routines if getattr(routine, "_native_lookups", ())}
    assert native
    assert native <= set(CALLS)


@pytest.mark.skipif(not hasattr(signal, "setitimer"), reason="no timer's signals")
@pytest.mark.parametrize("seed", [1, 2, 3])
def test_storm(seed):
    done = subprocess.run(
        [sys.executable, "-X", "faulthandler", os.path.abspath(__file__), str(seed)],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        universal_newlines=True,
        check=False,
        timeout=300,
    )
    assert done.returncode == 0, "exit status {}\n{}".format(done.returncode, done.stdout[-6000:])


if __name__ == "__main__":
    if "interpreter" in sys.argv:  # one name replaced: no native route is taken
        eu.numpy_isintstr = functools.partial(eu.numpy_isintstr)
    main(int(sys.argv[1]))
