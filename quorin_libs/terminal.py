"""Texts as a terminal shows them: escapes, widths, shortening."""

from __future__ import annotations

import unicodedata

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


def shortened(text: str, width: int) -> str:
    """Return printable text cut to at most ``width`` terminal cells, a cut shown by three dots.

    Examples
    --------
    >>> shortened("molybdenum", 10), shortened("molybdenum", 8)
    ('molybdenum', 'molyb...')
    """
    if display_width(text) <= width:
        return text
    kept, used = "", 0
    for character in text:
        used += _character_width(character)
        if used > width - 3:
            break
        kept += character
    return kept + "..."


def count(number: int, noun: str) -> str:
    """Return a number with its noun, as in ``1 row`` and ``2 rows``."""
    return f"{number} {noun}" if number == 1 else f"{number} {noun}s"


def _character_width(character: str) -> int:
    if unicodedata.category(character) in ("Mn", "Me"):
        return 0
    return 2 if unicodedata.east_asian_width(character) in "WF" else 1


def _escape(character: str) -> str:
    return character.encode("unicode_escape").decode("ascii")
