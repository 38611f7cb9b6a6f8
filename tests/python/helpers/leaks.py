"""What repeated calls leave behind."""

from __future__ import annotations

import gc
import sys
from typing import Any, Callable

TURNS = 3


def repeat(call: Callable[[], Any], times: int) -> None:
    """Call again and again, whatever the calls raise."""
    for _ in range(times):
        try:
            call()
        except Exception:
            pass


def blocks_kept(call: Callable[[], Any], times: int) -> int:
    """How many blocks of memory are there after so many calls that were not there before.

    The heap has to be frozen: a whole suite's takes a tenth of a second to be collected.
    """
    gc.collect()
    blocks = sys.getallocatedblocks()
    repeat(call, times)
    gc.collect()
    return sys.getallocatedblocks() - blocks


def leaks_blocks(call: Callable[[], Any], times: int) -> bool:
    """Whether every second call or more leaves a block behind, in each of some turns.

    What a call leaks it leaks in each turn. CPython 3.11 keeps some hundred blocks of its own in
    the first turns that format a traceback, of plain Python as well, and none from then on.
    """
    gc.freeze()
    try:
        return all(blocks_kept(call, times) >= times // 2 for _ in range(TURNS))
    finally:
        gc.unfreeze()
