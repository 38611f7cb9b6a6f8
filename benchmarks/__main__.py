"""The command `python -m benchmarks`."""

from __future__ import annotations

import argparse
import logging
import pathlib
import re
import sys
import warnings
from typing import Any, Optional, Sequence

from benchmarks import calls, curve, records, table
from benchmarks.cases import GRIDS, cases


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python -m benchmarks",
        description="Times every routine, its interpreter route and the numpy or pandas call that "
        "would replace it. The columns 'interpreter' and 'peer' are ratios: their time divided by "
        "the routine's.",
    )
    what = parser.add_mutually_exclusive_group()
    what.add_argument("--curve", action="store_true", help="cost per element and memory by length")
    what.add_argument("--calls", action="store_true", help="cost of a call, of 10 and 100 elements")
    what.add_argument("--list", action="store_true", help="print the names of the cases only")
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
        help="only cases whose name matches; given several times, all have to match",
    )
    parser.add_argument("--grid", choices=sorted(GRIDS), default="base", help="how many columns")
    parser.add_argument("--repeat", type=int, default=5, metavar="N", help="rounds (default 5)")
    parser.add_argument(
        "--csv", type=pathlib.Path, metavar="FILE", help="write the times there, in nanoseconds"
    )
    parser.add_argument(
        "--picture",
        type=pathlib.Path,
        metavar="FILE",
        help="with --curve: draw it into FILE, .svg or .png (needs matplotlib)",
    )
    return parser


def _lengths(text: str) -> list[int]:
    lengths = [int(float(part)) for part in text.split(",")]
    if min(lengths) < 1:
        raise argparse.ArgumentTypeError("a column needs at least one row")
    return lengths


def _texts(options: argparse.Namespace) -> list[str]:
    """Measure what the options choose, write the file, and return the tables to print."""
    if options.curve:
        points = curve.run(options.rows or curve.LENGTHS, options.repeat, options.filter)
        if options.picture:
            from benchmarks import picture

            picture.draw(points, options.picture)
        _write(options, curve.HEADER, points)
        return [curve.as_text(points)]
    if options.calls:
        answers = calls.run(options.repeat, options.filter)
        _write(options, calls.HEADER, answers)
        return [calls.as_text(answers)]
    chosen = [
        case
        for case in cases(options.grid)
        if all(re.search(pattern, case.name) for pattern in options.filter)
    ]
    if options.list:
        return ["\n".join(case.name for case in chosen)]
    pairs = [(case, rows) for case in chosen for rows in options.rows or [100_000]]
    lines = table.run_all(pairs, options.repeat)
    _write(options, table.HEADER, lines)
    return [table.as_text(lines), table.summary(lines)]


def _write(options: argparse.Namespace, header: Sequence[str], results: Sequence[Any]) -> None:
    if options.csv:
        rows = (result.as_row() for result in results)
        records.write(options.csv, table.environment(), header, rows)


def main(arguments: Optional[Sequence[str]] = None) -> None:
    """Run what the arguments choose and print it."""
    options = _parser().parse_args(arguments)
    # Warnings of the routines (root logger) and of pandas are not printed: printing takes time.
    logging.getLogger().addHandler(logging.NullHandler())
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        texts = _texts(options)
    if not options.list:
        versions = table.environment().items()
        texts.append(", ".join("{} {}".format(*pair) for pair in versions))
    sys.stdout.write("\n\n".join(texts) + "\n")


if __name__ == "__main__":
    main()
