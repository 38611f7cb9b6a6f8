"""The profile of a table: what each column holds, and which of its texts stand for missing."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Iterable, Sequence

import numpy as np

from quorin_libs.reading import Progress
from quorin_libs.table import Table
from quorin_libs.utils import exportable_utils

__all__ = ["ColumnProfile", "TableProfile", "profile_column", "profile_table"]


@dataclass(frozen=True)
class ColumnProfile:
    """The profile of one column.

    Attributes
    ----------
    name : str
    kind : str
        The classifier's kind: ``missing``, ``char_str`` (text), ``int_str`` (integers written as
        text), ``float_str`` (decimal numbers written as text), or ``Unknown``.
    markers : tuple of str
        The listed markers that occur in the column.
    new_markers : tuple of str
        Markers that are not listed, discovered from the other values of the column.
    rows : int
        Number of cells.
    missing : int
        Cells that hold one of ``markers`` or ``new_markers``.
    distinct : int
        Number of distinct values among the cells that are not missing.
    date_like : bool
        Whether the values are dates or times.
    """

    name: str
    kind: str
    markers: tuple[str, ...]
    new_markers: tuple[str, ...]
    rows: int
    missing: int
    distinct: int
    date_like: bool

    @property
    def missing_share(self) -> float | None:
        """Missing cells as a fraction of all cells; ``None`` if there are no rows."""
        return self.missing / self.rows if self.rows else None

    @property
    def constant(self) -> bool:
        """Whether the column has rows and at most one distinct value."""
        return self.rows > 0 and self.distinct <= 1

    @property
    def unique(self) -> bool:
        """Whether two or more cells hold a value and no value occurs twice."""
        return self.distinct > 1 and self.distinct == self.rows - self.missing


@dataclass(frozen=True)
class TableProfile:
    """The profiles of a table's columns, and where the table came from.

    Attributes
    ----------
    source : str
        Name of the input.
    delimiter : str
        The character between two cells of the input.
    rows : int
        Number of records below the header.
    columns : tuple of ColumnProfile
        In the table's order.
    notes : tuple of str
        What was done with irregularities of the input, one sentence each.
    """

    source: str
    delimiter: str
    rows: int
    columns: tuple[ColumnProfile, ...]
    notes: tuple[str, ...] = ()


def profile_table(
    table: Table,
    markers: Sequence[str] | None = None,
    progress: Progress | None = None,
) -> TableProfile:
    """Profile every column of a table of texts.

    Parameters
    ----------
    table : Table
        As :func:`quorin_libs.read_table` returns it.
    markers : sequence of str, optional
        The listed markers. Default: ``global_missing_values_reference_list``, which is ``?``, the
        empty text and ``-``. With an empty sequence all markers are discovered ones.
    progress : callable, optional
        Called as ``progress(done, total)`` before each column and after the last.

    Returns
    -------
    TableProfile

    Raises
    ------
    TypeError
        If ``table`` is not a Table or ``markers`` is not a sequence of texts.

    Examples
    --------
    >>> import io
    >>> from quorin_libs import read_table
    >>> profile = profile_table(read_table(io.BytesIO(b"n\\n4\\n?\\n7\\n*\\n")))
    >>> column = profile.columns[0]
    >>> column.kind, column.markers, column.new_markers, column.missing
    ('int_str', ('?',), ('*',), 2)
    """
    if not isinstance(table, Table):
        hint = "; Table.from_frame() makes one" if hasattr(table, "iloc") else ""
        raise TypeError(f"table: a Table, not {type(table).__name__}{hint}")
    reference_list = _reference_list(markers)
    total = len(table.names)
    profiles: list[ColumnProfile] = []
    for name, column in zip(table.names, table.columns):
        if progress is not None:
            progress(len(profiles), total)
        profiles.append(_profile_column(name, column, reference_list))
    if progress is not None:
        progress(total, total)
    return TableProfile(table.source, table.delimiter, table.rows, tuple(profiles), table.notes)


def profile_column(
    name: str, column: np.ndarray[Any, Any], markers: Sequence[str] | None = None
) -> ColumnProfile:
    """Profile one object array of ``str``; ``markers`` as for :func:`profile_table`.

    Examples
    --------
    >>> import numpy as np
    >>> profile_column("n", np.array(["1", "2", ""], dtype=object)).missing_share
    0.3333333333333333
    """
    return _profile_column(name, column, _reference_list(markers))


def _profile_column(
    name: str, column: np.ndarray[Any, Any], reference_list: list[Any]
) -> ColumnProfile:
    if len(column) == 0:
        # The classifier fails without a first row. No row holds a value: missing.
        return ColumnProfile(name, "missing", (), (), 0, 0, 0, False)
    found, kind, statistics = exportable_utils.numpy_whatis(
        column, reference_list, return_stats_flag=True
    )
    values = statistics["unique_values"].tolist()
    counts = dict(zip(values, statistics["unique_values_counts"].tolist()))
    # The distinct values exclude listed markers and include discovered ones.
    known = tuple(marker for marker in found if marker not in counts)
    new = tuple(marker for marker in found if marker in counts)
    return ColumnProfile(
        name=name,
        kind=kind,
        markers=known,
        new_markers=new,
        rows=len(column),
        missing=int(statistics["missing_mask"].sum()) + sum(counts[marker] for marker in new),
        distinct=len(values) - len(new),
        date_like=bool(statistics["datetime_column_flag"]),
    )


def _reference_list(markers: Sequence[str] | None) -> list[Any]:
    if markers is None:
        return list(exportable_utils.global_missing_values_reference_list)
    if isinstance(markers, (str, bytes)) or not isinstance(markers, Iterable):
        raise TypeError(f"markers: a sequence of texts, not {markers!r}")
    texts = list(markers)
    for text in texts:
        if not isinstance(text, str):
            raise TypeError(f"markers: {text!r} is no text")
    # The classifier treats an empty list as no list and then returns no mask; NaN matches no text.
    return list(dict.fromkeys(texts)) or [np.nan]
