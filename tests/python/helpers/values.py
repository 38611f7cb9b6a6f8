"""Forms in which results, messages and log records are compared."""

from __future__ import annotations

import traceback

import numpy as np
import pandas as pd


def typed(value):
    """A form of a value that compares types, dtypes and order; NaN equals NaN."""
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


def message_of(error, function, *args):
    """The message of the exception that the call raises."""
    try:
        function(*args)
    except error as refusal:
        return str(refusal)
    raise AssertionError("{!r} did not raise {!r}".format(function, error))


def names_in_traceback(excinfo):
    """The function names of the traceback, outermost first."""
    return [entry.name for entry in traceback.extract_tb(excinfo.value.__traceback__)]


def records_of(caplog):
    """The log records as (logger, level, message, arguments)."""
    return [(r.name, r.levelname, r.getMessage(), r.args) for r in caplog.records]


def as_lists(value):
    """Arrays as (dtype, list), so that repr shows every element."""
    if isinstance(value, tuple):
        return tuple(map(as_lists, value))
    if isinstance(value, np.ndarray):
        return (value.dtype, value.tolist())
    if isinstance(value, list):
        return list(map(as_lists, value))
    return value
