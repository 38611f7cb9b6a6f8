"""Stand-ins for what the module looks up by name, and columns to call it with."""

from __future__ import annotations

import numpy as np


class Looked(BaseException):
    """Raised by a replaced name; no ``except Exception`` of a routine may swallow it."""


class Recorder:
    """A function that notes its calls and answers as ``answer`` does."""

    def __init__(self, answer):
        self.answer = answer
        self.calls = []

    def __call__(self, *args, **kwargs):
        self.calls.append((args, kwargs))
        return self.answer(*args, **kwargs)


class Overlay:
    """Another object's attributes, some of them replaced; notes which are read."""

    def __init__(self, base, **replaced):
        self._base = base
        self._read = []
        self._replaced = replaced

    def __getattr__(self, name):
        self._read.append(name)
        if name in self._replaced:
            value = self._replaced[name]
            if value is Looked:
                raise Looked(name)
            return value
        return getattr(self._base, name)


def objects(*values):
    column = np.empty(len(values), dtype=object)
    column[:] = values
    return column


def plain(value):
    if isinstance(value, tuple):
        return tuple(map(plain, value))
    if isinstance(value, np.ndarray):
        return (value.dtype, value.tolist())
    if isinstance(value, list):
        return list(map(plain, value))
    return value
