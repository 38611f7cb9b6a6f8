"""The printed table is aligned for any content; the keys of the JSON are fixed."""

from __future__ import annotations

import doctest
import io
import json

import pytest

from quorin_libs import read_table, rendering
from quorin_libs.profiling import ColumnProfile, TableProfile, profile_table
from quorin_libs.rendering import render_json, render_table
from quorin_libs.terminal import display_width


def column(**changes):
    values = {
        "name": "a",
        "kind": "char_str",
        "markers": (),
        "new_markers": (),
        "rows": 10,
        "missing": 0,
        "distinct": 5,
        "date_like": False,
    }
    values.update(changes)
    return ColumnProfile(**values)


def rendered(*columns, **options):
    return render_table(TableProfile("t.csv", ",", 10, columns), **options).splitlines()


def edge(line, text):
    """The terminal cell in which a text of the line starts."""
    return display_width(line[: line.index(text)])


def test_whole_table():
    data = b"n,s,note\n1,a,?\n*,b,\n3,c,-\n*,d,?\n"
    assert render_table(profile_table(read_table(io.BytesIO(data)))) == (
        "stream: 4 rows, 3 columns, delimiter comma\n"
        "\n"
        "column  kind      markers     new  missing  share  distinct  flags\n"
        "------  --------  ----------  ---  -------  -----  --------  --------\n"
        'n       int_str               "*"        2  50.0%         2  unique\n'
        "s       char_str                         0     0%         4  unique\n"
        'note    missing   "?" "" "-"             4   100%         0  constant\n'
    )


@pytest.mark.parametrize(
    "name",
    [
        "元素番号",
        "ｗｉｄｅ",
        "e\u0301te\u0301",
        "tab\tname",
        "line\nend",
        "\x1b[31mred",
        "\u202eabc",
    ],
)
def test_columns_stay_aligned_under_any_name(name):
    lines = rendered(column(name=name), column(name="plain"))
    assert len(lines) == 6
    assert len({edge(line, "char_str") for line in lines[4:]}) == 1
    assert all(line.isprintable() for line in lines)


@pytest.mark.parametrize("marker", ["元", "\t", "\x07", '"', "\\", "", "－"])
def test_columns_stay_aligned_under_any_marker(marker):
    lines = rendered(column(markers=(marker,), missing=1), column(missing=1))
    assert len({edge(line, "10.0%") for line in lines[4:]}) == 1
    assert all(line.isprintable() for line in lines)


@pytest.mark.parametrize(
    "marker, shown",
    [
        ("", '""'),
        ("?", '"?"'),
        ('"', '"\\""'),
        ("\\", '"\\\\"'),
        ("\t", '"\\t"'),
        ("x" * 32, '"' + "x" * 32 + '"'),
        ("x" * 33 + "y", '"' + "x" * 14 + '"..."' + "x" * 12 + 'y"'),
        ("\t" * 17, '"' + "\\t" * 7 + '"..."' + "\\t" * 6 + '"'),
    ],
)
def test_markers_are_quoted(marker, shown):
    assert " " + shown + " " in rendered(column(new_markers=(marker,)))[4]


def test_long_marker_lists_are_cut():
    line = rendered(column(new_markers=("a", "b", "c", "d", "e", "f")))[4]
    assert ' "a" "b" "c" "d" and 2 more ' in line


def test_long_names_are_cut():
    assert rendered(column(name="x" * 40))[4].startswith("x" * 40 + "  char_str")
    assert rendered(column(name="x" * 40 + "y"))[4].startswith(
        "x" * 19 + "..." + "x" * 17 + "y  ch"
    )
    # 18 wide characters take 36 of the 37 cells beside the dots.
    shown = "元" * 9 + "..." + "元" * 9
    assert rendered(column(name="元" * 21))[4].startswith(shown + "  char_str")


def test_long_names_that_would_look_alike_stay_whole():
    names = ["a" * 30 + middle + "b" * 30 for middle in "xy"]
    lines = rendered(column(name=names[0]), column(name=names[1]), column(name="c" * 70))
    assert [line.split()[0] for line in lines[4:6]] == names
    assert lines[6].startswith("c" * 19 + "..." + "c" * 18 + "  ")


def test_what_is_cut_is_told():
    told = "... stands for what is left out of a long text; the JSON has it whole."
    assert rendered(column(name="x" * 41))[-2:] == ["", told]
    assert rendered(column(markers=("x" * 33,)))[-2:] == ["", told]
    assert told not in rendered(column(name="x" * 40, new_markers=("x" * 32, "...")))


@pytest.mark.parametrize("render", [render_table, render_json])
def test_what_is_no_profile_is_named(render):
    with pytest.raises(TypeError, match="profile: a TableProfile, not list"):
        render([])


@pytest.mark.parametrize(
    "missing, rows, share",
    [
        (0, 10, "0%"),
        (10, 10, "100%"),
        (1, 3, "33.3%"),
        (1, 100000, "<0.1%"),
        (99999, 100000, ">99.9%"),
        (6, 10000, "0.1%"),
        (9995, 10000, ">99.9%"),
        (9994, 10000, "99.9%"),
    ],
)
def test_shares(missing, rows, share):
    assert f"  {share}  " in rendered(column(missing=missing, rows=rows))[4]


def test_no_share_without_rows():
    line = rendered(column(kind="missing", rows=0, distinct=0))[4]
    assert line.split() == ["a", "missing", "0", "0"]


def test_flags():
    assert rendered(column(distinct=1))[4].endswith("  constant")
    assert rendered(column(distinct=10, date_like=True))[4].endswith("  unique, date-like")
    assert rendered(column())[4].endswith("  5")


def test_singular_and_delimiter_in_the_title():
    profile = TableProfile("a\tb.csv", "\x1f", 1, (column(rows=1),))
    assert render_table(profile).startswith("a\\tb.csv: 1 row, 1 column, delimiter '\\x1f'\n")


def test_characters_the_output_cannot_hold_are_escaped():
    lines = rendered(column(name="é"), column(name="plain"), encoding="ascii")
    assert lines[4].startswith("\\xe9    char_str")
    assert len({edge(line, "char_str") for line in lines[4:]}) == 1


def test_json_layout():
    data = b"n\xc3\xa9,s\n1,\n*,\n"
    text = render_json(profile_table(read_table(io.BytesIO(data))))
    text.encode("ascii")
    assert text.endswith("}\n")
    assert json.loads(text) == {
        "layout": 1,
        "source": "stream",
        "delimiter": ",",
        "rows": 2,
        "notes": [],
        "columns": [
            {
                "position": 1,
                "name": "né",
                "kind": "int_str",
                "markers": [],
                "new_markers": ["*"],
                "missing": 1,
                "missing_share": 0.5,
                "distinct": 1,
                "constant": True,
                "unique": False,
                "date_like": False,
            },
            {
                "position": 2,
                "name": "s",
                "kind": "missing",
                "markers": [""],
                "new_markers": [],
                "missing": 2,
                "missing_share": 1.0,
                "distinct": 0,
                "constant": True,
                "unique": False,
                "date_like": False,
            },
        ],
    }


def test_json_without_rows_has_null_and_no_nan():
    document = json.loads(render_json(profile_table(read_table(io.BytesIO(b"a\n")))))
    assert document["rows"] == 0
    assert document["columns"][0]["missing_share"] is None
    assert document["notes"] == ["there is a header and no row below it"]


def test_examples_in_the_documentation():
    result = doctest.testmod(rendering)
    assert result.attempted > 0
    assert result.failed == 0
