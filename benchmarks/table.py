"""Runs cases and prints a table."""

from __future__ import annotations

import platform
import sys
from typing import Iterable, NamedTuple, Optional, Sequence, TextIO

import numpy as np
import pandas as pd

from benchmarks import records
from benchmarks.cases import Case, elements
from benchmarks.columns import build
from benchmarks.timing import Contestant, compare, geometric_mean


class Line(NamedTuple):
    """A case at one length with at most one peer; times in seconds per call."""

    case: str
    rows: int
    elements: int
    native: float
    interpreter: float
    peer: Optional[str]
    peer_time: Optional[float]
    note: str

    @property
    def over_interpreter(self) -> float:
        """Time of the interpreter route divided by the routine's."""
        return self.interpreter / self.native

    @property
    def over_peer(self) -> Optional[float]:
        """Time of the peer divided by the routine's."""
        return None if self.peer_time is None else self.peer_time / self.native

    def as_row(self) -> tuple[str, ...]:
        """Return the line as CSV holds it: nanoseconds per element, under `HEADER`."""
        native, interpreter, peer = (
            records.number(None if seconds is None else seconds / self.elements * 1e9)
            for seconds in (self.native, self.interpreter, self.peer_time)
        )
        return (self.case, str(self.rows), native, interpreter, self.peer or "", peer, self.note)


HEADER = ("case", "rows", "native", "interpreter", "peer", "peer_time", "note")


class Progress:
    """A line on standard error that is overwritten, if that is a terminal."""

    def __init__(self, stream: TextIO = sys.stderr):
        self._stream = stream if stream.isatty() else None

    def show(self, text: str) -> None:
        """Replace the line by the text."""
        if self._stream:
            self._stream.write("\r\x1b[K" + text)
            self._stream.flush()


def run(case: Case, rows: int, repeat: int) -> list[Line]:
    """Time one case at one length; return a line for each peer, at least one."""
    column = build(case.spec, rows)
    routine = case.routine
    native = Contestant("native", routine.call, case.subject(column), copied=routine.copied)
    contestants = [native, native._replace(name="interpreter", forced=True)]
    contestants += [Contestant(peer.name, peer.call, peer.subject(column)) for peer in case.peers]
    times = compare(contestants, repeat)
    common = (case.name, rows, elements(native.subject), times[0], times[1])
    if not case.peers:
        return [Line(*common, None, None, "")]
    return [Line(*common, peer.name, t, peer.note) for peer, t in zip(case.peers, times[2:])]


def run_all(chosen: Sequence[tuple[Case, int]], repeat: int) -> list[Line]:
    """Time the cases; after an interrupt return the lines so far."""
    progress = Progress()
    lines: list[Line] = []
    try:
        for index, (case, rows) in enumerate(chosen):
            progress.show("{}/{} {} {:,} rows".format(index + 1, len(chosen), case.name, rows))
            lines += run(case, rows, repeat)
    except KeyboardInterrupt:
        pass
    progress.show("")
    return lines


def align(header: Sequence[str], rows: Iterable[Sequence[str]], *, left: Sequence[str]) -> str:
    """Return the table as text; columns named in `left` are left-aligned, others right-aligned."""
    table = [list(header), *map(list, rows)]
    widths = [max(map(len, column)) for column in zip(*table)]
    table.insert(1, ["-" * width for width in widths])
    return "\n".join(
        "  ".join(
            cell.ljust(width) if name in left else cell.rjust(width)
            for cell, width, name in zip(row, widths, header)
        ).rstrip()
        for row in table
    )


def ratio(value: Optional[float]) -> str:
    """Return three significant digits of a ratio."""
    if value is None:
        return ""
    return "{:,.0f}".format(value) if value >= 100 else "{:.3g}".format(value)


def environment() -> dict[str, str]:
    """Return the versions that the times depend on."""
    return {
        "python": platform.python_version(),
        "numpy": np.__version__,
        "pandas": pd.__version__,
        "machine": "{} {}".format(platform.system(), platform.machine()),
    }


def as_text(lines: Sequence[Line]) -> str:
    """Return the lines as a table."""
    header = ("case", "rows", "ns/element", "interpreter", "peer", "peer's name", "note")
    return align(
        header,
        (
            (
                line.case,
                "{:,}".format(line.rows),
                "{:.4g}".format(line.native / line.elements * 1e9),
                ratio(line.over_interpreter),
                ratio(line.over_peer),
                line.peer or "",
                line.note,
            )
            for line in lines
        ),
        left=("case", "peer's name", "note"),
    )


def summary(lines: Sequence[Line]) -> str:
    """Return the geometric mean and the least ratio with its case for each length."""
    rows = []
    for length in sorted({line.rows for line in lines}):
        there = [line for line in lines if line.rows == length]
        # A case has one interpreter route but a line for each peer.
        routes = {line.case: line.over_interpreter for line in there}
        peers = {
            "{}, {}".format(line.case, line.peer): line.over_peer
            for line in there
            if line.over_peer is not None
        }
        for name, ratios in (("interpreter", routes), ("peer", peers)):
            if ratios:
                least = min(ratios, key=lambda case, found=ratios: found[case])
                rows.append(
                    (
                        "{:,}".format(length),
                        name,
                        str(len(ratios)),
                        ratio(geometric_mean(list(ratios.values()))),
                        ratio(ratios[least]),
                        least,
                    )
                )
    header = ("rows", "beside", "cases", "geometric mean", "least", "least of")
    return align(header, rows, left=("beside", "least of"))
