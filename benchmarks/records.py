"""Measurements as CSV: a comment line with the versions, a header, then a line for each case.

``docs/measured.py`` makes the tables of the documentation from such files.
"""

from __future__ import annotations

import csv
import pathlib
from typing import Any, Iterable, Mapping, NamedTuple, Sequence


class Record(NamedTuple):
    """A file of measurements; `environment` holds the versions by name."""

    environment: dict[str, str]
    lines: list[dict[str, str]]


def number(value: float | None) -> str:
    """Return eight significant digits; the empty text for None."""
    return "" if value is None else f"{value:.8g}"


def write(
    path: pathlib.Path,
    environment: Mapping[str, str],
    header: Sequence[str],
    rows: Iterable[Sequence[Any]],
) -> None:
    """Write the rows with the versions above them."""
    with path.open("w", encoding="utf-8", newline="") as stream:
        stream.write("# {}\n".format(", ".join(map(" ".join, environment.items()))))
        writer = csv.writer(stream, lineterminator="\n")
        writer.writerow(header)
        writer.writerows(rows)


def read(path: pathlib.Path) -> Record:
    """Read what `write` wrote."""
    with path.open(encoding="utf-8", newline="") as stream:
        versions = stream.readline().lstrip("# ").strip().split(", ")
        environment = dict(pair.split(" ", 1) for pair in versions)
        return Record(environment, list(csv.DictReader(stream)))
