"""Tests for texts that are dates or times, and for columns of them.

Each form of date has a reader: a function that takes a stripped text and returns the ways it can
be read, as bits, or 0. A column qualifies if one bit is common to all its texts, so that the order
of day, month and year is the same throughout, and if one text has the bit PROOF. Versions, scores
and the like share some forms with dates; of such a form only texts that they cannot produce have
PROOF.
"""

from __future__ import annotations

import re
from typing import Any, Callable, List, Tuple

import numpy as np

from quorin_libs.utils._column_cells import cells_of, is_missing

Reader = Callable[[str], int]

YEAR_FIRST = 1
DAY_FIRST = 2
MONTH_FIRST = 4
MONTH_OF_YEAR = 8
WEEK_OF_YEAR = 16
TIME_OF_DAY = 32
PROOF = 64
ALL_WAYS = 63

# From 12:30 to dates as JavaScript prints them, with the name of the zone (about 70).
SHORTEST_TEXT, LONGEST_TEXT = 5, 80

# Of more cells only the distinct ones are read; for fewer a set costs more than it saves.
SAMPLE_SIZE = 64

# Values of the digits of a day or month, with and without a leading zero.
_NUMBERS = {form.format(n): n for form in ("{}", "{:02}") for n in range(1, 32)}

# Parts of the patterns below, by their names in angle brackets.
_PARTS = {
    # The whole centuries between the start of the Gregorian calendar (1582) and the end of 64-bit
    # nanoseconds (2262), and the two years that databases write for "always" and "never".
    "year": r"((?:1[6-9]|2[01])[0-9]{2}|0001|9999)",
    "month": r"(0?[1-9]|1[0-2])",
    "day": r"(0?[1-9]|[12][0-9]|3[01])",
    "month2": r"(0[1-9]|1[0-2])",
    "day2": r"(0[1-9]|[12][0-9]|3[01])",
    "hour2": r"(?:[01][0-9]|2[0-3])",
    "sixty": r"[0-5][0-9]",
    "fraction": r"[0-9]{1,12}",
    # 23:59:60 is a leap second in ISO 8601.
    "clock24": r"(?:[01]?[0-9]|2[0-3]):(?:<sixty>(?::<sixty>(?:[.,]<fraction>)?)?|59:60)",
    # Newer browsers write a narrow no-break space before AM; Oracle writes 12.30.00.
    "clock12": (
        r"(?:0?[1-9]|1[0-2])[:.]<sixty>(?:[:.]<sixty>(?:[.,]<fraction>)?)?"
        "[ \u00a0\u202f]?"
        r"[ap]\.?m\.?"
    ),
    "offset": r"[+-](?:0[0-9]|1[0-4])(?::?<sixty>)?",
    "zonename": r"(?:UTC|GMT|[ECMP][SD]T|(?:W|C|E)ES?T|CET|WET|EET|BST|IST|JST|MSK)",
    "zone": (
        r"(?: ?(?:Z|<offset>|<zonename>(?:<offset>)?))?"
        r"(?: ?\([a-z ]+\)|\[[a-z_/+-]+\])?"
    ),
    "clock": r"(?:<clock24>|<clock12>)<zone>",
    "monthname": (
        r"(jan(?:uary)?|feb(?:ruary)?|mar(?:ch)?|apr(?:il)?|may|june?|july?|aug(?:ust)?"
        r"|sep(?:t(?:ember)?)?|oct(?:ober)?|nov(?:ember)?|dec(?:ember)?)\.?"
    ),
    "weekday": (
        r"(?:mon(?:day)?|tue(?:s(?:day)?)?|wed(?:nesday)?|thu(?:r(?:s(?:day)?)?)?|fri(?:day)?"
        r"|sat(?:urday)?|sun(?:day)?)\.?,? +"
    ),
}


def _compiled(pattern: str) -> Callable[[str], Any]:
    while "<" in pattern:
        for word, part in _PARTS.items():
            pattern = pattern.replace("<" + word + ">", part)
    return re.compile(pattern, re.ASCII | re.IGNORECASE).fullmatch


# 2026-01-31, 2026/1/31 12:00, 2026-01-31T12:00:00.5+01:00, 2026-01-31Z, 2026-01-31-12.00.00 (DB2)
_match_year_first = _compiled(
    r"<year>([-/.])<month>\2(?:(29|3[01])|0?[1-9]|[12][0-9])"
    r"(?:(?:[T ]|, ?)<clock>|Z|<offset>|-<hour2>\.<sixty>\.<sixty>(?:\.<fraction>)?)?"
)
# 31.01.2026, 1/31/26 3:45 PM; the place of the day is decided later.
_match_year_last = _compiled(
    r"([0-9]{1,2})([-/.])([0-9]{1,2})\2(?:([0-9]{2})|<year>)((?:T|, ?| )<clock>)?"
)
# 20260131T1200, 20260131T120000Z, 20260131 120000, 20260131-12:00:00 (FIX), 20260131Z
_match_compact = _compiled(
    r"<year><month2><day2>(?:T<hour2><sixty>(?:<sixty>(?:[.,]<fraction>)?)?<zone>"
    r"| <hour2><sixty><sixty>|[T -]<clock24><zone>|Z)"
)
_match_year_month = _compiled(r"<year>-<month2>")
_match_week = _compiled(r"<year>-W(?:0[1-9]|[1-4][0-9]|5[0-3])(?:-[1-7])?")
_match_clock = _compiled(r"(?:(<clock24>)|<clock12>)<zone>")
# 31-Jan-2026, 31 January, 2026, Sat, 31 Jan 2026 12:00:00 +0000 (mail), 31/Jan/2026:12:00:00 +0000
# (web servers), 31JAN2026:12:00:00 (SAS), 31-JAN-26 12.00.00.000000000 PM (Oracle)
_match_day_month_name = _compiled(
    r"(?:<weekday>)?<day>(?:(?:st|nd|rd|th)?(?: of)?([-/ ])<monthname>(?:\2|, ?)"
    r"(?:([0-9]{2})|<year>)|<monthname><year>)(?:(?:[T :]|, ?| at )<clock>)?"
)
# January 31, 2026, Jan-31-2026, Sat Jan 31 2026 12:00:00 GMT+0100 (JavaScript)
_match_month_name_day = _compiled(
    r"(?:<weekday>)?<monthname>(?:[-/]| {1,2})<day>(?:st|nd|rd|th)?(?:[-/]|,? |,)<year>"
    r"(?:(?:[T ]|, ?| at )<clock>)?"
)
# Sat Jan 31 12:00:00 2026, Sat Jan 31 12:00:00 UTC 2026
_match_ctime = _compiled(r"<weekday><monthname> +<day> <clock24>(?: <zonename>)? <year>")
# 2026-Jan-31, 2026 Jan
_match_year_month_name = _compiled(r"<year>([-/ ])<monthname>(?:\2<day>(?:[T ]<clock>)?)?")
# January 2026, Jan-26
_match_month_name_year = _compiled(r"<monthname>(?:(?:,? |[-/])<year>|-[0-9]{2})")

_MONTHS = {
    name: number
    for number, name in enumerate(
        ("jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"), 1
    )
}
_FIRST_LETTERS = frozenset(_MONTHS) | frozenset("mon tue wed thu fri sat sun".split())


def is_date_text_column(column: Any) -> bool:
    """Return whether all cells but nulls are date or time texts with one order of their parts."""
    # Called for every classified column: quick for arrays of numbers.
    if type(column) is np.ndarray and column.ndim == 1:
        cells = column
    else:
        converted = cells_of(column)
        if converted is None:
            return False
        cells = converted
    if cells.dtype.kind not in "OUT" or not cells.shape[0]:
        return False
    # Quick for most columns: sorted texts end with words such as "unknown".
    if not _may_be_date(cells[0]) or not _may_be_date(cells[-1]):
        return False
    values = cells.tolist()
    if len(values) > SAMPLE_SIZE:
        try:
            values = list(set(values))
        except Exception:  # a cell that cannot be hashed is not a str
            return False
    return _all_dates(values)


def _may_be_date(cell: Any) -> bool:
    if not isinstance(cell, str):
        return is_missing(cell)
    text = cell.strip()
    if not SHORTEST_TEXT <= len(text) <= LONGEST_TEXT:
        return False
    if text[0] in "0123456789":
        return not text.isdigit()
    return text[:3].lower() in _FIRST_LETTERS


def _all_dates(cells: List[Any]) -> bool:
    ways = ALL_WAYS
    proof = 0
    reader: Reader = _read_year_first
    for cell in cells:
        if not isinstance(cell, str):
            if is_missing(cell):
                continue
            return False
        text = cell.strip()
        found = reader(text)
        if not found:
            # Most columns have one form: the next text is read in it first.
            found, reader = _read(cell, text)
        ways &= found
        if not ways:
            return False
        proof |= found
    return bool(proof & PROOF)


def _read(cell: str, text: str) -> Tuple[int, Reader]:
    if _may_be_date(cell):
        for reader in _DIGIT_READERS if text[0] in "0123456789" else _LETTER_READERS:
            found = reader(text)
            if found:
                return found, reader
    return 0, _read_year_first


def _read_year_first(text: str) -> int:
    match = _match_year_first(text)
    if match is None:
        return 0
    # The commonest form: only days that some months lack need the calendar.
    day = match.group(4)
    if day is not None and not _has_day(match.group(1), _NUMBERS[match.group(3)], _NUMBERS[day]):
        return 0
    return YEAR_FIRST | PROOF


def _read_year_last(text: str) -> int:
    match = _match_year_last(text)
    if match is None:
        return 0
    first, separator, second, short_year, year, clock = match.groups()
    proof = PROOF
    month_may_lead = True
    if short_year and separator != "/":
        # With points and a year of two digits the day comes first.
        month_may_lead = separator == "-"
        if clock is None:
            # Versions, sort codes and shelf marks have this form. Versions have no leading zeros
            # (semver.org, rule 2); shelf marks begin with 01-01-01.
            if len(first) != 2 or len(second) != 2 or text in ("01-01-01", "01.01.01"):
                return 0
            if "0" not in (first[0], second[0], short_year[0]):
                proof = 0
    number, other = _NUMBERS.get(first, 99), _NUMBERS.get(second, 99)
    year = year or short_year
    ways = 0
    if other <= 12 and (number <= 28 or (number <= 31 and _has_day(year, other, number))):
        ways = DAY_FIRST
    month_may_lead = month_may_lead and number <= 12
    if month_may_lead and (other <= 28 or (other <= 31 and _has_day(year, number, other))):
        ways |= MONTH_FIRST
    return ways | proof if ways else 0


def _read_compact(text: str) -> int:
    match = _match_compact(text)
    if match is None:
        return 0
    year, month, day = match.groups()
    return YEAR_FIRST | PROOF if _has_day(year, _NUMBERS[month], _NUMBERS[day]) else 0


def _read_year_month(text: str) -> int:
    match = _match_year_month(text)
    if match is None:
        return 0
    # 2010-11 is also the season 2010 to 2011.
    season = int(match.group(2)) == (int(match.group(1)) + 1) % 100
    return MONTH_OF_YEAR if season else MONTH_OF_YEAR | PROOF


def _read_week(text: str) -> int:
    return WEEK_OF_YEAR | PROOF if _match_week(text) else 0


def _read_clock(text: str) -> int:
    match = _match_clock(text)
    if match is None:
        return 0
    clock = match.group(1)
    if clock is None or len(clock) < len(text) or clock.count(":") == 2:
        return TIME_OF_DAY | PROOF
    # Scores and ratios have this form too, but not as 08:30 or 12:05.
    if len(clock) != 5:
        return 0
    return TIME_OF_DAY | (PROOF if "0" in (clock[0], clock[3]) else 0)


def _read_day_month_name(text: str) -> int:
    match = _match_day_month_name(text)
    if match is None:
        return 0
    day, _, month, short_year, year, joined_month, joined_year = match.groups()
    return _named(DAY_FIRST, short_year or year or joined_year, month or joined_month, day)


def _read_month_name_day(text: str) -> int:
    match = _match_month_name_day(text) or _match_ctime(text)
    if match is None:
        return 0
    month, day, year = match.groups()
    return _named(MONTH_FIRST, year, month, day)


def _read_year_month_name(text: str) -> int:
    match = _match_year_month_name(text)
    if match is None:
        return 0
    year, _, month, day = match.groups()
    return _named(YEAR_FIRST, year, month, day) if day else MONTH_OF_YEAR | PROOF


def _read_month_name_year(text: str) -> int:
    return MONTH_OF_YEAR | PROOF if _match_month_name_year(text) else 0


def _named(way: int, year: str, month: str, day: str) -> int:
    return way | PROOF if _has_day(year, _MONTHS[month[:3].lower()], _NUMBERS[day]) else 0


def _has_day(year: str, month: int, day: int) -> bool:
    """Return whether a month from 1 to 12 has a day from 1 to 31."""
    if day <= 28:
        return True
    if month != 2:
        return day <= 30 or month in (1, 3, 5, 7, 8, 10, 12)
    if day > 29:
        return False
    # Two digits are a year of this century; among those of the last only 1900 differs.
    number = int(year)
    return number % 4 == 0 and (number % 100 != 0 or number % 400 == 0)


_DIGIT_READERS: Tuple[Reader, ...] = (
    _read_year_first,
    _read_year_last,
    _read_clock,
    _read_day_month_name,
    _read_compact,
    _read_year_month,
    _read_year_month_name,
    _read_week,
)
_LETTER_READERS: Tuple[Reader, ...] = (
    _read_month_name_day,
    _read_month_name_year,
    _read_day_month_name,
)
