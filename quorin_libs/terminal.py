"""Text on a terminal: escapes, widths, shortening."""

from __future__ import annotations

import unicodedata
from typing import Sequence

__all__ = ["count", "display_width", "printable", "shortened"]


def printable(text: str, encoding: str = "utf-8") -> str:
    """Return the text with characters escaped that are unprintable or not in ``encoding``.

    Examples
    --------
    >>> printable("a\\tb"), printable("\\u00e9", "ascii")
    ('a\\\\tb', '\\\\xe9')
    """
    shown = "".join(
        character if character.isprintable() else _escape(character) for character in text
    )
    return shown.encode(encoding, "backslashreplace").decode(encoding)


def display_width(text: str) -> int:
    """Return the number of terminal cells of printable text.

    Wide and full-width characters (Unicode Standard Annex 11) take two, combining marks none.

    Examples
    --------
    >>> display_width("cafe"), display_width("\\u5143\\u7d20")
    (4, 4)
    """
    return sum(_character_width(character) for character in text)


def shortened(pieces: Sequence[str], width: int, gap: str = "...") -> str:
    """Return the pieces side by side, in at most ``width`` terminal cells.

    If they take more, ``gap`` replaces those in the middle: names with the same start tend to
    differ at the end. A piece is a character as :func:`printable` returns it; none is cut.

    Examples
    --------
    >>> shortened("molybdenum", 10), shortened("molybdenum", 9)
    ('molybdenum', 'mol...num')
    """
    widths = [display_width(piece) for piece in pieces]
    if sum(widths) <= width:
        return "".join(pieces)
    room = width - len(gap)
    end = _how_many_fit(widths[::-1], room // 2)
    # A combining mark stays with its character.
    while end > 0 and widths[-end] == 0:
        end -= 1
    start = _how_many_fit(widths, room - sum(widths[len(widths) - end :]))
    return "".join(pieces[:start]) + gap + "".join(pieces[len(pieces) - end :])


def count(number: int, noun: str) -> str:
    """Return a number and a noun: ``1 row``, ``2 rows``."""
    return f"{number} {noun}" if number == 1 else f"{number} {noun}s"


def _how_many_fit(widths: Sequence[int], room: int) -> int:
    for number, width in enumerate(widths):
        room -= width
        if room < 0:
            return number
    return len(widths)


def _character_width(character: str) -> int:
    if unicodedata.category(character) in ("Mn", "Me"):
        return 0
    return 2 if unicodedata.east_asian_width(character) in "WF" else 1


def _escape(character: str) -> str:
    return character.encode("unicode_escape").decode("ascii")
