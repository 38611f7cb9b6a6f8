"""Replacements for the names that the module looks up when a routine runs."""

from __future__ import annotations

from typing import Any

from quorin_libs.utils import exportable_utils

from .recipes import build


class Looked(BaseException):
    """Raised by a replaced name. Not an Exception, so no routine can handle it."""


class Recorder:
    """Records the arguments of each call and returns what `answer` returns for them."""

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


class Overlay:
    """Another object's attributes, some of them replaced; records which are read."""

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


class FixedAnswer:
    """Returns a new object of the same value from every call, or raises the given exception."""

    def __init__(self, answer: Any) -> None:
        self.answer = answer

    def __call__(self, *args: Any, **kwargs: Any) -> Any:
        if isinstance(self.answer, Exception):
            raise self.answer
        return build(self.answer, {})

    def __repr__(self) -> str:
        return "FixedAnswer({!r})".format(self.answer)


class Clock:
    """Replaces `time`. Each reading is twice the last, so a difference identifies two readings."""

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


def set_clock(monkeypatch):
    """Replace the module's `time` with a `Clock` and return it."""
    clock = Clock()
    monkeypatch.setattr(exportable_utils, "time", clock)
    return clock


def record(monkeypatch, name, answer=None, owner=exportable_utils):
    """Replace a routine with a `Recorder`, which calls the routine unless an answer is given."""
    recorder = Recorder(getattr(owner, name) if answer is None else answer)
    monkeypatch.setattr(owner, name, recorder)
    return recorder


def replace_in(monkeypatch, module_name, **replaced):
    """Replace names of a library (`np`, `pd`, `six`, ...) as the module sees it."""
    overlay = Overlay(getattr(exportable_utils, module_name), **replaced)
    monkeypatch.setattr(exportable_utils, module_name, overlay)
    return overlay


class OnlyAttributes:
    """The allowed attributes of another object; any other attribute raises `Looked`."""

    def __init__(self, name, base, allowed):
        self._name = name
        self._base = base
        self._allowed = allowed

    def __getattr__(self, name):
        if name not in self._allowed:
            raise Looked("{}.{}".format(self._name, name))
        return getattr(self._base, name)


class Foreign(Exception):
    """Raised by replaced functions."""


def refuse(*args, **kwargs):
    """Raises `Foreign`."""
    raise Foreign


def always(answer):
    """A function that returns the answer, whatever its arguments."""
    return lambda *args, **kwargs: answer
