"""Time the routines: `python -m benchmarks --help`."""

from __future__ import annotations

import argparse
import json
import logging
import pathlib
import re
import sys
import warnings
from typing import Any, Optional, Sequence

from benchmarks import calls, curve
from benchmarks.cases import GRIDS, cases
from benchmarks.table import as_text, environment, run_all, summary


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python -m benchmarks",
        description="Times every routine beside its interpreter route and beside what one would "
        "use instead. Columns named 'interpreter' and 'peer' are ratios: how many times as long "
        "that takes.",
    )
    what = parser.add_mutually_exclusive_group()
    what.add_argument("--curve", action="store_true", help="cost per element and memory by length")
    what.add_argument("--calls", action="store_true", help="cost of a call, of 10 and 100 elements")
    what.add_argument("--list", action="store_true", help="names of the cases, and no times")
    parser.add_argument(
        "--rows",
        type=_lengths,
        metavar="N,N",
        help="lengths of the columns (default 100000; with --curve 10 to 10000000)",
    )
    parser.add_argument(
        "--filter",
        action="append",
        default=[],
        metavar="REGEX",
        help="cases whose name it is found in; of several, each has to be",
    )
    parser.add_argument("--grid", choices=sorted(GRIDS), default="base", help="how many columns")
    parser.add_argument("--repeat", type=int, default=5, metavar="N", help="rounds (default 5)")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE", help="write the times there")
    parser.add_argument(
        "--picture",
        type=pathlib.Path,
        metavar="FILE",
        help="with --curve: draw it there, as .svg or .png (needs matplotlib)",
    )
    return parser


def _lengths(text: str) -> list[int]:
    lengths = [int(float(part)) for part in text.split(",")]
    if min(lengths) < 1:
        raise argparse.ArgumentTypeError("a column has at least one row")
    return lengths


def _tables(options: argparse.Namespace) -> tuple[list[str], list[Any]]:
    if options.curve:
        points = curve.run(options.rows or curve.LENGTHS, options.repeat, options.filter)
        if options.picture:
            from benchmarks import picture

            picture.draw(points, options.picture)
        return [curve.as_text(points)], [point._asdict() for point in points]
    if options.calls:
        answers = calls.run(options.repeat, options.filter)
        return [calls.as_text(answers)], [answer.as_json() for answer in answers]
    chosen = [
        case
        for case in cases(options.grid)
        if all(re.search(pattern, case.name) for pattern in options.filter)
    ]
    if options.list:
        return ["\n".join(case.name for case in chosen)], []
    pairs = [(case, rows) for case in chosen for rows in options.rows or [100_000]]
    lines = run_all(pairs, options.repeat)
    return [as_text(lines), summary(lines)], [line.as_json() for line in lines]


def main(arguments: Optional[Sequence[str]] = None) -> None:
    """Run what the arguments choose and print it."""
    options = _parser().parse_args(arguments)
    # The routines say on the logger and pandas in warnings what they think of a column; writing it
    # out is no part of what is timed.
    logging.getLogger().addHandler(logging.NullHandler())
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        texts, found = _tables(options)
    if not options.list:
        texts.append(", ".join("{} {}".format(*pair) for pair in environment().items()))
    sys.stdout.write("\n\n".join(texts) + "\n")
    if options.json:
        document = {"environment": environment(), "results": found}
        options.json.write_text(json.dumps(document, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
