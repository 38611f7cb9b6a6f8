"""Runs the model and the module on equal arguments and reports the differences."""

from __future__ import annotations

import contextlib
import io
import logging
import operator
import re
import time
import warnings
from typing import Any, Dict, Iterator, List, Optional, Tuple

import quorin_libs.utils.exportable_utils as module
from reference import ns as model

from .description import Describer
from .recipes import call

ADDRESS = re.compile(r"(?<= at )0x[0-9a-fA-F]{6,16}")
TRACEBACK = "Traceback (most recent call last):\n"
TAIL = "\nExiting ..."
# Old numpy warns when its aliases of built-in types are read. Either side may avoid reading them.
ALIAS = re.compile(r"`np\.(float|int|bool)` is a deprecated alias")


DELETED = object()


class Tally:
    """The number of comparisons made in this process."""

    cases = 0


class Records(logging.Handler):
    def __init__(self) -> None:
        super().__init__(level=0)
        self.seen: List[Tuple[str, str]] = []

    def emit(self, record: logging.LogRecord) -> None:
        self.seen.append((record.levelname, normal_text(record.getMessage())))


class Clock:
    """Replaces `time.time`; each call returns 0.25 s more."""

    def __init__(self) -> None:
        self.now = 1000.0

    def __call__(self) -> float:
        self.now += 0.25
        return self.now


def normal_text(text: str) -> str:
    """The text without addresses; an appended traceback keeps only its head and its last line."""
    if TRACEBACK in text and text.endswith(TAIL):
        head, _, body = text[: -len(TAIL)].partition(TRACEBACK)
        text = head + TRACEBACK + "..." + body.rstrip("\n").rpartition("\n")[2] + "\n" + TAIL
    return ADDRESS.sub("0x?", text)


@contextlib.contextmanager
def replaced(namespace: Any, names: Dict[str, Any]) -> Iterator[None]:
    """Binds other objects to some names (`FC`, `FCplus.is_numerical`) inside the with block."""
    before: List[Tuple[Any, str, Any]] = []
    order = list(vars(namespace))
    try:
        for dotted, value in names.items():
            owner, name = find_owner(namespace, dotted)
            before.append((owner, name, vars(owner)[name]))
            if value is DELETED:
                delattr(owner, name)
            else:
                setattr(owner, name, value)
        yield
    finally:
        for owner, name, value in reversed(before):
            setattr(owner, name, value)
        if any(value is DELETED for value in names.values()):
            restore_order(vars(namespace), order)


def restore_order(namespace: Dict[str, Any], order: List[str]) -> None:
    """A restored name is the last of its dictionary; other tests check the order."""
    for name in order:
        namespace[name] = namespace.pop(name)


def find_owner(namespace: Any, dotted: str) -> Tuple[Any, str]:
    owner, _, name = dotted.rpartition(".")
    return (operator.attrgetter(owner)(namespace) if owner else namespace), name


def find_routine(namespace: Any, dotted: str) -> Any:
    owner, name = find_owner(namespace, dotted)
    return getattr(owner, name)


@contextlib.contextmanager
def observed(frozen: bool) -> Iterator[Dict[str, Any]]:
    """Collects output, log records and warnings; `frozen` replaces the clock."""
    seen: Dict[str, Any] = {}
    records = Records()
    root = logging.getLogger()
    level, handlers = root.level, root.handlers
    real_time = time.time
    printed = io.StringIO()
    try:
        with contextlib.redirect_stdout(printed), warnings.catch_warnings(record=True) as warned:
            warnings.simplefilter("always")
            root.handlers = [records]
            root.setLevel(logging.DEBUG)
            if frozen:
                time.time = Clock()  # type: ignore[assignment]
            yield seen
    finally:
        time.time = real_time
        root.handlers = handlers
        root.setLevel(level)
        seen["printed"] = normal_text(printed.getvalue())
        seen["logged"] = records.seen
        seen["warned"] = [
            (w.category.__name__, normal_text(str(w.message)))
            for w in warned
            if not ALIAS.search(str(w.message))
        ]


def outcome(
    namespace: Any,
    name: str,
    args: Tuple[Any, ...],
    kwargs: Dict[str, Any],
    trace: Optional[Any] = None,
    stand_ins: Optional[Dict[str, Any]] = None,
) -> Dict[str, Any]:
    """What is observable of a call: result or error, output, log, warnings, arguments after it."""
    built_args, built_kwargs = call(args, kwargs)
    describer = Describer()
    describer.register(built_args, built_kwargs)
    names = {} if trace is None else trace.wrappers(namespace, describer)
    names.update(stand_ins or {})
    result, error = None, None
    with replaced(namespace, names):
        routine = find_routine(namespace, name)
        with observed(frozen="debug" in kwargs) as seen:
            try:
                result = routine(*built_args, **built_kwargs)
            except Exception as e:
                error = e
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        if error is not None:
            seen["error"] = (type(error), normal_text(str(error)))
            seen["error arguments"] = [
                normal_text(arg) if type(arg) is str else describer.describe(arg)
                for arg in error.args
            ]
        else:
            seen["result"] = describer.describe(result)
        seen["arguments"] = describer.describe((built_args, built_kwargs))
    if trace is not None:
        seen["calls"] = trace.take()
    return seen


def show_call(name: str, args: Tuple[Any, ...], kwargs: Dict[str, Any]) -> str:
    parts = [repr(arg) for arg in args]
    parts += ["{}={!r}".format(key, value) for key, value in kwargs.items()]
    return "{}({})".format(name, ", ".join(parts))


def compare(
    name: str,
    args: Tuple[Any, ...] = (),
    kwargs: Optional[Dict[str, Any]] = None,
    trace: Optional[Any] = None,
    stand_ins: Optional[Dict[str, Any]] = None,
) -> Dict[str, Any]:
    """Returns the outcome of a call; raises AssertionError if model and module differ."""
    kwargs = kwargs or {}
    Tally.cases += 1
    expected = outcome(model, name, args, kwargs, trace, stand_ins)
    found = outcome(module, name, args, kwargs, trace, stand_ins)
    if expected != found:
        lines = [show_call(name, args, kwargs)]
        lines += ["  with {} -> {!r}".format(*item) for item in (stand_ins or {}).items()]
        for key in sorted(set(expected) | set(found)):
            if expected.get(key) != found.get(key):
                lines.append("  {}".format(key))
                lines.append("    model:  {!r}".format(expected.get(key)))
                lines.append("    module: {!r}".format(found.get(key)))
        raise AssertionError("\n".join(lines))
    return expected
