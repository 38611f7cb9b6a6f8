"""Tests for columns of moments counted from the start of 1970."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from quorin_libs.utils._column_cells import is_whole, name_words, numbers_of

if TYPE_CHECKING:
    Array = np.ndarray[Any, np.dtype[Any]]

# Ticks a second: seconds, milliseconds, microseconds, nanoseconds.
TICKS = (1, 10**3, 10**6, 10**9)

# 2002-01-01 to 2033-05-18T03:33:20, both UTC: counts of exactly 10 (13, 16, 19) digits. Social
# security numbers and product codes (12-digit UPC) have one digit less; hand-made numbers start at
# 1000000000 or 2000000000.
PLAIN_WINDOW = (1009843200, 2000000000)

# 1980-01-01 to 2100-01-01, for columns with a word for moments in their name.
NAMED_WINDOW = (315532800, 4102444800)

# Arbitrary ten-digit numbers that start with 1 (US provider numbers) span 30 years and more;
# records of events seldom span 20.
LONGEST_SPAN = 20 * 365 * 86400

MOMENT_WORDS = frozenset(
    "timestamp timestamps ts epoch unix unixtime datetime date utc created updated modified".split()
)
OTHER_WORDS = frozenset(
    "id ids key code codes phone tel telephone mobile fax number num no nr serial account acct "
    "card isbn ean upc gtin sku npi zip hash count cnt total sum amount price cost revenue sales "
    "population bytes size elapsed duration".split()
)


def is_epoch_column(column: Any) -> bool:
    """Return whether a column counts seconds or fractions of them since 1970."""
    words = name_words(column)
    if words & OTHER_WORDS:
        return False
    numbers = numbers_of(column)
    if numbers is None or not numbers.size or not is_whole(numbers):
        return False
    named = bool(words & MOMENT_WORDS)
    low, high = int(numbers.min()), int(numbers.max())
    first, last = NAMED_WINDOW if named else PLAIN_WINDOW
    for ticks in TICKS:
        if first * ticks <= low and high < last * ticks:
            return named or _looks_like_moments(numbers, ticks)
    return False


def _looks_like_moments(numbers: Array, ticks: int) -> bool:
    moments = np.unique(numbers.astype(np.int64))
    # Amounts and made-up numbers end in zeros; of midnights one in 25 ends in four zeros.
    if not (moments % (10000 * ticks)).any():
        return False
    whole_minutes = not (moments % (60 * ticks)).any()
    if moments.size == 1:
        return whole_minutes
    span = int(moments[-1]) - int(moments[0])
    # Serial numbers are dense: less than two ticks apart on average.
    if span < 2 * (moments.size - 1):
        return False
    # 19-digit identifiers of social networks use every digit; clocks have steps of 100 ns or more.
    if ticks == TICKS[-1] and (moments % 100).any():
        return False
    return whole_minutes or span <= LONGEST_SPAN * ticks
