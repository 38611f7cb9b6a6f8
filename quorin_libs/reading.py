"""Delimited text, read as text: what a cell holds is what the file says, no value is dropped."""

from __future__ import annotations

import codecs
import csv
import io
import os
from dataclasses import dataclass
from itertools import islice
from pathlib import Path
from typing import IO, Any, Iterator, List, Tuple, Union

import numpy as np

from quorin_libs.terminal import count

__all__ = ["DELIMITERS", "InputError", "Table", "parse_delimiter", "read_table"]

# In the order in which a tie between them is settled.
DELIMITERS = {"comma": ",", "semicolon": ";", "tab": "\t", "bar": "|"}

_OTHER_DELIMITER_NAMES = {"pipe": "|", "space": " ", "colon": ":", "\\t": "\t"}

# Enough to see past a few odd records, little enough to cost nothing beside the reading itself.
_RECORDS_LOOKED_AT = 100

Source = Union[str, "os.PathLike[str]", IO[bytes]]
Record = Tuple[int, List[str]]


class InputError(ValueError):
    """The input cannot be read as a table; the text is one line that names the culprit."""


@dataclass(frozen=True)
class Table:
    """A table of texts.

    Attributes
    ----------
    names : tuple of str
        One name a column, no two alike.
    columns : tuple of numpy.ndarray
        One object array of ``str`` a column, of shape (rows,).
    source : str
        What the messages call the input: the path, ``standard input`` or ``stream``.
    delimiter : str
        The character between two cells.
    notes : tuple of str
        What was done with odd spots of the input, one sentence each.
    """

    names: tuple[str, ...]
    columns: tuple[np.ndarray[Any, Any], ...]
    source: str = "table"
    delimiter: str = ","
    notes: tuple[str, ...] = ()

    @property
    def rows(self) -> int:
        """Number of records below the header."""
        return len(self.columns[0]) if self.columns else 0


def read_table(source: Source, delimiter: str | None = None, encoding: str = "utf-8-sig") -> Table:
    """Read delimited text whose first record holds the column names.

    Quoted cells may hold the delimiter, doubled quotes and line ends. Lines may end in LF, CRLF
    or CR. Blank lines between records are left out and noted, except in a table of one column,
    where a blank line below the header is an empty cell. An empty column name becomes
    ``column N`` and is noted.

    Parameters
    ----------
    source : path or binary stream
        Read to its end; a stream is not closed.
    delimiter : str, optional
        One character. By default the one of comma, semicolon, tab and bar that cuts each of the
        first 100 records into equally many cells, two or more; the one with most cells wins, then
        the one named first. When none does so, the header line alone is asked; when it holds none
        of them, comma.
    encoding : str, optional
        A text encoding known to Python; the default is UTF-8 with or without byte order mark.

    Returns
    -------
    Table

    Raises
    ------
    InputError
        When the source cannot be opened, is empty, is not text in this encoding, holds a NUL
        character, an unclosed quote, a cell longer than ``csv.field_size_limit()``, a record of
        another length than the header, or a column name twice.

    Examples
    --------
    >>> import io
    >>> table = read_table(io.BytesIO(b"a;b\\n1;NA\\n;x\\n"))
    >>> table.names, table.delimiter, table.columns[1].tolist()
    (('a', 'b'), ';', ['NA', 'x'])
    """
    name = _name_of(source)
    text = _decode(_read_bytes(source, name), encoding, name)
    if delimiter is None:
        delimiter = _detect_delimiter(text)
        said = describe_delimiter(delimiter) + ", detected"
    else:
        said = describe_delimiter(delimiter)
    records = _records(text, delimiter, name)
    blank_lines: list[int] = []
    header = _first_record(records, blank_lines)
    if header is None:
        raise InputError(f"{name}: no column names: there are only blank lines")
    line, cells = header
    notes: list[str] = []
    names = _column_names(cells, f"{name}: line {line}", notes)
    rows = _rows(records, len(names), "delimiter " + said, name, blank_lines)
    columns = tuple(_text_column(rows, index) for index in range(len(names)))
    if blank_lines:
        notes.append(_blank_lines_note(blank_lines))
    if not rows:
        notes.append("there is a header and no row below it")
    return Table(names, columns, name, delimiter, tuple(notes))


def parse_delimiter(text: str) -> str:
    """Return the character that a delimiter's name or the character itself stands for.

    Raises
    ------
    ValueError
        When ``text`` is no known name and not one character that can separate cells.

    Examples
    --------
    >>> parse_delimiter("semicolon"), parse_delimiter(":")
    (';', ':')
    """
    named = DELIMITERS.get(text.lower()) or _OTHER_DELIMITER_NAMES.get(text.lower())
    if named is not None:
        return named
    if len(text) != 1 or text in '"\r\n\0':
        raise ValueError(
            "a delimiter is one character other than a quote or a line end, or one of the names "
            f"comma, semicolon, tab, bar, pipe, space, colon; got {text!r}"
        )
    return text


def describe_delimiter(delimiter: str) -> str:
    """Return the name of a delimiter, or the character in quotes when it has none."""
    for names in (DELIMITERS, _OTHER_DELIMITER_NAMES):
        for name, character in names.items():
            if character == delimiter:
                return name
    return repr(delimiter)


def _name_of(source: Source) -> str:
    if isinstance(source, (str, os.PathLike)):
        return os.fspath(source)
    name = getattr(source, "name", None)
    if name == "<stdin>":
        return "standard input"
    return name if isinstance(name, str) else "stream"


def _read_bytes(source: Source, name: str) -> bytes:
    try:
        if not isinstance(source, (str, os.PathLike)):
            return source.read()
        with Path(source).open("rb") as stream:
            return stream.read()
    except FileNotFoundError:
        raise InputError(f"{name}: no such file") from None
    except IsADirectoryError:
        raise InputError(f"{name}: a directory, not a file") from None
    except (OSError, ValueError) as error:
        reason = error.strerror if isinstance(error, OSError) and error.strerror else str(error)
        raise InputError(f"{name}: cannot be read: {reason}") from None


def _decode(data: bytes, encoding: str, name: str) -> str:
    try:
        text = data.decode(encoding)
    except UnicodeDecodeError as error:
        raise InputError(_decode_message(error, encoding, name)) from None
    except UnicodeError as error:
        raise InputError(f"{name}: not {encoding} text: {error}") from None
    except (LookupError, ValueError):
        raise InputError(f"{name}: {encoding!r} is not a known text encoding") from None
    # A byte order mark that the codec left in place is no part of the first name.
    if text.startswith("\ufeff"):
        text = text[1:]
    if not text:
        raise InputError(f"{name}: the input is empty")
    nul = text.find("\0")
    if nul >= 0:
        raise InputError(
            f"{name}: line {_line_number(text[:nul])}: a NUL character; "
            f"this is not a text table, or its encoding is not {_plain_name(encoding)}"
        )
    return text


def _decode_message(error: UnicodeDecodeError, encoding: str, name: str) -> str:
    data = error.object
    before = data[: error.start].decode(encoding, "ignore")
    message = (
        f"{name}: line {_line_number(before)}: byte 0x{data[error.start]:02X} "
        f"is not {_plain_name(encoding)} text; name the encoding with --encoding"
    )
    if data.startswith((codecs.BOM_UTF16_LE, codecs.BOM_UTF16_BE)):
        message += " (it starts like utf-16)"
    return message


def _plain_name(encoding: str) -> str:
    return encoding[: -len("-sig")] if encoding.endswith("-sig") else encoding


def _line_number(before: str) -> int:
    return 1 + before.replace("\r\n", "\n").replace("\r", "\n").count("\n")


def _records(text: str, delimiter: str, name: str) -> Iterator[Record]:
    """Yield each record with the number of the line on which it starts."""
    reader = csv.reader(io.StringIO(text, newline=""), delimiter=delimiter, strict=True)
    while True:
        line = reader.line_num + 1
        try:
            cells = next(reader)
        except StopIteration:
            return
        except csv.Error as error:
            where = f"{name}: line {line}: "
            raise InputError(where + _csv_message(error, delimiter)) from None
        yield line, cells


def _csv_message(error: csv.Error, delimiter: str) -> str:
    reason = str(error)
    if "unexpected end of data" in reason:
        return "the record that starts here opens a quote and never closes it"
    if "field larger than field limit" in reason:
        return (
            "a cell of the record that starts here is longer than "
            f"{csv.field_size_limit()} characters (is a quote left open?)"
        )
    if "expected after" in reason:
        return (
            f"text follows a closing quote where a {describe_delimiter(delimiter)} "
            "or a line end is expected"
        )
    return reason


def _detect_delimiter(text: str) -> str:
    for limit in (_RECORDS_LOOKED_AT, 1):
        best, most = "", 1
        for delimiter in DELIMITERS.values():
            width = _common_width(text, delimiter, limit)
            if width > most:
                best, most = delimiter, width
        if best:
            return best
    return DELIMITERS["comma"]


def _common_width(text: str, delimiter: str, limit: int) -> int:
    """Cells in each of the first records, or 0 when they differ."""
    try:
        filled = (cells for _, cells in _records(text, delimiter, "") if cells)
        widths = {len(cells) for cells in islice(filled, limit)}
    except InputError:
        return 0
    return widths.pop() if len(widths) == 1 else 0


def _first_record(records: Iterator[Record], blank_lines: list[int]) -> Record | None:
    for line, cells in records:
        if cells:
            return line, cells
        blank_lines.append(line)
    return None


def _column_names(cells: list[str], where: str, notes: list[str]) -> tuple[str, ...]:
    positions: dict[str, int] = {}
    for position, cell in enumerate(cells, 1):
        name = cell if cell.strip() else f"column {position}"
        if name != cell:
            notes.append(f"column {position} has no name and is called {name!r}")
        first = positions.setdefault(name, position)
        if first != position:
            raise InputError(f"{where}: columns {first} and {position} have the same name {name!r}")
    return tuple(positions)


def _rows(
    records: Iterator[Record], width: int, said: str, name: str, blank_lines: list[int]
) -> list[list[str]]:
    rows: list[list[str]] = []
    for line, cells in records:
        if len(cells) == width:
            rows.append(cells)
        elif cells:
            raise InputError(
                "{}: line {}: {} where the header has {} ({})".format(
                    name, line, count(len(cells), "cell"), width, said
                )
            )
        elif width == 1:
            rows.append([""])
        else:
            blank_lines.append(line)
    return rows


def _text_column(rows: list[list[str]], index: int) -> np.ndarray[Any, Any]:
    column = np.empty(len(rows), dtype=object)
    column[:] = [row[index] for row in rows]
    return column


def _blank_lines_note(blank_lines: list[int]) -> str:
    if len(blank_lines) == 1:
        return f"line {blank_lines[0]} is blank and left out"
    return f"{len(blank_lines)} blank lines are left out, the first is line {blank_lines[0]}"
