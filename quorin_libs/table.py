"""A table of texts: the columns of a file, not converted."""

from __future__ import annotations

from collections import Counter
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any

import numpy as np

from quorin_libs.terminal import count

if TYPE_CHECKING:
    import pandas as pd

__all__ = ["Table"]


@dataclass(frozen=True, eq=False)
class Table:
    """A table of texts.

    Attributes
    ----------
    names : tuple of str
        The names of the columns, without duplicates.
    columns : tuple of numpy.ndarray
        For each column an object array of ``str``, of shape (rows,).
    source : str
        Name of the input: the path, ``standard input`` or ``stream``.
    delimiter : str
        The character between two cells.
    notes : tuple of str
        What was done with irregularities of the input, one sentence each.

    Raises
    ------
    TypeError
        If a name or a cell is not a str, or a column is not an array of objects.
    ValueError
        If the number of columns is not the number of names, the columns differ in length, or a name
        occurs twice.
    """

    names: tuple[str, ...]
    columns: tuple[np.ndarray[Any, Any], ...]
    source: str = "table"
    delimiter: str = ","
    notes: tuple[str, ...] = ()

    def __post_init__(self) -> None:
        if len(self.names) != len(self.columns):
            names, columns = count(len(self.names), "name"), count(len(self.columns), "column")
            raise ValueError(f"{names} for {columns}")
        for position, name in enumerate(self.names, 1):
            if not isinstance(name, str):
                raise TypeError(f"column {position}: the name {name!r} is no text")
        for name, times in Counter(self.names).items():
            if times > 1:
                raise ValueError(f"{count(times, 'column')} have the name {name!r}")
        for name, column in zip(self.names, self.columns):
            _check_column(name, column)
            if len(column) != self.rows:
                raise ValueError(
                    f"column {name!r} has {count(len(column), 'row')}, "
                    f"column {self.names[0]!r} has {self.rows}"
                )

    @property
    def rows(self) -> int:
        """Number of records below the header."""
        return len(self.columns[0]) if self.columns else 0

    @classmethod
    def from_frame(cls, frame: pd.DataFrame, source: str = "frame") -> Table:
        """Make a table of a data frame whose cells are texts.

        Parameters
        ----------
        frame : pandas.DataFrame
            As ``pandas.read_csv(path, dtype=str, keep_default_na=False)`` returns it.
        source : str, optional
            Name of the input, for messages and the profile.

        Returns
        -------
        Table

        Raises
        ------
        TypeError
            If ``frame`` is not a DataFrame, or a name or a cell is not a str.
        ValueError
            If a name occurs twice.

        Examples
        --------
        >>> import pandas as pd
        >>> Table.from_frame(pd.DataFrame({"depth": ["12.5", "~"]})).rows
        2
        """
        import pandas as pd

        if not isinstance(frame, pd.DataFrame):
            raise TypeError(f"frame: a pandas.DataFrame, not {type(frame).__name__}")
        columns = (frame.iloc[:, i].to_numpy(dtype=object) for i in range(frame.shape[1]))
        return cls(tuple(frame.columns), tuple(columns), source)


def _check_column(name: str, column: Any) -> None:
    if not isinstance(column, np.ndarray) or column.dtype != object or column.ndim != 1:
        what = type(column).__name__
        if isinstance(column, np.ndarray):
            what = f"one of dtype {column.dtype} and shape {column.shape}"
        raise TypeError(f"column {name!r}: a flat array of objects, not {what}")
    cells = column.tolist()
    if set(map(type, cells)) - {str}:
        row, cell = next((i, cell) for i, cell in enumerate(cells) if type(cell) is not str)
        raise TypeError(
            f"column {name!r}, row {row}: {cell!r} is no text; read the table as text, "
            "in pandas with dtype=str and keep_default_na=False"
        )
