"""Cost per element and memory by length."""

from __future__ import annotations

import contextlib
import ctypes
import pathlib
import re
from typing import Any, Callable, Mapping, NamedTuple, Optional, Sequence

from benchmarks import records, table
from benchmarks.columns import MARKERS, ColumnSpec, build
from benchmarks.timing import Contestant, compare
from quorin_libs.utils import exportable_utils as eu

LENGTHS = tuple(10**power for power in range(1, 8))

STATUS = pathlib.Path("/proc/self/status")
RESET = pathlib.Path("/proc/self/clear_refs")


def _whatis(column: Any) -> Any:
    return eu.numpy_whatis(column, MARKERS)


def _statistics(column: Any) -> Any:
    return eu.numpy_whatis(column, MARKERS, return_stats_flag=True)


def _isin(column: Any) -> Any:
    return eu.numpy_isin(column, MARKERS)


ROUTINES: tuple[tuple[str, Callable[[Any], Any], ColumnSpec], ...] = (
    ("numpy_whatis", _whatis, ColumnSpec("words")),
    ("numpy_whatis", _whatis, ColumnSpec("words", order="shuffled")),
    ("numpy_whatis", _whatis, ColumnSpec("float_text")),
    ("numpy_whatis", _whatis, ColumnSpec("float64")),
    ("numpy_isin", _isin, ColumnSpec("words")),
    ("numpy_whatis statistics", _statistics, ColumnSpec("words", distinct=1000)),
    ("numpy_whatis statistics", _statistics, ColumnSpec("float64")),
)


class Point(NamedTuple):
    """A routine at one length; `memory` is the growth of the process in bytes."""

    case: str
    rows: int
    nanoseconds_per_element: float
    memory: Optional[int]

    def as_row(self) -> tuple[str, ...]:
        """Return the point as CSV holds it, under `HEADER`."""
        memory = "" if self.memory is None else str(self.memory)
        cost = records.number(self.nanoseconds_per_element)
        return (self.case, str(self.rows), cost, memory)

    @classmethod
    def from_row(cls, line: Mapping[str, str]) -> Point:
        """Return the point of a line of CSV."""
        memory = int(line["peak_bytes"]) if line["peak_bytes"] else None
        return cls(line["case"], int(line["rows"]), float(line["native"]), memory)


HEADER = ("case", "rows", "native", "peak_bytes")


def peak_memory(call: Callable[[Any], Any], subject: Any) -> Optional[int]:
    """Return the peak growth of the process during the call in bytes, including its result.

    None if the system does not report it. Small columns use memory that the process already has.
    """
    with contextlib.suppress(AttributeError, OSError):
        ctypes.CDLL(None).malloc_trim(0)  # glibc: else freed memory is reused
    try:
        RESET.write_text("5", encoding="ascii")  # resets the high-water mark
        before = _high_water()
        call(subject)
        return _high_water() - before
    except OSError:
        return None


def _high_water() -> int:
    found = re.search(r"^VmHWM:\s+(\d+) kB$", STATUS.read_text(encoding="ascii"), re.MULTILINE)
    if found is None:
        raise OSError("no high-water mark")
    return int(found.group(1)) * 1024


def run(lengths: Sequence[int], repeat: int, filters: Sequence[str]) -> list[Point]:
    """Measure each routine at each length, with one column in memory at a time."""
    progress = table.Progress()
    points = []
    for routine, call, spec in ROUTINES:
        case = "{}/{}".format(routine, spec.label)
        if not all(re.search(pattern, case) for pattern in filters):
            continue
        for rows in lengths:
            progress.show("{} {:,} rows".format(case, rows))
            column = build(spec, rows)
            # Before timing, which leaves freed memory behind.
            memory = peak_memory(call, column)
            (seconds,) = compare([Contestant(case, call, column)], repeat)
            points.append(Point(case, rows, seconds / rows * 1e9, memory))
            del column
    progress.show("")
    return points


def as_text(points: Sequence[Point]) -> str:
    """Return a table of nanoseconds per element by length and bytes per element at the last."""
    lengths = sorted({point.rows for point in points})
    found = {(point.case, point.rows): point for point in points}
    rows = []
    for case in dict.fromkeys(point.case for point in points):
        last = found[case, lengths[-1]]
        memory = "?" if last.memory is None else "{:.3g}".format(last.memory / last.rows)
        costs = ["{:.4g}".format(found[case, n].nanoseconds_per_element) for n in lengths]
        rows.append((case, *costs, memory))
    header = ("ns per element at", *map("{:,}".format, lengths), "peak bytes/element")
    return table.align(header, rows, left=("ns per element at",))
