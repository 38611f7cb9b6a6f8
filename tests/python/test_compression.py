"""Compressed labels: white space removed, or the integer of a digest; columns written in place."""

from __future__ import annotations

import datetime
import hashlib
from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils.exportable_utils import compress_str_column, compress_string

NAN = np.nan
DATE = datetime.datetime(2020, 1, 2, 3)


def digest(text):
    return int(hashlib.md5(text.encode("utf-8")).hexdigest(), 16)


# --- compress_string --------------------------------------------------------------------------


@pytest.mark.parametrize(
    "label, expected",
    [
        ("new york", "newyork"),
        ("  a  b\tc\n", "abc"),
        ("plain", "plain"),
        ("", ""),
        (" \t\r\n\v\f", ""),
        ("a\u00a0b\u2003c\x1cd", "abcd"),
        ("a\u200bb", "a\u200bb"),
        ("a,b-c", "a,b-c"),
        (np.str_("x y"), "xy"),
    ],
)
def test_white_space_is_removed(label, expected):
    for args in (label,), (label, "string"), (label, "".join(["str", "ing"])):
        result = compress_string(*args)
        assert type(result) is str
        assert result == expected


@pytest.mark.parametrize("mode", ["hash", "String", "string ", "", "md5", None, 0, True, b"string"])
@pytest.mark.parametrize("label", ["new york", "", " a ", "Zürich", "\u2003", "\U0001f600"])
def test_any_other_mode_gives_the_digest(label, mode):
    result = compress_string(label, mode)
    assert type(result) is int
    assert result == digest(label)


def test_known_digests():
    assert compress_string("", "hash") == 0xD41D8CD98F00B204E9800998ECF8427E
    assert compress_string("a", "hash") == 0x0CC175B9C0F1B6A831C399E269772661


def test_compress_string_takes_keywords():
    assert compress_string(compress_type="hash", s="a b") == digest("a b")
    assert compress_string(s="a b") == "ab"


def test_the_mode_is_compared_by_equality():
    class Mode:
        def __init__(self, answer):
            self.answer = answer
            self.asked = []

        def __eq__(self, other):
            self.asked.append(other)
            return self.answer

        __hash__ = None  # type: ignore[assignment]

    for answer, expected in ("yes", "ab"), ([], digest("a b")):
        mode = Mode(answer)
        assert compress_string("a b", mode) == expected
        assert mode.asked == ["string"]


class Text:
    """An object with the two methods of str that are called, without arguments."""

    def split(self, *args):
        assert args == ()
        return iter(["p", "q ", "r"])

    def encode(self, *args):
        assert args == ()
        return b"bytes"


def test_the_methods_of_the_label_are_called():
    assert compress_string(Text()) == "pq r"
    assert compress_string(Text(), "hash") == digest("bytes")


def test_hashlib_gives_the_digest(monkeypatch):
    md5 = Recorder(lambda data: SimpleNamespace(hexdigest=lambda: "ff"))
    replace_in(monkeypatch, "hashlib", md5=md5)
    assert compress_string("ä", "hash") == 255
    assert md5.calls == [(("ä".encode("utf-8"),), {})]


@pytest.mark.parametrize("label", [None, 5, 1.5, ["a"]])
def test_what_is_no_text_lacks_the_methods(label):
    with pytest.raises(AttributeError) as excinfo:
        compress_string(label)
    assert str(excinfo.value) == message_of(AttributeError, lambda: label.split)
    with pytest.raises(AttributeError) as excinfo:
        compress_string(label, "hash")
    assert str(excinfo.value) == message_of(AttributeError, lambda: label.encode)
    assert "compress_string" in names_in_traceback(excinfo)


def test_bytes_have_pieces_that_no_text_is_made_of():
    with pytest.raises(TypeError) as excinfo:
        compress_string(b"a b")
    assert str(excinfo.value) == message_of(TypeError, "".join, [b"a", b"b"])
    assert compress_string(b" ") == ""


def test_text_that_has_no_bytes():
    with pytest.raises(UnicodeEncodeError):
        compress_string("\ud800", "hash")


# --- compress_str_column: which columns, which array ------------------------------------------


@pytest.mark.parametrize("mode", ["string", "hash"])
@pytest.mark.parametrize(
    "column",
    [
        np.array([1.5, 2.5]),
        np.array([1, 2]),
        np.array([1, 2], dtype="u1"),
        np.array([True, False]),
        np.array([1j]),
        np.array(["2020-01-01"], dtype="M8[ns]"),
        np.array([5], dtype="m8[s]"),
        np.zeros((2, 2)),
        pd.Series([1.5, NAN]),
    ],
)
def test_columns_of_no_text_are_returned_themselves(column, mode):
    before = typed(column)
    # The markers are not searched.
    assert compress_str_column(column, None, mode) is column
    assert typed(column) == before


@pytest.mark.parametrize("kind", list("OSUV") + list("biufcmMT"))
def test_the_kind_of_the_dtype_decides(kind):
    class Column:
        dtype = SimpleNamespace(kind=kind)

        def __init__(self):
            self.asked = []

        def astype(self, dtype):
            self.asked.append(dtype)
            return np.array(["a b"])

        def __setitem__(self, row, label):
            self.asked.append((row, label))

    column = Column()
    assert compress_str_column(column, []) is column
    assert column.asked == ([str, (0, "ab")] if kind in "OSUV" else [])


@pytest.mark.parametrize("make", [list, type("Labels", (list,), {})])
@pytest.mark.parametrize(
    "labels, expected",
    [
        (["a b", "c"], np.array(["ab", "c"], dtype="U3")),
        (["a b", None], objects("ab", None)),
        ([1.5, 2.5], np.array([1.5, 2.5])),
        ([1, 2], np.array([1, 2])),
        ([], np.array([])),
    ],
)
def test_a_list_becomes_an_array_and_stays_as_it_is(make, labels, expected):
    given = make(labels)
    assert typed(compress_str_column(given, [])) == typed(expected)
    assert given == make(labels)


def test_np_asarray_converts_a_list(monkeypatch):
    array = np.array(["x y"])
    asarray = Recorder(lambda labels: array)
    replace_in(monkeypatch, "np", asarray=asarray)
    labels = ["a"]
    assert compress_str_column(labels, []) is array
    assert array.tolist() == ["xy"]
    ((seen,), kwargs) = asarray.only_call()
    assert seen is labels and kwargs == {}


@pytest.mark.parametrize("X", [("a b",), "a b", None, 5])
def test_anything_else_needs_a_dtype(X):
    with pytest.raises(AttributeError) as excinfo:
        compress_str_column(X, [])
    assert str(excinfo.value) == message_of(AttributeError, lambda: X.dtype)
    assert "compress_str_column" in names_in_traceback(excinfo)


# --- compress_str_column: the entries ---------------------------------------------------------


@pytest.mark.parametrize(
    "cells, markers, shortened, digests",
    [
        (
            ["new york", "plain", "?", "-"],
            ["?"],
            ["newyork", "plain", "?", "-"],
            ["new york", "plain", NAN, "-"],
        ),
        ([" ? ", "?"], ["?"], ["?", "?"], [" ? ", NAN]),
        ([" ? "], [" ? "], [" ? "], [NAN]),
        (["", "a b"], [], ["", "ab"], ["", "a b"]),
        # Every test receives the text of an entry, so "nan" is an ordinary word.
        ([None, NAN, "x y"], ["?"], [None, NAN, "xy"], ["None", "nan", "x y"]),
        ([None, NAN], ["None", "nan"], [None, NAN], [NAN, NAN]),
        ([None, NAN], [None, NAN], [None, NAN], ["None", "nan"]),
        ([5, 1.5, True, -1], [], [5, "1.5", True, "-1"], ["5", "1.5", "True", "-1"]),
        ([5], ["5"], [5], [NAN]),
        ([5], [5], [5], ["5"]),
        ([DATE], [], ["2020-01-0203:00:00"], ["2020-01-02 03:00:00"]),
        (["a b", "c"], "a bc", ["a b", "c"], [NAN, NAN]),
        (["a b"], {"a b"}, ["a b"], [NAN]),
        (["Zürich", "são paulo"], [], ["Zürich", "sãopaulo"], ["Zürich", "são paulo"]),
        ([], [], [], []),
    ],
)
def test_an_object_column_is_changed_in_place(cells, markers, shortened, digests, capsys):
    X = objects(*cells)
    assert compress_str_column(X, markers) is X
    assert typed(X) == typed(objects(*shortened))
    X = objects(*cells)
    hashed = objects(*[digest(text) if isinstance(text, str) else NAN for text in digests])
    assert compress_str_column(X, markers, "hash") is X
    assert typed(X) == typed(hashed)
    assert capsys.readouterr().out == ""


def test_what_is_stored_for_a_marker_is_the_nan_of_numpy():
    X = objects("?")
    compress_str_column(X, ["?"], "hash")
    assert X[0] is np.nan


def test_an_entry_that_keeps_its_value_is_not_touched():
    class Word(str):
        pass

    word = Word("word")
    X = objects(word, "a b")
    compress_str_column(X, [])
    assert X[0] is word


@pytest.mark.parametrize("mode", ["Hash", "md5", "", None])
def test_in_an_unknown_mode_words_and_markers_stay(mode):
    X = objects("a b", "word", "?")
    compress_str_column(X, ["?"], mode)
    assert X.tolist() == [digest("a b"), "word", "?"]


@pytest.mark.parametrize(
    "dtype, width, cells",
    [
        ("U3", 3, ["a b", "c", "?"]),
        ("U5", 5, ["a b", "c", "?"]),
        ("U60", 60, ["a b", "c", "?"]),
        ("U2", 2, ["a,", "c", "?"]),
        ("S3", 3, ["a b", "c", "?"]),
        ("S60", 60, ["a b", "c", "?"]),
    ],
)
def test_fixed_width_columns_hold_the_text_cut_to_the_width(dtype, width, cells):
    X = np.array(cells, dtype=dtype)
    assert compress_str_column(X, ["?"]) is X
    assert typed(X) == typed(np.array(["".join(cell.split()) for cell in cells], dtype=dtype))
    X = np.array(cells, dtype=dtype)
    assert compress_str_column(X, ["?"], "hash") is X
    texts = [str(digest(cells[0])), str(digest(cells[1])), "nan"]
    assert typed(X) == typed(np.array([text[:width] for text in texts], dtype=dtype))


def test_equal_labels_are_compressed_alike_whatever_was_written_before():
    X = np.array(["a b"] * 3)
    compress_str_column(X, [], "hash")
    assert X.tolist() == [str(digest("a b"))[:3]] * 3


def test_a_view_writes_into_the_whole():
    whole = np.array([["a b", "c d"], ["e f", "g h"]])
    view = whole[:, 1]
    assert compress_str_column(view, []) is view
    assert whole.tolist() == [["a b", "cd"], ["e f", "gh"]]


@pytest.mark.parametrize("dtype", [object, "U5", "S5"])
def test_an_empty_column_is_returned_itself(dtype):
    X = np.array([], dtype=dtype)
    assert compress_str_column(X, None, "hash") is X
    assert X.shape == (0,)


def test_a_series_is_changed_in_place():
    for mode, expected in ("string", ["ab", "c", "?"]), ("hash", [digest("a b"), digest("c"), NAN]):
        X = pd.Series(["a b", "c", "?"], dtype=object)
        assert compress_str_column(X, ["?"], mode) is X
        assert typed(X.tolist()) == typed(expected)
        assert X.dtype == object


def test_compress_str_column_takes_keywords():
    X = objects("a b", "c")
    assert compress_str_column(compress_type="hash", misslist=["c"], X=X) is X
    assert typed(X) == typed(objects(digest("a b"), NAN))


# --- compress_str_column: order and form of the calls -----------------------------------------


class Word:
    """The text of an entry; records in a log which tests are made."""

    def __init__(self, log, name, null, marker, alnum):
        self.log, self.name, self.null, self.marker = log, name, null, marker
        self.alnum = alnum

    def isalnum(self):
        self.log.append("isalnum")
        return self.alnum


class Column:
    dtype = SimpleNamespace(kind="O")

    def __init__(self, log, word):
        self.log, self.word = log, word

    def astype(self, dtype):
        return objects(self.word)

    def __setitem__(self, row, value):
        self.log.append(("store", row, value))


class Markers:
    def __contains__(self, word):
        word.log.append("in")
        return word.marker


TESTS = ["isnull", "in", "isalnum"]
STORE = [("store", 0, "short")]
STORE_NAN = [("store", 0, NAN)]


@pytest.mark.parametrize(
    "null, marker, alnum, mode, log",
    [
        (False, False, False, "string", [*TESTS, "string", *STORE]),
        (False, False, True, "string", TESTS),
        (False, True, False, "string", TESTS[:2]),
        (True, False, False, "string", TESTS[:1]),
        (False, False, False, "hash", [*TESTS, "hash", *STORE]),
        (False, False, True, "hash", [*TESTS, *TESTS[:2], "hash", *STORE]),
        (False, True, False, "hash", [*TESTS[:2], *TESTS[:2], *STORE_NAN]),
        (True, False, False, "hash", [*TESTS[:1], *TESTS[:1], *STORE_NAN]),
        (False, False, False, "odd", [*TESTS, "odd", *STORE]),
        (False, False, True, "odd", TESTS),
    ],
)
def test_the_tests_stop_at_the_first_that_decides(monkeypatch, null, marker, alnum, mode, log):
    seen = []
    word = Word(seen, "w", null, marker, alnum)

    def isnull(given):
        assert given is word
        seen.append("isnull")
        return given.null

    def compress(given, **kwargs):
        assert given is word
        assert list(kwargs) == ["compress_type"]
        seen.append(kwargs["compress_type"])
        return "short"

    replace_in(monkeypatch, "pd", isnull=isnull)
    record(monkeypatch, "compress_string", compress)
    compress_str_column(Column(seen, word), Markers(), mode)
    assert typed(seen) == typed(log)


# --- failures ---------------------------------------------------------------------------------


def test_markers_that_cannot_be_searched():
    with pytest.raises(TypeError) as excinfo:
        compress_str_column(objects("a"), None)
    assert str(excinfo.value) == message_of(TypeError, lambda: "a" in None)
    assert "compress_str_column" in names_in_traceback(excinfo)


@pytest.mark.parametrize("X", [objects("a b", "c").reshape(2, 1), np.array([["a b"]])])
def test_a_row_is_no_text(X):
    with pytest.raises(AttributeError) as excinfo:
        compress_str_column(X, [])
    assert str(excinfo.value) == "'numpy.ndarray' object has no attribute 'isalnum'"


def test_a_read_only_column_cannot_be_written():
    X = objects("word", "a b")
    X.setflags(write=False)
    with pytest.raises(ValueError) as excinfo:
        compress_str_column(X, [])
    assert str(excinfo.value) == message_of(ValueError, X.__setitem__, 1, "ab")
    assert X.tolist() == ["word", "a b"]


def test_entries_before_a_failure_stay_written(monkeypatch):
    failure = RuntimeError("second")

    def compress(label, compress_type):
        if label == "c d":
            raise failure
        return label.upper()

    record(monkeypatch, "compress_string", compress)
    X = objects("a b", "c d", "e f")
    with pytest.raises(RuntimeError) as excinfo:
        compress_str_column(X, [])
    assert excinfo.value is failure
    assert X.tolist() == ["A B", "c d", "e f"]


# --- documentation ----------------------------------------------------------------------------


@pytest.mark.parametrize(
    "routine, text",
    [
        (compress_string, "Compresses a string to either a string without spaces or a int hash"),
        (compress_string, ":param s: input string"),
        (compress_string, ":param compress_type: 'string' or 'hash'"),
        (compress_string, ":return: compressed string or int hash"),
        (
            compress_str_column,
            "Compresses a column of strings to a column of strings without whitespaces"
            " or a column of int hashes",
        ),
        (compress_str_column, ":param Xcol:"),
        (compress_str_column, ":param compress_type: 'string' or 'hash'"),
        (compress_str_column, ":return: Compressed column"),
    ],
)
def test_the_documentation(routine, text):
    assert text in " ".join(routine.__doc__.split())
