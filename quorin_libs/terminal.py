"""Texts as a terminal shows them: escapes, widths, shortening."""

from __future__ import annotations

import unicodedata
from typing import Sequence

__all__ = ["count", "display_width", "printable", "shortened"]


def printable(text: str, encoding: str = "utf-8") -> str:
    """Return the text with every character escaped that has no shape or no code in ``encoding``.

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
    """Return the number of terminal cells that printable text takes.

    Wide and full-width characters (Unicode Standard Annex 11) take two, combining marks none.

    Examples
    --------
    >>> display_width("cafe"), display_width("\\u5143\\u7d20")
    (4, 4)
    """
    return sum(_character_width(character) for character in text)


def shortened(pieces: Sequence[str], width: int, gap: str = "...") -> str:
    """Return the pieces side by side, in at most ``width`` terminal cells.

    Where they take more, those in the middle are left out, which ``gap`` shows: names that are
    alike at their start tend to differ at their end. A piece is a character as :func:`printable`
    gives it; none is cut.

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
    """Return a number with its noun, as in ``1 row`` and ``2 rows``."""
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
