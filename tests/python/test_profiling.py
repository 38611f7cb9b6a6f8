"""The profile of a column: what it adds to the classifier's answer."""

from __future__ import annotations

import doctest
import re

import numpy as np
import pandas as pd
import pytest

from quorin_libs import profiling
from quorin_libs.profiling import profile_column, profile_table
from quorin_libs.reading import Table
from quorin_libs.utils import exportable_utils


def texts(*values):
    column = np.empty(len(values), dtype=object)
    column[:] = values
    return column


def table(**columns):
    arrays = tuple(texts(*values) for values in columns.values())
    return Table(tuple(columns), arrays, "t.csv", ";", ("a note",))


# values; kind, listed markers, new markers, missing, distinct
COLUMNS = [
    (["1", "2", "2"], "int_str", (), (), 0, 2),
    (["1.5", "2", "-3.0"], "float_str", (), (), 0, 3),
    (["a", "b", "b"], "char_str", (), (), 0, 2),
    (["?", "", "-", "?"], "missing", ("?", "", "-"), (), 4, 0),
    (["a", "?", "", "a"], "char_str", ("?", ""), (), 2, 1),
    # A lone text that sorts before digits, one that sorts after them, a word among numbers.
    (["*", "1", "*", "2"], "int_str", (), ("*",), 2, 2),
    (["1.5", "~", "2.5", ""], "float_str", ("",), ("~",), 2, 2),
    (["1", "unknown", "2", "unknown"], "int_str", (), ("unknown",), 2, 2),
    # Texts that other readers convert to missing values are not changed.
    (["NA", "nan", "None", "NULL"], "char_str", (), (), 0, 4),
]


@pytest.mark.parametrize("values, kind, markers, new, missing, distinct", COLUMNS)
def test_column(values, kind, markers, new, missing, distinct):
    profile = profile_column("c", texts(*values))
    assert profile.name == "c"
    assert profile.rows == len(values)
    assert (profile.kind, profile.markers, profile.new_markers) == (kind, markers, new)
    assert (profile.missing, profile.distinct) == (missing, distinct)


@pytest.mark.parametrize("values, kind, markers, new, missing, distinct", COLUMNS)
def test_counts_agree_with_the_cells(values, kind, markers, new, missing, distinct):
    profile = profile_column("c", texts(*values))
    reported = set(profile.markers) | set(profile.new_markers)
    assert profile.missing == sum(value in reported for value in values)
    assert profile.distinct == len(set(values) - reported)
    assert profile.missing_share == profile.missing / len(values)


@pytest.mark.parametrize(
    "values, constant, unique",
    [
        (["a", "b"], False, True),
        (["a", "a"], True, False),
        (["a", "b", "a"], False, False),
        (["a", "", "b", ""], False, True),
        (["a", ""], True, False),
        (["", ""], True, False),
        (["*", "1", "*", "2"], False, True),
        (["*", "1", "*", "1"], True, False),
        (["a"], True, False),
    ],
)
def test_flags(values, constant, unique):
    profile = profile_column("c", texts(*values))
    assert (profile.constant, profile.unique) == (constant, unique)


def test_dates():
    days = [f"2021-03-{day:02d}" for day in range(1, 20)]
    assert profile_column("c", texts("", *days)).date_like is True
    assert profile_column("c", texts("x", "y")).date_like is False


def test_no_rows():
    profile = profile_column("c", texts())
    assert (profile.kind, profile.markers, profile.new_markers) == ("missing", (), ())
    assert (profile.rows, profile.missing, profile.distinct) == (0, 0, 0)
    assert profile.missing_share is None
    assert (profile.constant, profile.unique, profile.date_like) == (False, False, False)


def test_given_markers_replace_the_list():
    values = texts("NA", "a", "?", "NA", "")
    assert profile_column("c", values, ["NA"]).markers == ("NA",)
    assert profile_column("c", values, ["NA"]).missing == 2
    assert profile_column("c", values, ["", "NA", ""]).markers == ("", "NA")
    assert profile_column("c", values, []).missing == 0
    assert profile_column("c", values, []).distinct == 4


@pytest.mark.parametrize("markers, culprit", [("NA", "'NA'"), (b"?", "b'?'"), (5, "5")])
def test_markers_are_a_sequence(markers, culprit):
    with pytest.raises(TypeError, match="markers: a sequence of texts, not " + re.escape(culprit)):
        profile_table(table(a=["1"]), markers)


@pytest.mark.parametrize("marker", [1, None, b"?", ["?"]])
def test_markers_are_texts(marker):
    with pytest.raises(TypeError, match="markers: .* is no text"):
        profile_table(table(a=["1"]), ["?", marker])


FRAME = pd.DataFrame({"a": ["1"]})


@pytest.mark.parametrize(
    "value, hint",
    [([], "list$"), (None, "NoneType$"), (FRAME, r"DataFrame; Table\.from_frame\(\) makes one")],
)
def test_what_is_no_table_is_named(value, hint):
    with pytest.raises(TypeError, match="table: a Table, not " + hint):
        profile_table(value)


def test_default_markers_are_the_module_list_at_the_time(monkeypatch):
    monkeypatch.setattr(exportable_utils, "global_missing_values_reference_list", ["x"])
    profile = profile_column("c", texts("x", "?", "y"))
    assert (profile.markers, profile.missing) == (("x",), 1)


def test_classifier_is_looked_up_at_the_time_of_the_call(monkeypatch):
    calls = []
    original = exportable_utils.numpy_whatis

    def counting(*arguments, **keywords):
        calls.append(keywords)
        return original(*arguments, **keywords)

    monkeypatch.setattr(exportable_utils, "numpy_whatis", counting)
    profile_table(table(a=["1"], b=["2"]))
    assert calls == [{"return_stats_flag": True}] * 2


def test_marker_lists_and_columns_are_left_alone():
    markers = ["?"]
    column = texts("1", "*", "?")
    profile_column("c", column, markers)
    assert markers == ["?"]
    assert column.tolist() == ["1", "*", "?"]
    profile_column("c", column)
    assert exportable_utils.global_missing_values_reference_list[:3] == ["?", "", "-"]
    assert len(exportable_utils.global_missing_values_reference_list) == 4


def test_table_keeps_order_source_and_notes():
    steps = []
    profile = profile_table(
        table(b=["1", "2"], a=["x", "y"]), progress=lambda *step: steps.append(step)
    )
    assert [column.name for column in profile.columns] == ["b", "a"]
    assert (profile.source, profile.delimiter, profile.rows) == ("t.csv", ";", 2)
    assert profile.notes == ("a note",)
    assert steps == [(0, 2), (1, 2), (2, 2)]


def test_profiles_cannot_be_changed():
    profile = profile_table(table(a=["1"]))
    with pytest.raises(AttributeError):
        profile.rows = 3
    with pytest.raises(AttributeError):
        profile.columns[0].missing = 3


def test_examples_in_the_documentation():
    result = doctest.testmod(profiling)
    assert result.attempted > 0
    assert result.failed == 0
