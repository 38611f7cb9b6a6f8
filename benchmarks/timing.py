"""Times of calls that are to be compared, taken in turns."""

from __future__ import annotations

import contextlib
import gc
import math
import time
from typing import Any, Callable, Iterator, NamedTuple, Sequence

import numpy as np

from quorin_libs.utils import exportable_utils as eu

# A sample lasts at least this long, in seconds, so that the clock and one cold call do not show.
SHORTEST_SAMPLE = 0.002
SLOW = 0.1
MOST_CALLS = 20_000


class Contestant(NamedTuple):
    """One of the calls that are compared: `call(subject)`.

    `copied` gives each call a subject of its own, for calls that write into it; `forced` sends the
    module's routines down their interpreter route.
    """

    name: str
    call: Callable[[Any], Any]
    subject: Any
    copied: bool = False
    forced: bool = False


@contextlib.contextmanager
def interpreter_route() -> Iterator[None]:
    """Put a pass-through where a routine looks up another one.

    Any replaced name does. This one is called once for a column and not once for an element, so
    the pass-through adds nothing to what is timed.
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
    """Settle which route the calls inside take."""
    with interpreter_route() if forced else contextlib.nullcontext():
        # The first call after a change looks at every name again; that is not what is timed.
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
            if once < SLOW:  # the first call ever imports, caches and allocates
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
    """Return the mean that treats "twice as fast" and "half as fast" as opposites."""
    return math.exp(sum(map(math.log, ratios)) / len(ratios)) if ratios else math.nan
