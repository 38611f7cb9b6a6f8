"""Tests for columns of distances: by the unit in the texts, or by name and numbers."""

from __future__ import annotations

import re
from typing import Any

import numpy as np

from quorin_libs.utils._column_cells import name_words, numbers_of, present_cells

DISTANCE_WORDS = frozenset(
    "distance distances mileage odometer km kms kilometer kilometers kilometre kilometres "
    "mile miles".split()
)

# Also short for district and distribution, which have whole numbers.
SHORT_WORDS = frozenset(("dist",))

# Rates, prices, ranks and labels named after a distance are not distances.
OTHER_WORDS = frozenset(
    "per hour hr h mph kmh kph speed rate price cost fare fee paid points count cnt n id code "
    "no rank category type class unit units band bucket group flag sq square squared liter "
    "litre gallon error err std ratio zscore".split()
)

# Millimetres, centimetres and inches are sizes; "m" also stands for minutes and millions.
_DISTANCE_TEXT = re.compile(
    r"[0-9]+(?:[.,][0-9]+)*[ \u00a0]?"
    r"(?:km|kms|kilomet(?:er|re)s?|met(?:er|re)s?|mi|miles?|nmi|ft|feet|foot|yds?|yards?)\.?",
    re.ASCII | re.IGNORECASE,
)


def is_distance_column(column: Any) -> bool:
    """Return whether a column holds distances."""
    words = name_words(column)
    if words & OTHER_WORDS:
        return False
    numbers = numbers_of(column)
    if numbers is None:
        return _are_distance_texts(column)
    if not numbers.size or not words & (DISTANCE_WORDS | SHORT_WORDS):
        return False
    if not np.isfinite(numbers).all() or numbers.min() < 0 or numbers.max() == 0:
        return False
    different = np.unique(numbers)
    if different[0] == 0 and different[-1] == 1 and different.size == 2:
        return False
    return bool(words & DISTANCE_WORDS) or bool((numbers != np.floor(numbers)).any())


def _are_distance_texts(column: Any) -> bool:
    cells = present_cells(column)
    if cells is None or not cells.size or cells.dtype.kind not in "OU":
        return False
    for cell in cells.tolist():
        if not isinstance(cell, str) or _DISTANCE_TEXT.fullmatch(cell.strip()) is None:
            return False
    return True
