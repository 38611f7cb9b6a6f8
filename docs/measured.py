"""What the benchmarks measured, as tables in the documentation.

``docs/measured/`` holds what ``python -m benchmarks --json`` wrote; nothing is typed over::

    .. measured:: summary
    .. measured:: routines
    .. measured:: curve
    .. measured:: calls
"""
# ruff: noqa: INP001 -- Sphinx imports this file by its name.

from __future__ import annotations

import json
import math
import pathlib
from typing import Any, Callable, Iterable, Iterator, Sequence

from docutils import nodes
from sphinx.application import Sphinx
from sphinx.util.docutils import SphinxDirective

HERE = pathlib.Path(__file__).parent / "measured"
# The interpreters whose runs are kept, the one whose figures are shown in full first.
VERSIONS = ("3.11", "3.7", "3.13")

Row = Sequence[str]


def _load(name: str) -> dict[str, Any]:
    return json.loads((HERE / (name + ".json")).read_text(encoding="utf-8"))


def _routines(version: str) -> list[dict[str, Any]]:
    return _load("routines-" + version)["results"]


def _ratio(value: float | None) -> str:
    if value is None:
        return ""
    return "{:,.0f}".format(value) if value >= 100 else "{:.2g}".format(value)


def _geometric_mean(ratios: Sequence[float]) -> float:
    return math.exp(sum(map(math.log, ratios)) / len(ratios))


def _summary() -> Iterator[Row]:
    yield ("CPython", "numpy", "pandas", "beside", "cases", "geometric mean", "least", "of")
    for version in VERSIONS:
        document = _load("routines-" + version)
        found = document["environment"]
        lines = document["results"]
        routes = {line["case"]: line["interpreter_over_native"] for line in lines}
        peers = {
            "{}, {}".format(line["case"], line["peer"]): line["peer_over_native"]
            for line in lines
            if line["peer"]
        }
        for name, ratios in (("interpreter route", routes), ("peers", peers)):
            least = min(ratios, key=lambda case, among=ratios: among[case])
            yield (
                found["python"],
                found["numpy"],
                found["pandas"],
                name,
                str(len(ratios)),
                _ratio(_geometric_mean(list(ratios.values()))),
                _ratio(ratios[least]),
                least,
            )


def _all_routines() -> Iterator[Row]:
    elsewhere = [
        {line["case"]: line["interpreter_over_native"] for line in _routines(version)}
        for version in VERSIONS[1:]
    ]
    yield (
        "routine",
        "column",
        "ns per element",
        "interpreter route",
        *("on " + version for version in VERSIONS[1:]),
        "peer",
        "its name",
    )
    told = None
    for line in _routines(VERSIONS[0]):
        case = line["case"]
        routine, _, column = case.partition("/")
        again = case == told
        told = case
        yield (
            "" if again else routine,
            "" if again else column,
            ""
            if again
            else "{:.3g}".format(line["seconds"]["native"]["least"] / line["elements"] * 1e9),
            "" if again else _ratio(line["interpreter_over_native"]),
            *("" if again else _ratio(ratios.get(case)) for ratios in elsewhere),
            _ratio(line["peer_over_native"]),
            line["peer"] or "",
        )


def _calls() -> Iterator[Row]:
    yield ("call", "ns", "interpreter route", "in Python", "peer", "its name")
    for answer in _load("calls")["results"]:
        ratios = {name: seconds / answer["seconds"] for name, seconds in answer["beside"].items()}
        others = [name for name in ratios if name not in ("interpreter", "plain def", "len")]
        peer = others[0] if others else ""
        yield (
            answer["name"],
            "{:,.0f}".format(answer["seconds"] * 1e9),
            _ratio(ratios.get("interpreter")),
            _ratio(ratios.get("plain def")),
            _ratio(ratios.get(peer)),
            peer,
        )


def _curve() -> Iterator[Row]:
    points = _load("curve")["results"]
    lengths = sorted({point["rows"] for point in points})
    yield ("ns per element at", *map("{:,}".format, lengths), "peak bytes per element")
    for case in dict.fromkeys(point["case"] for point in points):
        line = {point["rows"]: point for point in points if point["case"] == case}
        last = line[lengths[-1]]
        yield (
            case,
            *("{:.2g}".format(line[rows]["nanoseconds_per_element"]) for rows in lengths),
            "" if last["memory"] is None else "{:.2g}".format(last["memory"] / last["rows"]),
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
    """One of the tables."""

    required_arguments = 1

    def run(self) -> list[nodes.Node]:
        """Return the table of that name."""
        name = self.arguments[0]
        if name not in TABLES:
            raise self.error("no table {!r}; there are {}".format(name, ", ".join(TABLES)))
        for path in HERE.glob("*.json"):
            self.env.note_dependency(str(path))
        return [_table(TABLES[name]())]


def setup(app: Sphinx) -> dict[str, Any]:
    """Register the directives."""
    app.add_directive("measured", Measured)
    return {"parallel_read_safe": True}
