"""Tables and the picture of what the benchmarks measured.

``docs/measured/`` holds the CSV files that ``python -m benchmarks --csv`` wrote::

    .. measured:: summary
    .. measured:: routines
    .. measured:: curve
    .. measured:: calls

The picture ``_static/curve.svg`` is drawn from ``curve.csv`` when a build starts.
"""
# ruff: noqa: INP001 -- Sphinx imports this file by its name.

from __future__ import annotations

import pathlib
import sys
from typing import Any, Callable, Iterable, Iterator, Sequence

from docutils import nodes
from sphinx.application import Sphinx
from sphinx.util.docutils import SphinxDirective

DOCS = pathlib.Path(__file__).parent
sys.path.append(str(DOCS.parent))  # the benchmarks, which are not installed

from benchmarks import picture, records  # noqa: E402
from benchmarks.curve import Point  # noqa: E402
from benchmarks.timing import geometric_mean  # noqa: E402

MEASURED = DOCS / "measured"
# The interpreters measured; the tables show the first one in full.
VERSIONS = ("3.11", "3.7", "3.13")

Row = Sequence[str]


def _load(name: str) -> records.Record:
    return records.read(MEASURED / (name + ".csv"))


def _ratio(value: float | None) -> str:
    if value is None:
        return ""
    return "{:,.0f}".format(value) if value >= 100 else "{:.2g}".format(value)


def _over_native(line: dict[str, str], other: str) -> float | None:
    """Return a time as a multiple of the routine's own; None where there is none."""
    return float(line[other]) / float(line["native"]) if line[other] else None


def _routes(lines: list[dict[str, str]]) -> dict[str, float | None]:
    return {line["case"]: _over_native(line, "interpreter") for line in lines}


def _summary() -> Iterator[Row]:
    yield ("CPython", "numpy", "pandas", "beside", "cases", "geometric mean", "least", "of")
    for version in VERSIONS:
        environment, lines = _load("routines-" + version)
        peers = {
            "{}, {}".format(line["case"], line["peer"]): _over_native(line, "peer_time")
            for line in lines
            if line["peer"]
        }
        for name, ratios in (("interpreter route", _routes(lines)), ("peers", peers)):
            least = min(ratios, key=lambda case, among=ratios: among[case])
            yield (
                environment["python"],
                environment["numpy"],
                environment["pandas"],
                name,
                str(len(ratios)),
                _ratio(geometric_mean(list(ratios.values()))),
                _ratio(ratios[least]),
                least,
            )


def _all_routines() -> Iterator[Row]:
    elsewhere = [_routes(_load("routines-" + version).lines) for version in VERSIONS[1:]]
    yield (
        "routine",
        "column",
        "ns per element",
        "interpreter route",
        *("on " + version for version in VERSIONS[1:]),
        "peer",
        "its name",
    )
    previous = None
    for line in _load("routines-" + VERSIONS[0]).lines:
        case = line["case"]
        routine, _, column = case.partition("/")
        own: Row = (
            routine,
            column,
            "{:.3g}".format(float(line["native"])),
            _ratio(_over_native(line, "interpreter")),
            *(_ratio(ratios.get(case)) for ratios in elsewhere),
        )
        # A case has a line for each of its peers; its own figures stand in the first one.
        shown = own if case != previous else [""] * len(own)
        previous = case
        yield (*shown, _ratio(_over_native(line, "peer_time")), line["peer"])


def _calls() -> Iterator[Row]:
    yield ("call", "ns", "interpreter route", "in Python", "peer", "its name")
    for line in _load("calls").lines:
        ratios = (_over_native(line, name) for name in ("interpreter", "plain_def", "peer_time"))
        yield (
            line["call"],
            "{:,.0f}".format(float(line["native"])),
            *map(_ratio, ratios),
            line["peer"],
        )


def _points() -> list[Point]:
    return [Point.from_row(line) for line in _load("curve").lines]


def _curve() -> Iterator[Row]:
    points = _points()
    lengths = sorted({point.rows for point in points})
    yield ("ns per element at", *map("{:,}".format, lengths), "peak bytes per element")
    for case in dict.fromkeys(point.case for point in points):
        line = {point.rows: point for point in points if point.case == case}
        last = line[lengths[-1]]
        yield (
            case,
            *("{:.2g}".format(line[rows].nanoseconds_per_element) for rows in lengths),
            "" if last.memory is None else "{:.2g}".format(last.memory / last.rows),
        )


TABLES: dict[str, Callable[[], Iterable[Row]]] = {
    "summary": _summary,
    "routines": _all_routines,
    "curve": _curve,
    "calls": _calls,
}


def _row(cells: Row) -> nodes.row:
    return nodes.row("", *(nodes.entry("", nodes.paragraph("", cell)) for cell in cells))


def _table(rows: Iterable[Row]) -> nodes.table:
    header, *body = rows
    group = nodes.tgroup(cols=len(header))
    group += [
        nodes.colspec(colwidth=max(len(row[i]) for row in [header, *body]))
        for i in range(len(header))
    ]
    group += nodes.thead("", _row(header))
    group += nodes.tbody("", *map(_row, body))
    return nodes.table("", group, classes=["measured"])


class Measured(SphinxDirective):
    """A table of measurements."""

    required_arguments = 1

    def run(self) -> list[nodes.Node]:
        """Return the table of that name."""
        name = self.arguments[0]
        if name not in TABLES:
            raise self.error("no table {!r}; there are {}".format(name, ", ".join(TABLES)))
        for path in MEASURED.glob("*.csv"):
            self.env.note_dependency(str(path))
        return [_table(TABLES[name]())]


def draw_curve(_app: Sphinx) -> None:
    """Draw the picture where the pages look for it."""
    picture.draw(_points(), DOCS / "_static" / "curve.svg")


def setup(app: Sphinx) -> dict[str, Any]:
    """Register the directive and the picture."""
    app.add_directive("measured", Measured)
    app.connect("builder-inited", draw_curve)
    return {"parallel_read_safe": True}
