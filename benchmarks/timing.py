"""Times calls in turns, to compare them."""

from __future__ import annotations

import contextlib
import gc
import math
import time
from typing import Any, Callable, Iterator, NamedTuple, Sequence

import numpy as np

from quorin_libs.utils import exportable_utils as eu

# The least duration of a sample, in seconds. It outweighs the clock's resolution and one cold call.
SHORTEST_SAMPLE = 0.002
SLOW = 0.1
MOST_CALLS = 20_000


class Contestant(NamedTuple):
    """One of the calls to compare: `call(subject)`.

    `copied`: each call gets a copy of the subject, because it writes into it. `forced`: the
    module's routines take their interpreter route.
    """

    name: str
    call: Callable[[Any], Any]
    subject: Any
    copied: bool = False
    forced: bool = False


@contextlib.contextmanager
def interpreter_route() -> Iterator[None]:
    """Force the interpreter route by binding a pass-through to a name that routines look up.

    One replaced look-up switches off all native routes. This routine is called once for a column,
    not for each element, so the cost of the pass-through is negligible.
    """
    original = eu.numpy_flatten_column

    def pass_through(*args: Any, **kwargs: Any) -> Any:
        return original(*args, **kwargs)

    eu.numpy_flatten_column = pass_through
    try:
        yield
    finally:
        eu.numpy_flatten_column = original


@contextlib.contextmanager
def route(*, forced: bool) -> Iterator[None]:
    """Choose the route of the calls inside."""
    with interpreter_route() if forced else contextlib.nullcontext():
        # Not timed: the first call after a change looks up every name again.
        eu.numpy_whatis(_NOTHING)
        yield


_NOTHING = np.zeros(1)


def _sample(contestant: Contestant, calls: int) -> float:
    call, subject = contestant.call, contestant.subject
    copies = contestant.copied
    subjects = [subject.copy() for _ in range(calls)] if copies else [subject] * calls
    clock = time.perf_counter
    start = clock()
    for each in subjects:
        call(each)
    return (clock() - start) / calls


def compare(contestants: Sequence[Contestant], repeat: int) -> list[float]:
    """Time all of them in turns (A B C, A B C) and return the least seconds per call of each."""
    calls = []
    for contestant in contestants:
        with route(forced=contestant.forced):
            once = _sample(contestant, 1)
            if once < SLOW:  # the first call imports, caches and allocates
                once = _sample(contestant, 1)
        calls.append(max(1, min(MOST_CALLS, math.ceil(SHORTEST_SAMPLE / max(once, 1e-9)))))
    samples: list[list[float]] = [[] for _ in contestants]
    collecting = gc.isenabled()
    gc.disable()
    try:
        for _ in range(repeat):
            for contestant, count, seconds in zip(contestants, calls, samples):
                with route(forced=contestant.forced):
                    seconds.append(_sample(contestant, count))
            gc.collect()
    finally:
        if collecting:
            gc.enable()
    return [min(seconds) for seconds in samples]


def geometric_mean(ratios: Sequence[float]) -> float:
    """Return the geometric mean."""
    return math.exp(sum(map(math.log, ratios)) / len(ratios)) if ratios else math.nan
