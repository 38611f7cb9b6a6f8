"""Reading delimited text: no cell is lost, and every error names its cause."""

from __future__ import annotations

import csv
import doctest
import io

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

from quorin_libs import reading
from quorin_libs.reading import InputError, parse_delimiter, read_table


def read(data, **options):
    return read_table(io.BytesIO(data), **options)


def cells(table):
    return [column.tolist() for column in table.columns]


def refusal(data, **options):
    with pytest.raises(InputError) as caught:
        read(data, **options)
    return str(caught.value)


@pytest.mark.parametrize(
    "data, names, columns",
    [
        (b"a,b\n1,2\n", ("a", "b"), [["1"], ["2"]]),
        (b"a,b\n1,2", ("a", "b"), [["1"], ["2"]]),
        (b"a,b\r\n1,2\r\n", ("a", "b"), [["1"], ["2"]]),
        (b"a,b\r1,2\r", ("a", "b"), [["1"], ["2"]]),
        (b"\xef\xbb\xbfa,b\n1,2\n", ("a", "b"), [["1"], ["2"]]),
        (b'a,b\n"x\r\ny","q ""r"""\n', ("a", "b"), [["x\r\ny"], ['q "r"']]),
        (b'a,b\n5" pipe,2\n', ("a", "b"), [['5" pipe'], ["2"]]),
        (b"a,b\nNA,nan\n,None\n", ("a", "b"), [["NA", ""], ["nan", "None"]]),
        (b"a,b\n 1 ,\t2\n", ("a", "b"), [[" 1 "], ["\t2"]]),
        (b"a,b\n001,1e5\n", ("a", "b"), [["001"], ["1e5"]]),
        (b'a\n""\n1\n', ("a",), [["", "1"]]),
    ],
)
def test_cells_are_the_text_of_the_file(data, names, columns):
    table = read(data)
    assert table.names == names
    assert cells(table) == columns
    assert table.notes == ()
    assert table.rows == len(columns[0])


def test_columns_are_object_arrays_of_str():
    column = read(b"a\n1\nxyz\n").columns[0]
    assert column.dtype == np.dtype(object)
    assert column.shape == (2,)
    assert [type(cell) for cell in column] == [str, str]


@pytest.mark.parametrize(
    "data, delimiter",
    [
        (b"a,b\n1,2\n", ","),
        (b"a;b\n1,5;2,5\n", ";"),
        (b"a\tb\n1\t2\n", "\t"),
        (b"a|b\n1|2\n", "|"),
        (b"a\n1\n", ","),
        # Commas give lines of different length, bars of equal length.
        (b"a|b\nx, y|1\nz|2\n", "|"),
        # Equal lengths with both: more cells win, then the order comma, semicolon, tab, bar.
        (b"a;b,c;d\n1;2,3;4\n", ";"),
        (b"a;b,c\n1;2,3\n", ","),
        # A quoted delimiter does not count.
        (b'"a;b",c\n"1;2",3\n', ","),
    ],
)
def test_delimiter_is_detected(data, delimiter):
    assert read(data).delimiter == delimiter


def test_header_alone_decides_where_no_delimiter_cuts_all_lines_evenly():
    expected = "stream: line 2: 1 cell where the header has 3 (delimiter semicolon, detected)"
    assert refusal(b"a;b,c;d\n1,2\n3;4\n") == expected


def test_first_hundred_records_decide():
    data = b"a|b,c\n" + b"1|2,3\n" * 98 + b"1|2\n"
    assert read(data).delimiter == "|"
    expected = "stream: line 101: 1 cell where the header has 2 (delimiter comma, detected)"
    assert refusal(data.replace(b"1|2\n", b"1|2,3\n1|2\n")) == expected


def test_given_delimiter_is_taken():
    assert cells(read(b"a,b:c\n1,2:3\n", delimiter=":")) == [["1,2"], ["3"]]


@pytest.mark.parametrize(
    "text, character",
    [
        ("comma", ","),
        ("Semicolon", ";"),
        ("TAB", "\t"),
        ("\\t", "\t"),
        ("bar", "|"),
        ("pipe", "|"),
        ("space", " "),
        ("colon", ":"),
        ("^", "^"),
        ("\t", "\t"),
    ],
)
def test_delimiter_names(text, character):
    assert parse_delimiter(text) == character


@pytest.mark.parametrize("text", ["", ",,", '"', "\n", "\r", "\0", "commas"])
def test_impossible_delimiters(text):
    with pytest.raises(ValueError, match="a delimiter is one character other than") as caught:
        parse_delimiter(text)
    assert str(caught.value).endswith(f"got {text!r}")


@pytest.mark.parametrize("encoding", ["utf-16", "utf-16-le", "cp1252", "utf-8"])
def test_encodings(encoding):
    assert read("é,b\n1,2\n".encode(encoding), encoding=encoding).names == ("é", "b")


def test_byte_order_mark_is_no_part_of_the_first_name():
    data = "\ufeffa,b\n1,2\n"
    assert read(data.encode("utf-8"), encoding="utf-8").names == ("a", "b")
    assert read(data.encode("utf-16-be"), encoding="utf-16-be").names == ("a", "b")


@pytest.mark.parametrize(
    "data, notes",
    [
        (b"a,b\n1,2\n\n3,4\n", ("line 3 is blank and left out",)),
        (b"\n\na,b\n1,2\n\n", ("3 blank lines are left out, the first is line 1",)),
        (b",b\n1,2\n", ("column 1 has no name and is called 'column 1'",)),
        (b"a, \n1,2\n", ("column 2 has no name and is called 'column 2'",)),
        (b",column 1\n1,2\n", ('column 1 has no name and is called "column 1\'"',)),
        (b"a\n1\n\n3\n", ("line 3 is blank and counted as an empty cell",)),
        (
            b"a\n1\n\n\n",
            ("2 blank lines are counted as empty cells, the first is line 3",),
        ),
        (b"1,2.5\n3,4\n", ("line 1 holds only numbers and is taken for the column names",)),
        (b"a,b\n", ("there is a header and no row below it",)),
        (b"a", ("there is a header and no row below it",)),
    ],
)
def test_odd_spots_are_handled_and_noted(data, notes):
    assert read(data).notes == notes


def test_blank_lines_of_one_column_are_cells():
    assert cells(read(b"a\n1\n\n3\n")) == [["1", "", "3"]]


def test_without_a_header():
    table = read(b"x,1\n,2\n", header=False)
    assert table.names == ("column 1", "column 2")
    assert cells(table) == [["x", ""], ["1", "2"]]
    assert table.notes == ()
    message = "stream: line 2: 1 cell where the first row has 2 (delimiter comma, detected)"
    assert refusal(b"x,1\n2\n", header=False) == message


def test_many_records_come_in_order_and_tell_how_far():
    told = []
    data = b"n,m\n" + b"".join(b"%d,%d\n" % (i, -i) for i in range(1700))
    table = read(data, progress=lambda done, total: told.append((done, total)))
    assert cells(table) == [[str(i) for i in range(1700)], [str(-i) for i in range(1700)]]
    assert [total for _, total in told] == [len(data)] * 3
    assert [done for done, _ in told] == sorted({done for done, _ in told})
    assert 0 < told[0][0] < told[-1][0] < len(data)


@pytest.mark.parametrize(
    "arguments, message",
    [
        ((5,), "source: a path or a binary stream, not int"),
        ((b"x.csv",), "source: a path or a binary stream, not bytes"),
        ((io.StringIO("a\n1\n"),), "source: a binary stream, not one that gives str"),
        ((io.BytesIO(b"a\n1\n"), 5), "delimiter: a text, not int"),
        ((io.BytesIO(b"a\n1\n"), ",", None), "encoding: a text, not NoneType"),
    ],
)
def test_wrong_types_are_named(arguments, message):
    with pytest.raises(TypeError, match=message):
        read_table(*arguments)


def test_delimiters_have_names_here_as_well():
    assert cells(read(b"a;b\n1;2\n", delimiter="semicolon")) == [["1"], ["2"]]
    with pytest.raises(ValueError, match="got 'semi'"):
        read(b"a;b\n1;2\n", delimiter="semi")


def test_header_only_table_has_empty_columns():
    table = read(b"a,b\n")
    assert table.rows == 0
    assert [column.shape for column in table.columns] == [(0,), (0,)]


@pytest.mark.parametrize(
    "data, message",
    [
        (b"", "stream: the input is empty"),
        (b"\xef\xbb\xbf", "stream: the input is empty"),
        (b"\n\r\n\n", "stream: no column names: there are only blank lines"),
        (
            b"a,b\n1,2\n3\n",
            "stream: line 3: 1 cell where the header has 2 (delimiter comma, detected)",
        ),
        (
            b'a,b\n"1\n1",2\n3,4,5\n',
            "stream: line 4: 3 cells where the header has 2 (delimiter comma, detected)",
        ),
        (
            b"a,b,a\n1,2,3\n",
            "stream: line 1: columns 1 and 3 have the same name 'a'",
        ),
        (
            b"\x1f\x8b\x08\0",
            "stream: line 1: byte 0x8B is not utf-8 text; it starts like gzip, which has to be "
            "unpacked first",
        ),
        (
            b"a,b\n1,\xe92\n",
            "stream: line 2: byte 0xE9 is not utf-8 text; name the encoding with --encoding",
        ),
        (
            "a,b\n1,2\n".encode("utf-16"),
            "stream: line 1: byte 0xFF is not utf-8 text; name the encoding with --encoding "
            "(it starts like utf-16)",
        ),
        (
            b"a,b\r\n1,\x002\r\n",
            "stream: line 2: a NUL character; this is not a text table, or its encoding is not "
            "utf-8",
        ),
        (
            b'a,b\n1,2\n"3,4\n5,6\n',
            "stream: line 3: the record that starts here opens a quote and never closes it",
        ),
        (
            b'a,b\n1,2\n"3"x,4\n',
            "stream: line 3: text follows a closing quote where a comma or a line end is expected",
        ),
    ],
)
def test_refusals_name_the_culprit(data, message):
    assert refusal(data) == message


def test_ragged_row_under_a_given_delimiter():
    expected = "stream: line 2: 3 cells where the header has 2 (delimiter '^')"
    assert refusal(b"a^b\n1^2^3\n", delimiter="^") == expected


def test_over_long_cell():
    limit = csv.field_size_limit()
    message = (
        "stream: line 2: a cell of the record that starts here is longer than "
        f"{limit} characters (is a quote left open?)"
    )
    assert refusal(b"a,b\n1," + b"x" * (limit + 1) + b"\n") == message
    assert read(b"a,b\n1," + b"x" * limit + b"\n").rows == 1


@pytest.mark.parametrize("encoding", ["no-such", "rot13", "a\0b"])
def test_unknown_encoding(encoding):
    expected = f"stream: {encoding!r} is not a known text encoding"
    assert refusal(b"a\n1\n", encoding=encoding) == expected


def test_paths(tmp_path):
    missing = tmp_path / "none.csv"
    with pytest.raises(InputError) as caught:
        read_table(missing)
    assert str(caught.value) == f"{missing}: no such file"
    with pytest.raises(InputError) as caught:
        read_table(str(tmp_path))
    assert str(caught.value) == f"{tmp_path}: a directory, not a file"
    with pytest.raises(InputError, match="the file's name is empty"):
        read_table("")
    with pytest.raises(InputError, match="^a,b\\\\n1,2: no such file$"):
        read_table("a,b\n1,2")
    with pytest.raises(InputError, match=": cannot be read: embedded null"):
        read_table("a\0b")
    present = tmp_path / "t.csv"
    present.write_bytes(b"a\n1\n")
    assert read_table(present).source == str(present)
    with present.open("rb") as stream:
        assert read_table(stream).source == str(present)


TEXTS = st.text(st.characters(blacklist_categories=["Cs"], blacklist_characters="\0"), max_size=6)
NAMES = TEXTS.filter(lambda name: name.strip() and not name.startswith("\ufeff"))


@given(st.data())
def test_what_was_written_is_read(data):
    names = data.draw(st.lists(NAMES, min_size=1, max_size=4, unique=True))
    row = st.tuples(*[TEXTS] * len(names))
    rows = data.draw(st.lists(row, max_size=5))
    delimiter = data.draw(st.sampled_from(",;\t|:"))
    stream = io.StringIO(newline="")
    csv.writer(stream, delimiter=delimiter).writerows([names, *rows])
    table = read(stream.getvalue().encode("utf-8"), delimiter=delimiter)
    assert table.names == tuple(names)
    assert cells(table) == [[row[index] for row in rows] for index in range(len(names))]


def test_examples_in_the_documentation():
    result = doctest.testmod(reading)
    assert result.attempted > 0
    assert result.failed == 0
