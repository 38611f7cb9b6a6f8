"""The native route and the interpreter route of a routine, side by side.

A native route runs only if every name that an interpreter route looks up is bound to the object
that start-up bound. Binding such a name to a pass-through, which changes no result, forces the
interpreter route.
"""

from __future__ import annotations

import contextlib
import functools
import gc
import io
import re
import sys
import types
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple

from .comparison import Tally, find_owner, find_routine, module, outcome, replaced, show_call
from .replacements import Overlay
from .route_columns import Twins

FLAG = re.compile("invalid value encountered in (not_)?equal$")


class _Instances(type):
    """Replaces a class in isinstance() and issubclass()."""

    def __instancecheck__(cls, value: Any) -> bool:
        return isinstance(value, cls.real)  # type: ignore[attr-defined]

    def __subclasscheck__(cls, other: type) -> bool:
        return issubclass(other, cls.real)  # type: ignore[attr-defined]


def pass_through(dotted: str, wrap: Callable[[Any], Any] = functools.partial) -> Any:
    """Another object with the behaviour of the one bound to this name.

    A `functools.partial` has no frame of its own, so a profiler sees only the calls of the
    interpreter route.
    """
    owner, name = find_owner(module, dotted)
    value = getattr(owner, name)
    if dotted == "np.nan":
        return float("nan")
    if dotted == "six.string_types":
        return value + value
    if isinstance(value, list):
        return list(value)
    if isinstance(value, types.ModuleType) or dotted in ("FC", "FCplus"):
        return Overlay(value)
    if dotted == "pd.Series":
        return type("Series", (value,), {})
    if dotted == "pd.Series.unique":
        return lambda series: value(series)
    if dotted in ("np.ndarray", "np.integer", "np.bool_", "np.float", "numbers.Integral"):
        return _Instances(name, (), {"real": value})
    passed = wrap(value)
    return staticmethod(passed) if dotted.startswith(("FC.", "FCplus.")) else passed


def without_places(description: Any) -> Any:
    """The description of a result without the identity of texts and numbers.

    numpy's sort is not stable: it may return any of several equal objects.
    """
    if not isinstance(description, (tuple, list)):
        return description
    parts = [without_places(part) for part in description]
    if len(parts) == 3 and parts[0] in (str, float, int):
        parts[1] = None
    return tuple(parts)


def shown(
    name: str,
    args: Tuple[Any, ...],
    kwargs: Dict[str, Any],
    names: Dict[str, Any],
    trace: Any = None,
) -> Dict[str, Any]:
    """The outcome of a call while some names are replaced.

    Fraction.__eq__ with NaN is Python code that may leave the floating-point flag set, depending on
    the state of the interpreter; numpy then warns, on both routes.
    """
    seen = outcome(module, name, args, kwargs, trace, names)
    if "Fraction(" in repr((args, kwargs)):
        seen["warned"] = [warning for warning in seen["warned"] if not FLAG.match(warning[1])]
    return seen


def compare_routes(
    name: str, by: str, args: Tuple[Any, ...], kwargs: Optional[Dict[str, Any]] = None
) -> Dict[str, Any]:
    """Returns the outcome of a call; raises AssertionError if the two routes differ."""
    kwargs = kwargs or {}
    Tally.cases += 1
    plain = shown(name, args, kwargs, {})
    forced = shown(name, args, kwargs, {by: pass_through(by)})
    if any(isinstance(arg, Twins) for arg in args):
        for seen in (plain, forced):
            seen["result"] = without_places(seen.get("result"))
    if plain != forced:
        lines = [show_call(name, args, kwargs)]
        for key in sorted(set(plain) | set(forced)):
            if plain.get(key) != forced.get(key):
                lines.append("  {}".format(key))
                lines.append("    as it stands:        {!r}".format(plain.get(key)))
                lines.append("    {} replaced: {!r}".format(by, forced.get(key)))
        raise AssertionError("\n".join(lines))
    return plain


def events_of(
    name: str,
    args: Sequence[Any],
    by: Optional[str] = None,
    replacement: Any = None,
) -> List[Tuple[str, str]]:
    """The calls that a profiler sees while the routine runs, as (event, function).

    The name `by`, if given, is bound to `replacement` or to a pass-through.
    """
    seen: List[Tuple[str, str]] = []

    def note(frame: Any, event: str, arg: Any) -> None:
        if event == "call":
            seen.append(
                (event, "{}.{}".format(frame.f_globals.get("__name__"), frame.f_code.co_name))
            )
        elif event == "c_call":
            seen.append((event, getattr(arg, "__name__", repr(arg))))

    if by is not None and replacement is None:
        replacement = pass_through(by)
    names = {} if by is None else {by: replacement}
    with replaced(module, names), contextlib.redirect_stdout(io.StringIO()):
        routine = find_routine(module, name)
        gc.disable()  # Hypothesis registers a callback for garbage collection, which would be seen.
        try:
            sys.setprofile(note)
            try:
                routine(*args)
            except Exception:
                pass
        finally:
            sys.setprofile(None)
            gc.enable()
    # setprofile() itself is the last event.
    return [event for event in seen if event != ("c_call", "setprofile")]
