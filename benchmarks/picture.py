"""A picture of cost and memory by number of rows."""

from __future__ import annotations

import pathlib
from typing import Sequence

import matplotlib as mpl
from matplotlib.figure import Figure

from benchmarks.curve import Point

# Below, the process already holds the memory that a call needs.
LEAST_ROWS_FOR_MEMORY = 100_000


def draw(points: Sequence[Point], path: pathlib.Path) -> None:
    """Draw nanoseconds and peak bytes per element by number of rows, as .svg or .png."""
    # Reproducible: no date, and identifiers from a fixed salt.
    with mpl.rc_context({"svg.hashsalt": "curve", "font.size": 9}):
        figure = Figure(figsize=(9, 4.5), layout="constrained")
        cost, memory = figure.subplots(1, 2)
        for case in dict.fromkeys(point.case for point in points):
            line = [point for point in points if point.case == case]
            rows = [point.rows for point in line]
            times = [point.nanoseconds_per_element for point in line]
            cost.plot(rows, times, "o-", ms=3, label=case)
            sized = [
                (point.rows, point.memory / point.rows)
                for point in line
                if point.memory is not None and point.rows >= LEAST_ROWS_FOR_MEMORY
            ]
            memory.plot([at for at, _ in sized], [size for _, size in sized], "o-", ms=3)
        for axes, title in ((cost, "nanoseconds per element"), (memory, "peak bytes per element")):
            axes.set(xscale="log", xlabel="rows", title=title)
            axes.grid(visible=True, alpha=0.3)
        cost.set_yscale("log")
        figure.legend(loc="outside lower center", ncols=3)
        figure.savefig(path, metadata={"Date": None} if path.suffix == ".svg" else None)
