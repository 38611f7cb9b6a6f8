"""Tests for columns of degrees of latitude or longitude.

Numbers alone are not enough: scores, rates and returns have the same range and as many digits. The
name has to contain a word for the coordinate, and the numbers have to be in its range.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, FrozenSet

import numpy as np

from quorin_libs.utils._column_cells import name_words, numbers_of

if TYPE_CHECKING:
    Array = np.ndarray[Any, np.dtype[Any]]

# Beginnings shared by English, French, Spanish, Portuguese and Italian, and the German words.
LATITUDE_STEMS = ("latitud", "breitengrad")
LONGITUDE_STEMS = ("longitud", "längengrad", "laengengrad")

# These also mean latency, liquefied gas, a long position: the numbers have to look like degrees.
LATITUDE_WORDS = frozenset(("lat", "lats"))
LONGITUDE_WORDS = frozenset(("lon", "lons", "lng", "long"))

# Words of names that speak of a coordinate but hold another quantity.
OTHER_WORDS = frozenset(
    "error err std stdev sd var variance diff delta offset shift accuracy acc precision count "
    "rank rad radian radians index idx id code zone dist distance km miles price usd".split()
)

# Returns and scores of long positions stay below ten.
LONG_LEAST_REACH = 10.0

# Half of the values must have 0.001 degree (111 m) or finer: prices and latencies have two digits.
FINE_SHARE = 0.5


def is_latitude_column(column: Any, name: Any) -> bool:
    """Return whether a column is named as latitude and holds degrees from -90 to 90."""
    words = name_words(column, name)
    if not _says(words, LATITUDE_STEMS, LATITUDE_WORDS):
        return False
    if _says(words, LONGITUDE_STEMS, LONGITUDE_WORDS) or words & OTHER_WORDS:
        return False
    degrees = numbers_of(column)
    if degrees is None or not degrees.size or not _within(degrees, -90, 90):
        return False
    return not _rescaled(degrees) and (_has_stem(words, LATITUDE_STEMS) or _like_degrees(degrees))


def is_longitude_column(column: Any, name: Any) -> bool:
    """Return whether a column is named as longitude and holds degrees, -180 to 180 or 0 to 360."""
    words = name_words(column, name)
    if not _says(words, LONGITUDE_STEMS, LONGITUDE_WORDS):
        return False
    if _says(words, LATITUDE_STEMS, LATITUDE_WORDS) or words & OTHER_WORDS:
        return False
    degrees = numbers_of(column)
    if degrees is None or not degrees.size:
        return False
    if not _within(degrees, -180, 180) and not _within(degrees, 0, 360):
        return False
    if _rescaled(degrees):
        return False
    if _has_stem(words, LONGITUDE_STEMS):
        return True
    if "long" in words and float(np.abs(degrees).max()) < LONG_LEAST_REACH:
        return False
    return _like_degrees(degrees)


def is_fine(numbers: Array, step: float) -> Array:
    """Mark the numbers that are not multiples of ``1 / step``, up to rounding of their type."""
    if numbers.dtype.kind != "f":
        return np.zeros(numbers.shape, dtype=bool)
    rounding = 4 * float(np.finfo(numbers.dtype).eps)
    scaled = numbers.astype(np.float64) * step
    fine: Array = np.abs(scaled - np.rint(scaled)) > rounding * np.abs(scaled)
    return fine


def _says(words: FrozenSet[str], stems: Any, short_words: FrozenSet[str]) -> bool:
    if _has_stem(words, stems):
        return True
    return any(word.rstrip("0123456789") in short_words for word in words)


def _has_stem(words: FrozenSet[str], stems: Any) -> bool:
    return any(stem in word for word in words for stem in stems)


def _within(degrees: Array, low: int, high: int) -> bool:
    return bool(degrees.min() >= low and degrees.max() <= high)


def _rescaled(degrees: Array) -> bool:
    """Return whether the column was scaled to mean 0 and deviation 1, or to the range 0 to 1."""
    if degrees.size < 3:
        return False
    values = degrees.astype(np.float64)
    if values.min() == 0.0 and values.max() == 1.0:
        return True
    return bool(abs(values.mean()) < 0.1 and abs(values.std() - 1.0) < 0.1)


def _like_degrees(degrees: Array) -> bool:
    if float(np.mean(is_fine(degrees, 100.0))) >= FINE_SHARE:
        return True
    return bool((degrees < 0).any() and is_fine(degrees, 1.0).any())
