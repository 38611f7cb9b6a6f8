"""What several tests of the column routines share: exact comparison and stand-ins for names."""

from __future__ import annotations

import traceback

import numpy as np
import pandas as pd

from quorin_libs.utils import exportable_utils


def objects(*cells):
    """A column of dtype object that holds the very cells, nested ones included."""
    column = np.empty(len(cells), dtype=object)
    for row, cell in enumerate(cells):
        column[row] = cell
    return column


def typed(value):
    """A picture of a value in which types, dtypes and order count and NaN equals NaN."""
    kind = type(value).__name__
    if isinstance(value, np.ndarray):
        return kind, str(value.dtype), value.shape, [typed(cell) for cell in value.ravel().tolist()]
    if isinstance(value, pd.Series):
        return kind, str(value.dtype), list(value.index), [typed(cell) for cell in value]
    if isinstance(value, (list, tuple)):
        return kind, [typed(cell) for cell in value]
    if isinstance(value, dict):
        return kind, [(typed(key), typed(cell)) for key, cell in value.items()]
    if isinstance(value, float):
        return kind, repr(float(value))
    return kind, value


def mask(*bits):
    """A mask of the given 0 and 1."""
    return np.array(bits, dtype=bool)


def message_of(error, function, *args):
    """The words with which the interpreter or a library at hand refuses this call."""
    try:
        function(*args)
    except error as refusal:
        return str(refusal)
    raise AssertionError("{!r} did not raise {!r}".format(function, error))


def names_in_traceback(excinfo):
    """The names of the traceback's entries, outermost first."""
    return [entry.name for entry in traceback.extract_tb(excinfo.value.__traceback__)]


class Clock:
    """Stands in for `time`. Every reading doubles, so a difference tells which two were taken."""

    def __init__(self):
        self.readings = 0

    def time(self):
        self.readings += 1
        return self.at(self.readings)

    @staticmethod
    def at(reading):
        return float(2 ** (reading - 1))

    def between(self, start, end):
        """The text of the time that elapsed between two readings, counted from 1."""
        return str(self.at(end) - self.at(start))


class Recorder:
    """Stands in for a routine: notes the arguments of each call and passes the call on."""

    def __init__(self, answer):
        self.answer = answer
        self.calls = []

    def __call__(self, *args, **kwargs):
        self.calls.append((args, kwargs))
        return self.answer(*args, **kwargs)

    def only_call(self):
        """Arguments and keywords of the one call that was made."""
        assert len(self.calls) == 1
        return self.calls[0]


class Standin:
    """Stands in for a module: the names given are replaced, all others are the module's own."""

    def __init__(self, module, **replaced):
        self.__dict__.update(replaced)
        self.__dict__["_module"] = module

    def __getattr__(self, name):
        return getattr(self._module, name)


def set_clock(monkeypatch):
    """Replace the module's `time` by a `Clock` and return it."""
    clock = Clock()
    monkeypatch.setattr(exportable_utils, "time", clock)
    return clock


def record(monkeypatch, name, answer=None, owner=exportable_utils):
    """Replace a routine by a `Recorder`, of the routine itself unless an answer is given."""
    recorder = Recorder(getattr(owner, name) if answer is None else answer)
    monkeypatch.setattr(owner, name, recorder)
    return recorder


def replace_in(monkeypatch, module_name, **replaced):
    """Replace names of a library (`np`, `pd`, `six`, ...) as the module sees it."""
    standin = Standin(getattr(exportable_utils, module_name), **replaced)
    monkeypatch.setattr(exportable_utils, module_name, standin)
    return standin


def records_of(caplog):
    """The log records as (logger, level, message, arguments)."""
    return [(r.name, r.levelname, r.getMessage(), r.args) for r in caplog.records]
