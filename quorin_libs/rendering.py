"""A profile as an aligned table and as JSON."""

from __future__ import annotations

import json
from collections import Counter
from typing import Any, Sequence

from quorin_libs.profiling import ColumnProfile, TableProfile
from quorin_libs.reading import describe_delimiter
from quorin_libs.terminal import count, display_width, printable, shortened

__all__ = ["LAYOUT", "render_json", "render_table"]

# Increases if a key of the JSON is removed or changes its meaning, not for new keys.
LAYOUT = 1

_HEADINGS = ("column", "kind", "markers", "new", "missing", "share", "distinct", "flags")
_RIGHT_ALIGNED = frozenset(("missing", "share", "distinct"))

# Widths in terminal cells that keep a row of ordinary columns within 120.
_NAME_WIDTH = 40
_MARKER_WIDTH = 32
_MARKERS_SHOWN = 4
_ESCAPES = {"\\": "\\\\", '"': '\\"'}


def render_table(profile: TableProfile, encoding: str = "utf-8") -> str:
    """Return the profile as lines of aligned columns.

    Parameters
    ----------
    profile : TableProfile
    encoding : str, optional
        Encoding of the output. Characters that it lacks and unprintable ones are escaped.

    Notes
    -----
    Long names and markers are shortened to ``start...end`` and ``"start"..."end"``, and a last line
    says so; names that would look alike are not shortened. :func:`render_json` never shortens.

    Examples
    --------
    >>> import io
    >>> from quorin_libs import profile_table, read_table
    >>> profile = profile_table(read_table(io.BytesIO(b"id,note\\n1,-\\n2,late\\n")))
    >>> print(render_table(profile), end="")
    stream: 2 rows, 2 columns, delimiter comma
    <BLANKLINE>
    column  kind      markers  new  missing  share  distinct  flags
    ------  --------  -------  ---  -------  -----  --------  --------
    id      int_str                       0     0%         2  unique
    note    char_str  "-"                 1  50.0%         1  constant
    """
    _check_profile(profile)
    rows = [list(_HEADINGS)]
    names = _shown_names([column.name for column in profile.columns], encoding)
    rows.extend(_cells(name, column, encoding) for name, column in zip(names, profile.columns))
    widths = [max(display_width(row[index]) for row in rows) for index in range(len(_HEADINGS))]
    rows.insert(1, ["-" * width for width in widths])
    lines = [_title(profile, encoding), ""]
    lines.extend(_line(row, widths) for row in rows)
    if any(_is_cut(column, name, encoding) for name, column in zip(names, profile.columns)):
        lines.extend(["", "... stands for what is left out of a long text; the JSON has it whole."])
    return "\n".join(lines) + "\n"


def render_json(profile: TableProfile) -> str:
    """Return the profile as one JSON object in ASCII, ended by a line end.

    Keys: ``layout`` (integer, 1), ``source``, ``delimiter``, ``rows``, ``notes`` (list of
    sentences) and ``columns``, a list in the table's order with the keys ``position`` (from 1),
    ``name``, ``kind``, ``markers``, ``new_markers``, ``missing``, ``missing_share`` (fraction of
    the rows, ``null`` when there are none), ``distinct``, ``constant``, ``unique``, ``date_like``.

    Examples
    --------
    >>> import io, json
    >>> from quorin_libs import profile_table, read_table
    >>> text = render_json(profile_table(read_table(io.BytesIO(b"a\\n1\\n?\\n"))))
    >>> json.loads(text)["columns"][0]["missing_share"]
    0.5
    """
    _check_profile(profile)
    document = {
        "layout": LAYOUT,
        "source": profile.source,
        "delimiter": profile.delimiter,
        "rows": profile.rows,
        "notes": list(profile.notes),
        "columns": [
            _json_column(position, column) for position, column in enumerate(profile.columns, 1)
        ],
    }
    return json.dumps(document, indent=2, allow_nan=False) + "\n"


def _title(profile: TableProfile, encoding: str) -> str:
    return "{}: {}, {}, delimiter {}".format(
        printable(profile.source, encoding),
        count(profile.rows, "row"),
        count(len(profile.columns), "column"),
        printable(describe_delimiter(profile.delimiter), encoding),
    )


def _check_profile(profile: TableProfile) -> None:
    if not isinstance(profile, TableProfile):
        raise TypeError(f"profile: a TableProfile, not {type(profile).__name__}")


def _pieces(text: str, encoding: str) -> list[str]:
    return [printable(character, encoding) for character in text]


def _shown_names(names: Sequence[str], encoding: str) -> list[str]:
    pieces = [_pieces(name, encoding) for name in names]
    cut = [shortened(each, _NAME_WIDTH) for each in pieces]
    times = Counter(cut)
    return [short if times[short] == 1 else "".join(each) for short, each in zip(cut, pieces)]


def _is_cut(column: ColumnProfile, name: str, encoding: str) -> bool:
    texts = (*column.markers[:_MARKERS_SHOWN], *column.new_markers[:_MARKERS_SHOWN])
    return name != printable(column.name, encoding) or any(
        display_width("".join(_marker_pieces(text, encoding))) > _MARKER_WIDTH for text in texts
    )


def _cells(name: str, column: ColumnProfile, encoding: str) -> list[str]:
    return [
        name,
        column.kind,
        _marker_list(column.markers, encoding),
        _marker_list(column.new_markers, encoding),
        str(column.missing),
        _share(column.missing_share),
        str(column.distinct),
        ", ".join(_flags(column)),
    ]


def _marker_list(markers: Sequence[str], encoding: str) -> str:
    shown = [_quoted(marker, encoding) for marker in markers[:_MARKERS_SHOWN]]
    text = " ".join(shown)
    hidden = len(markers) - len(shown)
    return text + f" and {hidden} more" if hidden else text


def _marker_pieces(marker: str, encoding: str) -> list[str]:
    return [_ESCAPES.get(piece, piece) for piece in _pieces(marker, encoding)]


def _quoted(marker: str, encoding: str) -> str:
    return '"' + shortened(_marker_pieces(marker, encoding), _MARKER_WIDTH, gap='"..."') + '"'


def _share(share: float | None) -> str:
    """Return per cent with one decimal; "0.0%" only for none, "100.0%" only for all."""
    if share is None:
        return ""
    if share in (0.0, 1.0):
        return f"{share:.0%}"
    text = f"{share:.1%}"
    return {"0.0%": "<0.1%", "100.0%": ">99.9%"}.get(text, text)


def _flags(column: ColumnProfile) -> list[str]:
    flags = (
        ("constant", column.constant),
        ("unique", column.unique),
        ("date-like", column.date_like),
    )
    return [name for name, holds in flags if holds]


def _line(cells: Sequence[str], widths: Sequence[int]) -> str:
    padded = []
    for heading, cell, width in zip(_HEADINGS, cells, widths):
        blanks = " " * (width - display_width(cell))
        padded.append(blanks + cell if heading in _RIGHT_ALIGNED else cell + blanks)
    return "  ".join(padded).rstrip()


def _json_column(position: int, column: ColumnProfile) -> dict[str, Any]:
    return {
        "position": position,
        "name": column.name,
        "kind": column.kind,
        "markers": list(column.markers),
        "new_markers": list(column.new_markers),
        "missing": column.missing,
        "missing_share": column.missing_share,
        "distinct": column.distinct,
        "constant": column.constant,
        "unique": column.unique,
        "date_like": column.date_like,
    }
