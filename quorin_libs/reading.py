"""Reads delimited text without converting or dropping a value."""

from __future__ import annotations

import codecs
import csv
import io
import os
from itertools import islice
from pathlib import Path
from typing import IO, Any, Callable, Iterator, List, Tuple, Union

import numpy as np

from quorin_libs.table import Table
from quorin_libs.terminal import count, printable

__all__ = ["DELIMITERS", "InputError", "Progress", "parse_delimiter", "read_table"]

# In the order that decides ties.
DELIMITERS = {"comma": ",", "semicolon": ";", "tab": "\t", "bar": "|"}

_OTHER_DELIMITER_NAMES = {"pipe": "|", "space": " ", "colon": ":", "\\t": "\t"}

# Enough not to depend on a few irregular records, few enough to take no time.
_RECORDS_LOOKED_AT = 100

# Records are moved to columns in batches: garbage collection is slow with millions of lists.
_RECORDS_TOGETHER = 500

_GZIP = b"\x1f\x8b"

Source = Union[str, "os.PathLike[str]", IO[bytes]]
Record = Tuple[int, List[str]]
# Called with the amount done and the total.
Progress = Callable[[int, int], None]


class InputError(ValueError):
    """The input cannot be read as a table; the message is one line."""

    def __init__(self, message: str) -> None:
        super().__init__(printable(message))


def read_table(
    source: Source,
    delimiter: str | None = None,
    encoding: str = "utf-8-sig",
    *,
    header: bool = True,
    progress: Progress | None = None,
) -> Table:
    """Read delimited text whose first record holds the column names.

    Quoted cells may hold the delimiter, doubled quotes and line ends. Lines may end in LF, CRLF
    or CR. Blank lines between records are left out, except in a table of one column, where a
    blank line below the header is an empty cell; both are noted. An empty column name becomes
    ``column N`` and is noted, as is a header that holds only numbers.

    Parameters
    ----------
    source : path or binary stream
        Read to its end; a stream is not closed.
    delimiter : str, optional
        One character, or the name of one: comma, semicolon, tab, bar, pipe, space, colon. Default:
        the one of the first four that splits each of the first 100 records into the same number
        of cells, two or more; of several the one with most cells, then the first. If there is
        none, only the header line is used; if it contains none of them, comma.
    encoding : str, optional
        A text encoding known to Python; the default is UTF-8 with or without byte order mark.
    header : bool, optional
        Whether the first record holds the column names. Without it they are ``column 1`` and so
        on, and the first record is a row.
    progress : callable, optional
        Called repeatedly as ``progress(done, total)``, in characters.

    Returns
    -------
    Table

    Raises
    ------
    InputError
        If the source cannot be opened, is empty or not text in this encoding, or contains a NUL
        character, an unclosed quote, a cell longer than ``csv.field_size_limit()``, a record of
        another length than the header, or a duplicate column name.

    Examples
    --------
    >>> import io
    >>> table = read_table(io.BytesIO(b"a;b\\n1;NA\\n;x\\n"))
    >>> table.names, table.delimiter, table.columns[1].tolist()
    (('a', 'b'), ';', ['NA', 'x'])
    """
    name = _name_of(source)
    _check_text(encoding, "encoding")
    text = _decode(_read_bytes(source, name), encoding, name)
    if delimiter is None:
        delimiter = _detect_delimiter(text)
        said = "delimiter " + describe_delimiter(delimiter) + ", detected"
    else:
        _check_text(delimiter, "delimiter")
        delimiter = parse_delimiter(delimiter)
        said = "delimiter " + describe_delimiter(delimiter)
    records = _Records(text, delimiter, name)
    blank_lines: list[int] = []
    first = _first_record(records, blank_lines)
    if first is None:
        raise InputError(f"{name}: no column names: there are only blank lines")
    line, cells = first
    notes: list[str] = []
    if header:
        names = _column_names(cells, f"{name}: line {line}", notes)
    else:
        names = tuple(f"column {position}" for position in range(1, len(cells) + 1))
    if header and all(map(_is_number, cells)):
        notes.append(f"line {line} holds only numbers and is taken for the column names")
    columns = _Columns(len(names))
    if not header:
        columns.add(cells)

    def length_message(line: int, cells: int) -> str:
        start = f"{name}: line {line}: {count(cells, 'cell')} where the "
        return start + f"{'header' if header else 'first row'} has {columns.width} ({said})"

    _read_rows(records, columns, blank_lines, length_message, progress)
    if blank_lines:
        notes.append(_blank_lines_note(blank_lines, are_cells=columns.width == 1))
    if columns.rows == 0:
        notes.append("there is a header and no row below it")
    return Table(names, columns.arrays(), name, delimiter, tuple(notes))


def parse_delimiter(text: str) -> str:
    """Return the delimiter given by its name or by itself.

    Raises
    ------
    ValueError
        If ``text`` is neither a known name nor a character that can separate cells.

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
    """Return the name of a delimiter, or the character in quotes if it has none."""
    for names in (DELIMITERS, _OTHER_DELIMITER_NAMES):
        for name, character in names.items():
            if character == delimiter:
                return name
    return repr(delimiter)


def _check_text(value: object, what: str) -> None:
    if not isinstance(value, str):
        raise TypeError(f"{what}: a text, not {type(value).__name__}")


def _name_of(source: Source) -> str:
    if isinstance(source, (str, os.PathLike)):
        name = os.fspath(source)
        _check_text(name, "source, a path")
        return name
    if not hasattr(source, "read"):
        raise TypeError(f"source: a path or a binary stream, not {type(source).__name__}")
    given = getattr(source, "name", None)
    if given == "<stdin>":
        return "standard input"
    return given if isinstance(given, str) else "stream"


def _read_bytes(source: Source, name: str) -> bytes:
    if not name:
        raise InputError("the file's name is empty")
    try:
        if not isinstance(source, (str, os.PathLike)):
            data = source.read()
            if not isinstance(data, (bytes, bytearray, memoryview)):
                raise TypeError(
                    f"source: a binary stream, not one that gives {type(data).__name__}; "
                    "open the file in mode 'rb'"
                )
            return bytes(data)
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
    # Some codecs keep the byte order mark.
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
        f"is not {_plain_name(encoding)} text; "
    )
    if data.startswith(_GZIP):
        return message + "it starts like gzip, which has to be unpacked first"
    message += "name the encoding with --encoding"
    if data.startswith((codecs.BOM_UTF16_LE, codecs.BOM_UTF16_BE)):
        message += " (it starts like utf-16)"
    return message


def _plain_name(encoding: str) -> str:
    return encoding[: -len("-sig")] if encoding.endswith("-sig") else encoding


def _line_number(before: str) -> int:
    return 1 + before.replace("\r\n", "\n").replace("\r", "\n").count("\n")


class _Records:
    """Iterator over the records of a text, each with the number of its first line."""

    def __init__(self, text: str, delimiter: str, name: str) -> None:
        self.size = len(text)
        self._stream = io.StringIO(text, newline="")
        self._reader = csv.reader(self._stream, delimiter=delimiter, strict=True)
        self._delimiter = delimiter
        self._name = name

    @property
    def position(self) -> int:
        """Number of characters read."""
        return self._stream.tell()

    def __iter__(self) -> _Records:
        return self

    def __next__(self) -> Record:
        line = self._reader.line_num + 1
        try:
            return line, next(self._reader)
        except csv.Error as error:
            where = f"{self._name}: line {line}: "
            raise InputError(where + _csv_message(error, self._delimiter)) from None


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
    """Return the number of cells in each of the first records, or 0 if they differ."""
    try:
        filled = (cells for _, cells in _Records(text, delimiter, "") if cells)
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
    given = set(cells)
    positions: dict[str, int] = {}
    for position, cell in enumerate(cells, 1):
        name = cell
        if not cell.strip():
            name = _free_name(f"column {position}", given)
            notes.append(f"column {position} has no name and is called {name!r}")
        first = positions.setdefault(name, position)
        if first != position:
            raise InputError(f"{where}: columns {first} and {position} have the same name {name!r}")
    return tuple(positions)


def _free_name(name: str, given: set[str]) -> str:
    while name in given:
        name += "'"
    return name


class _Columns:
    """Moves cells from records to columns."""

    def __init__(self, width: int) -> None:
        self.width = width
        self._columns: list[list[str]] = [[] for _ in range(width)]
        self._waiting: list[list[str]] = []

    def add(self, cells: list[str]) -> bool:
        """Add one record; return whether a batch was moved."""
        self._waiting.append(cells)
        full = len(self._waiting) == _RECORDS_TOGETHER
        if full:
            self._move()
        return full

    def _move(self) -> None:
        for column, cells in zip(self._columns, zip(*self._waiting)):
            column.extend(cells)
        self._waiting.clear()

    @property
    def rows(self) -> int:
        return len(self._columns[0]) + len(self._waiting)

    def arrays(self) -> tuple[np.ndarray[Any, Any], ...]:
        self._move()
        arrays = []
        for index, cells in enumerate(self._columns):
            array = np.empty(len(cells), dtype=object)
            array[:] = cells
            arrays.append(array)
            self._columns[index] = []
        return tuple(arrays)


def _read_rows(
    records: _Records,
    columns: _Columns,
    blank_lines: list[int],
    length_message: Callable[[int, int], str],
    progress: Progress | None,
) -> None:
    for line, cells in records:
        if not cells:
            blank_lines.append(line)
            if columns.width > 1:
                continue
        elif len(cells) != columns.width:
            raise InputError(length_message(line, len(cells)))
        if columns.add(cells or [""]) and progress is not None:
            progress(records.position, records.size)


def _is_number(text: str) -> bool:
    try:
        float(text)
    except ValueError:
        return False
    return True


def _blank_lines_note(blank_lines: list[int], *, are_cells: bool) -> str:
    said = "counted as an empty cell" if are_cells else "left out"
    if len(blank_lines) == 1:
        return f"line {blank_lines[0]} is blank and {said}"
    if are_cells:
        said = "counted as empty cells"
    return f"{len(blank_lines)} blank lines are {said}, the first is line {blank_lines[0]}"
