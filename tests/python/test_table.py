"""A table: columns of texts of equal length, with distinct names."""

from __future__ import annotations

import doctest

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from quorin_libs import Table, profile_table, table

TWO = objects("1", "2")


@pytest.mark.parametrize(
    "names, columns, kind, message",
    [
        (("a",), (TWO, TWO), ValueError, "1 name for 2 columns"),
        (("a", "b"), (TWO,), ValueError, "2 names for 1 column"),
        (("a", "b"), (TWO, objects("1")), ValueError, "column 'b' has 1 row, column 'a' has 2"),
        (("a", "b", "a"), (TWO, TWO, TWO), ValueError, "2 columns have the name 'a'"),
        ((1,), (TWO,), TypeError, "column 1: the name 1 is no text"),
        (("a",), (["1"],), TypeError, "column 'a': a flat array of objects, not list"),
        (
            ("a",),
            (np.array([["1", "?"]], dtype=object),),
            TypeError,
            r"column 'a': a flat array of objects, not one of dtype object and shape \(1, 2\)",
        ),
        (("a",), (np.array([1.5]),), TypeError, "not one of dtype float64"),
        (("a", "b"), (TWO, objects("1", None)), TypeError, "column 'b', row 1: None is no text"),
    ],
)
def test_what_is_no_table_is_refused(names, columns, kind, message):
    with pytest.raises(kind, match=message):
        Table(names, columns)


def test_tables_are_compared_by_identity():
    one, other = Table(("a",), (TWO,)), Table(("a",), (TWO,))
    assert one == one and one != other
    assert len({one, other}) == 2


def test_of_a_frame():
    frame = pd.DataFrame({"depth": ["12.5", "~", "3.0"], "site": ["A", "B", "C"]})
    made = Table.from_frame(frame)
    assert (made.names, made.rows, made.source) == (("depth", "site"), 3, "frame")
    assert profile_table(made).columns[0].new_markers == ("~",)


@pytest.mark.parametrize(
    "frame, kind, message",
    [
        (pd.DataFrame({"a": ["1", 2.5]}), TypeError, "column 'a', row 1: 2.5 is no text"),
        (pd.DataFrame({"a": ["1", None]}), TypeError, "column 'a', row 1: .* is no text"),
        (pd.DataFrame([["1"]]), TypeError, "column 1: the name 0 is no text"),
        (pd.DataFrame([["1", "2"]], columns=["a", "a"]), ValueError, "have the name 'a'"),
        (pd.Series(["1"]), TypeError, "frame: a pandas.DataFrame, not Series"),
    ],
)
def test_frames_that_are_no_tables_of_texts(frame, kind, message):
    with pytest.raises(kind, match=message):
        Table.from_frame(frame)


def test_examples_in_the_documentation():
    result = doctest.testmod(table)
    assert result.attempted > 0
    assert result.failed == 0
