"""Texts as a terminal shows them."""

from __future__ import annotations

import doctest

import pytest

from quorin_libs import terminal
from quorin_libs.terminal import count, display_width, printable, shortened


@pytest.mark.parametrize(
    "text, width",
    [("", 0), ("abc", 3), ("元素", 4), ("ａ", 2), ("e\u0301", 1), ("a元e\u0301", 4), ("ｱ", 1)],
)
def test_display_width(text, width):
    assert display_width(text) == width


@pytest.mark.parametrize(
    "text, width, shown",
    [
        ("abcdef", 6, "abcdef"),
        ("abcdefg", 6, "ab...g"),
        ("abcdefgh", 7, "ab...gh"),
        ("元元元", 6, "元元元"),
        ("元元元", 5, "元..."),
        ("元元元元", 7, "元...元"),
        ("e\u0301" * 4, 4, "e\u0301" * 4),
        ("e\u0301" * 5, 4, "e\u0301..."),
        ("e\u0301" * 9, 5, "e\u0301...e\u0301"),
    ],
)
def test_shortened(text, width, shown):
    assert shortened(text, width) == shown
    assert display_width(shortened(text, width)) <= width


def test_no_piece_is_cut():
    assert shortened(["\\t"] * 4, 8) == "\\t" * 4
    assert shortened(["\\t"] * 4, 7, gap="~") == "\\t\\t~\\t"
    assert shortened(["\\t"] * 4, 5) == "\\t..."


@pytest.mark.parametrize(
    "text, shown",
    [
        ("a b", "a b"),
        ("a\tb\r\n", "a\\tb\\r\\n"),
        ("\x1b[31m", "\\x1b[31m"),
        ("\ud800", "\\ud800"),
        ("\u200b\u00a0\u202e", "\\u200b\\xa0\\u202e"),
        ("é元", "é元"),
    ],
)
def test_printable(text, shown):
    assert printable(text) == shown
    assert printable(text).isprintable()


def test_printable_in_a_narrow_encoding():
    assert printable("é元", "latin-1") == "é\\u5143"


def test_count():
    assert [count(number, "row") for number in (0, 1, 2)] == ["0 rows", "1 row", "2 rows"]


def test_examples_in_the_documentation():
    result = doctest.testmod(terminal)
    assert result.attempted > 0
    assert result.failed == 0
