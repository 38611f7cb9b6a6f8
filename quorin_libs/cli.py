"""The command ``quorin-profile``: profiles the columns of a delimited text file."""

from __future__ import annotations

import argparse
import csv
import os
import sys
import time
from typing import IO, Any, NoReturn, Sequence

from quorin_libs.terminal import printable

__all__ = ["build_parser", "main"]

PROGRAM = "quorin-profile"

# Exit statuses other than 0. Shells report an interrupted program as 128 + SIGINT.
CANNOT_WRITE = 1
OUT_OF_MEMORY = 1
BAD_INPUT = 2
INTERRUPTED = 130

_DESCRIPTION = """\
Profile the columns of a delimited text file: what each holds, and which of its
values stand for missing. Cells are read as text, without conversion.
"""

_EPILOG = """\
The first line of FILE holds the column names. A text counts as missing if it is
on the list of markers (by default ?, - and the empty text, but not NA and the
like), or if it is discovered: the only text among numbers, or a sign sorted
after them. So a single mistyped number may be reported as a marker.

columns of the table:
  kind      char_str: text; int_str, float_str: numbers written as text;
            missing: nothing but missing values
  markers   the listed missing-value markers that occur
  new       discovered markers, which are not on the list
  missing   cells that hold any of these markers, and their share
  distinct  number of distinct values in the other cells
  flags     constant, unique, date-like

exit status: 0 success, 1 output cannot be written or out of memory (a table
takes about 16 times its file), 2 bad input or usage
"""


def main(argv: Sequence[str] | None = None) -> int:
    """Run the command and return its exit status.

    Parameters
    ----------
    argv : sequence of str, optional
        The arguments without the program's name. Default: those of the process.

    Examples
    --------
    >>> main(["no-such-file.csv"])
    2
    """
    try:
        options = build_parser().parse_args(argv)
        return _profile(options)
    except SystemExit as stop:
        return stop.code if isinstance(stop.code, int) else 0
    except KeyboardInterrupt:
        return INTERRUPTED
    except MemoryError:
        _say("the table does not fit in memory")
        return OUT_OF_MEMORY


class _Parser(argparse.ArgumentParser):
    """Reports errors in one line, and handles errors of writing the help."""

    def print_help(self, file: Any = None) -> NoReturn:
        raise SystemExit(_write(self.format_help()))

    def error(self, message: str) -> NoReturn:
        _say(f"{message} (see {PROGRAM} --help)")
        raise SystemExit(BAD_INPUT)


class _Version(argparse.Action):
    """Looks the version up only if it is requested: the look-up takes longer than parsing."""

    def __call__(
        self,
        parser: argparse.ArgumentParser,
        namespace: argparse.Namespace,
        values: str | Sequence[Any] | None,
        option_string: str | None = None,
    ) -> None:
        from quorin_libs import __version__

        raise SystemExit(_write(f"{PROGRAM} {__version__}\n"))


def build_parser() -> argparse.ArgumentParser:
    """Return the parser of the command's arguments."""
    parser = _Parser(
        prog=PROGRAM,
        description=_DESCRIPTION,
        epilog=_EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter,
        allow_abbrev=False,
    )
    parser.add_argument("file", metavar="FILE", help="the file to read; - for standard input")
    parser.add_argument(
        "--delimiter",
        type=_delimiter,
        metavar="CHAR",
        help="a single character, or comma, semicolon, tab, bar, pipe, space, colon; default: "
        "the one of the first four that splits the first 100 records into equally many cells",
    )
    parser.add_argument(
        "--encoding",
        default="utf-8-sig",
        metavar="NAME",
        help="the file's encoding (default: utf-8, with or without byte order mark)",
    )
    parser.add_argument(
        "--markers",
        type=_markers,
        metavar="LIST",
        help="the missing-value markers, instead of the default '?,,-'. Separated by commas and "
        "quoted as in a CSV file; nothing between two commas is the empty text, as is an "
        "empty LIST. If LIST begins with -, write --markers=LIST",
    )
    parser.add_argument(
        "--no-header", action="store_true", help="the first line is a row; columns get numbers"
    )
    parser.add_argument("--json", action="store_true", help="print JSON instead of a table")
    parser.add_argument("--version", action=_Version, nargs=0, help="print the version and exit")
    return parser


def _delimiter(text: str) -> str:
    from quorin_libs.reading import parse_delimiter

    try:
        return parse_delimiter(text)
    except ValueError as error:
        raise argparse.ArgumentTypeError(str(error)) from None


def _markers(text: str) -> list[str]:
    if not text:
        return [""]
    if len(text.splitlines()) > 1:
        raise argparse.ArgumentTypeError(f"{text!r} is more than one line")
    try:
        return next(csv.reader([text], strict=True))
    except csv.Error as error:
        raise argparse.ArgumentTypeError(f"{text!r}: {error}") from None


def _profile(options: argparse.Namespace) -> int:
    # Imported here so that --help, --version and usage errors are quick.
    from quorin_libs.profiling import profile_table
    from quorin_libs.reading import InputError, read_table
    from quorin_libs.rendering import render_json, render_table

    progress = _Progress()
    try:
        source = _standard_input() if options.file == "-" else options.file
        with progress:
            table = read_table(
                source,
                options.delimiter,
                options.encoding,
                header=not options.no_header,
                progress=progress.of_reading,
            )
    except InputError as error:
        _say(str(error))
        return BAD_INPUT
    for note in table.notes:
        _say(f"{table.source}: note: {note}")
    with progress:
        profile = profile_table(table, options.markers, progress.of_columns)
    if options.json:
        return _write(render_json(profile))
    return _write(render_table(profile, getattr(sys.stdout, "encoding", None) or "utf-8"))


def _standard_input() -> IO[bytes]:
    from quorin_libs.reading import InputError

    # None when the process was started with standard input closed.
    if sys.stdin is None:
        raise InputError("standard input: closed")
    return sys.stdin.buffer


def _say(message: str) -> None:
    """Print one line on standard error, with characters escaped that it cannot encode."""
    if sys.stderr is not None:
        encoding = getattr(sys.stderr, "encoding", None) or "utf-8"
        print(f"{PROGRAM}: {printable(message, encoding)}", file=sys.stderr)


def _write(text: str) -> int:
    if sys.stdout is None:
        _say("standard output: closed")
        return CANNOT_WRITE
    try:
        sys.stdout.write(text)
        sys.stdout.flush()
    except BrokenPipeError:
        # The reader closed the pipe. What is still buffered must not fail again at exit.
        _discard_standard_output()
    except OSError as error:
        _discard_standard_output()
        _say(f"standard output: {error.strerror or error}")
        return CANNOT_WRITE
    return 0


def _discard_standard_output() -> None:
    sink = os.open(os.devnull, os.O_WRONLY)
    try:
        os.dup2(sink, sys.stdout.fileno())
    finally:
        os.close(sink)


class _Progress:
    """A counter on standard error, if that is a terminal and the work takes long.

    It is erased at the end of a ``with`` statement, before anything else is written.
    """

    # Seconds before the first line and between two lines.
    PATIENCE = 0.5

    def __init__(self) -> None:
        self._shown = ""
        self._next = time.monotonic() + self.PATIENCE
        self._terminal = sys.stderr is not None and sys.stderr.isatty()

    def of_reading(self, done: int, total: int) -> None:
        if self._is_due():
            self._show(f"{PROGRAM}: reading, {done / total:.0%}")

    def of_columns(self, done: int, total: int) -> None:
        if self._is_due():
            self._show(f"{PROGRAM}: {done} of {total} columns")

    def _is_due(self) -> bool:
        if not self._terminal or time.monotonic() < self._next:
            return False
        self._next = time.monotonic() + self.PATIENCE
        return True

    def __enter__(self) -> None:
        pass

    def __exit__(self, *failure: object) -> None:
        if self._shown:
            self._show("")

    def _show(self, text: str) -> None:
        blanks = " " * (len(self._shown) - len(text))
        sys.stderr.write("\r" + text + blanks + ("" if text else "\r"))
        sys.stderr.flush()
        self._shown = text
