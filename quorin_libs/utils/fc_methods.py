"""Column tests: class `FC`."""

from __future__ import annotations

import builtins
import warnings
from typing import Any, ClassVar, FrozenSet

import numpy as np
import pandas as pd

from quorin_libs.utils._column_cells import (
    count_different,
    is_whole,
    numbers_of,
    present_cells,
)
from quorin_libs.utils._coordinates import is_latitude_column, is_longitude_column
from quorin_libs.utils._date_text import is_date_text_column
from quorin_libs.utils._distance import is_distance_column
from quorin_libs.utils._epoch import is_epoch_column

__all__ = ["FC", "Verdict"]

# The bounds by which `FCplus.is_num_column_categorical` calls an integer column categorical.
CATEGORIES_BELOW = 100
CATEGORY_SHARE_BELOW = 0.1
FEW_CATEGORIES_BELOW = 5
FEW_ROWS_BELOW = 30

# With more distinct values than this share of the cells, integers identify rows.
UNIQUE_SHARE_BELOW = 0.8


class Verdict(pd.Series):  # type: ignore[misc]  # pandas ships no types
    """A one-element boolean Series with the method `bool()`, which pandas 3 removed.

    Examples
    --------
    >>> from quorin_libs.utils.fc_methods import FC
    >>> verdict = FC.is_positive([1, 2, 3])
    >>> len(verdict), verdict.bool()
    (1, True)
    """

    @property
    def _constructor(self) -> Any:
        return Verdict

    def bool(self) -> builtins.bool:
        """Return the only element as a bool.

        Raises
        ------
        ValueError
            If the number of elements is not 1.
        """
        if len(self) != 1:
            raise ValueError("bool() needs exactly one element, got {}".format(len(self)))
        return builtins.bool(self.to_numpy()[0])

    def __bool__(self) -> builtins.bool:
        return self.bool()


class FC:
    """Tests of one column.

    A column is a Series, a one-column DataFrame, an array of shape (n,) or (n, 1), a list or a
    tuple. Nulls (None, NaN, NaT, NA) are ignored. Unless stated otherwise, a test of a column of
    nulls, or of anything that is not one column, is False. No test raises or warns because of the
    cells of a column, and none changes it.

    Numbers are Python and numpy integers and floats, `Decimal` and `Fraction`. Truth values,
    complex numbers and number texts are not numbers.

    The semantic tests (dates, moments, coordinates, distances) are strict: converting a column that
    was taken for a date by mistake destroys it, while one that was missed is left unchanged.
    """

    # Tests without side effects: a caller that ignores the result may skip the call.
    side_effect_free: ClassVar[FrozenSet[str]] = frozenset({"is_string_in_datetime_format"})

    @staticmethod
    def is_positive(column: Any) -> Verdict:
        """Return whether all numbers are above zero.

        Returns
        -------
        Verdict
            One element: True if the column holds only numbers, at least one, and each is greater
            than 0. Infinity is.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_positive([0.5, None, 3]).bool()
        True
        >>> FC.is_positive([0, 1]).bool()
        False
        """
        numbers = numbers_of(column)
        return Verdict([numbers is not None and numbers.size > 0 and bool((numbers > 0).all())])

    @staticmethod
    def is_non_negative(column: Any) -> Verdict:
        """Return whether no number is below zero.

        Returns
        -------
        Verdict
            One element: True if the column holds only numbers, at least one, and each is 0 (or
            -0.0) or greater.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_non_negative([0, 1]).bool()
        True
        """
        numbers = numbers_of(column)
        return Verdict([numbers is not None and numbers.size > 0 and bool((numbers >= 0).all())])

    @staticmethod
    def is_not_all_non_negative(column: Any) -> bool:
        """Return whether a column of numbers holds one below zero.

        Not the opposite of `is_non_negative`: both are False for an empty column and for one that
        holds anything but numbers.

        Returns
        -------
        bool

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_not_all_non_negative([3, -1]), FC.is_not_all_non_negative(["a", "b"])
        (True, False)
        """
        numbers = numbers_of(column)
        return numbers is not None and bool((numbers < 0).any())

    @staticmethod
    def is_lt80pc_unique_int(column: Any) -> bool:
        """Return whether whole numbers repeat often enough not to be row identifiers.

        Returns
        -------
        bool
            True if all numbers are whole (2.0 too: nulls turn integers into floats) and the
            distinct values are fewer than 80 per cent of the cells that are not null. Keys with a
            few duplicated rows have more distinct values, measured counts fewer.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_lt80pc_unique_int([1, 1, 2, 2, 3]), FC.is_lt80pc_unique_int([1, 2, 3, 4])
        (True, False)
        """
        numbers = numbers_of(column)
        if numbers is None or not numbers.size or not is_whole(numbers):
            return False
        return bool(count_different(numbers) < UNIQUE_SHARE_BELOW * numbers.size)

    @staticmethod
    def is_constant(column: Any) -> bool:
        """Return whether a column has at most one distinct value.

        Values are compared with ``==``, so 1 and 1.0 are one value. A column without cells or with
        nulls only is constant, as in the classifier's ``constant_column_flag``.

        Returns
        -------
        bool

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_constant(["a", "a", None]), FC.is_constant([1, 2])
        (True, False)
        """
        cells = present_cells(column)
        if cells is None:
            return False
        if not cells.size:
            return True
        if cells.dtype.kind in "biufcmMSU":
            return bool((cells == cells[0]).all())
        first = cells[0]
        with warnings.catch_warnings():  # from comparisons of the cells
            warnings.simplefilter("ignore")
            return all(cell is first or _equal(cell, first) for cell in cells)

    @staticmethod
    def is_string_in_datetime_format(column: Any) -> bool:
        """Return whether a column holds only date or time texts.

        Returns
        -------
        bool
            True if every cell that is not null is a text in one of these forms, the order of day,
            month and year is the same throughout, and all dates exist:

            - ISO 8601: ``2026-01-31``, ``2026-01-31T12:00:00.123+01:00``, ``2026-01``,
              ``2026-W05-6``; also with / or . and a blank before the time;
            - day or month first: ``31/1/2026``, ``1/31/26``, ``31.01.2026``, ``31.01.26``;
            - English month names: ``31-Jan-2026``, ``January 31, 2026``, ``Jan 2026``, ``Jan-26``,
              the date lines of mail, of web server logs, of ``ctime`` and of JavaScript;
            - times of day: ``08:30``, ``8:30:00``, ``8:30 PM``;
            - compact with a time: ``20260131T120000``.

        Notes
        -----
        All texts have to be dates, not most: a column with one other text cannot be converted.
        Years are 1600 to 2199, the whole centuries between the start of the Gregorian calendar
        (1582) and the end of 64-bit nanoseconds (2262), and 0001 and 9999, which databases write
        for "always" and "never".

        Not accepted, because other things have the same form:

        - ``20260131`` and other number texts;
        - ``1.2.26`` and ``1-2-26``: versions, marks. With two digits in each place they are
          accepted if one in the column has a leading zero, which versions have not (semver.org,
          rule 2); ``01.01.01`` is not accepted;
        - ``12/2026``: invoice numbers; ``31/12``, ``3-2``: fractions, scores, ranges;
        - ``12:30`` without any ``08:30`` or ``12:05`` in the column: scores, ratios;
        - ``2010-11`` where every text is a year and its successor: seasons.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_string_in_datetime_format(["31/12/2025", "1/2/2026", None])
        True
        >>> FC.is_string_in_datetime_format(["31/12/2025", "12/31/2025"])
        False
        >>> FC.is_string_in_datetime_format(["1.2.3", "10.2.19"])
        False
        """
        return is_date_text_column(column)

    @staticmethod
    def is_epoch(column: Any) -> bool:
        """Return whether numbers count seconds, milli-, micro- or nanoseconds since 1970.

        Returns
        -------
        bool
            True if all numbers are whole, lie between 2002-01-01 and 2033-05-18 (UTC) in one of
            the four units, and pass the rules below.

        Notes
        -----
        In that window a count has exactly 10, 13, 16 or 19 digits and starts with 1. To exclude
        other numbers of that length:

        - one value alone must be a whole minute, and not all may be multiples of 10,000 s:
          amounts and made-up numbers end in zeros;
        - distinct values are two units or more apart on average: serial numbers are not;
        - they span at most 20 years unless all are whole minutes: arbitrary numbers that start
          with 1 (US provider numbers) span 30;
        - nanoseconds are multiples of 100: clocks are, identifiers of messages are not.

        The name of a Series or DataFrame is used: with a word for an identifier, a phone, a count
        or an amount the result is False; with a word for a moment (timestamp, epoch, created, ...)
        the window is 1980 to 2099 and the four rules do not apply.

        Number texts are not accepted: ten digits kept as text are phone numbers or identifiers.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_epoch([1609459200, 1612137600]), FC.is_epoch([1700000001, 1700000002])
        (True, False)
        """
        return is_epoch_column(column)

    @staticmethod
    def is_longitude(column: Any, name: Any = None) -> bool:
        """Return whether a column holds degrees of longitude.

        Parameters
        ----------
        column
            The column.
        name
            Its name; by default that of the Series or DataFrame.

        Returns
        -------
        bool
            True if the name is one of a longitude and the numbers are in -180 to 180 or 0 to 360.

        Notes
        -----
        Without a name the result is False: rates, returns and scores have the same range. With the
        word "longitude" in the name (also French, Spanish, Portuguese, Italian, German) numbers in
        range are enough. "lon", "lng" and "long" have other meanings: half of the values need three
        digits of fraction (0.001 degree is 111 m on the equator), or one value a minus sign and one
        a fraction; "long" also needs a value of 10 or more. False for names with a word for
        latitude, an error, a difference or a distance, and for columns scaled to mean 0 and
        deviation 1 or to 0 to 1.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_longitude([-73.9857, 2.2945], "pickup_lng"), FC.is_longitude([-73.9857, 2.2945])
        (True, False)
        """
        return is_longitude_column(column, name)

    @staticmethod
    def is_latitude(column: Any, name: Any = None) -> bool:
        """Return whether a column holds degrees of latitude.

        Parameters
        ----------
        column
            The column.
        name
            Its name; by default that of the Series or DataFrame.

        Returns
        -------
        bool
            True if the name is one of a latitude and the numbers are in -90 to 90. The rules are
            those of `is_longitude`; the short word is "lat".

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_latitude([40.7484, 48.8584], "lat"), FC.is_latitude([40, 120], "latitude")
        (True, False)
        """
        return is_latitude_column(column, name)

    @staticmethod
    def is_distance(column: Any) -> bool:
        """Return whether a column holds distances.

        Returns
        -------
        bool
            True for texts that are each a number with a unit of distance (km, meters, mi, ft, yd,
            nmi), and for finite numbers, none below zero and some above, in a Series or DataFrame
            with a word for a distance in its name (distance, mileage, km, miles, ...).

        Notes
        -----
        False for numbers without such a name, for names with a word for a rate, price, count, rank
        or identifier, and for flags of 0 and 1. "dist" also means district and requires a fraction.
        Centimetres, millimetres and inches are sizes; "5 m" may be minutes or millions.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_distance(["3 km", "12.5 km"]), FC.is_distance(pd.Series([3, 12], name="dose"))
        (True, False)
        """
        return is_distance_column(column)

    @staticmethod
    def is_not_categorical(y: Any) -> bool:
        """Return whether a target is continuous, so that predicting it is regression.

        Returns
        -------
        bool
            True for numbers with a fraction among them, and for whole numbers (0.0 and 1.0 too:
            nulls turn labels into floats) unless they are categories: fewer than 100 distinct ones
            that are under a tenth of the cells, or exactly 2, or fewer than 5 in fewer than 30
            cells. False for texts, truth values, dates, mixtures, pandas categories and columns
            without values.

        Notes
        -----
        The bounds are those of ``FCplus.is_num_column_categorical`` for integers, so that a target
        and a feature with the same numbers get the same result. Nulls are not counted.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_not_categorical([1.5, 2.25, 9.0]), FC.is_not_categorical([0.0, 1.0, 1.0])
        (True, False)
        """
        if _is_category_typed(y):
            return False
        numbers = numbers_of(y)
        if numbers is None or not numbers.size:
            return False
        if not is_whole(numbers):
            return True
        different = count_different(numbers)
        if different < CATEGORIES_BELOW and different / numbers.size < CATEGORY_SHARE_BELOW:
            return False
        if different == 2:
            return False
        return not (different < FEW_CATEGORIES_BELOW and numbers.size < FEW_ROWS_BELOW)


def _equal(one: Any, other: Any) -> bool:
    try:
        if isinstance(one, np.ndarray) or isinstance(other, np.ndarray):
            return bool(np.array_equal(one, other))
        return bool(one == other)
    except Exception:  # a comparison that raises means: different
        return False


def _is_category_typed(y: Any) -> bool:
    if isinstance(y, pd.DataFrame):
        return y.shape[1] == 1 and isinstance(y.dtypes.iloc[0], pd.CategoricalDtype)
    return isinstance(getattr(y, "dtype", None), pd.CategoricalDtype)
