"""Column tests that need nothing but the column: class `FC`."""

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

# The bounds by which the column classifier's companion calls an integer column categorical.
CATEGORIES_BELOW = 100
CATEGORY_SHARE_BELOW = 0.1
FEW_CATEGORIES_BELOW = 5
FEW_ROWS_BELOW = 30

# From four different values in five cells on an integer column names its rows.
UNIQUE_SHARE_BELOW = 0.8


class Verdict(pd.Series):  # type: ignore[misc]  # pandas ships no types
    """A one-element Series of truth that keeps `bool()`, which pandas 3 took away.

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
        """Return the only element as a plain truth value.

        Raises
        ------
        ValueError
            If there is not exactly one element.
        """
        if len(self) != 1:
            raise ValueError("bool() needs exactly one element, got {}".format(len(self)))
        return builtins.bool(self.to_numpy()[0])

    def __bool__(self) -> builtins.bool:
        return self.bool()


class FC:
    """Tests of one column, each answering one question.

    A column is a Series, a one-column DataFrame, an array of shape (n,) or (n, 1), a list or a
    tuple. Missing cells (None, NaN, NaT, NA) are left out. Unless a test says otherwise a column
    without any other cell answers False, as does anything that is not one column. No test raises
    or warns because of what a column holds, and none changes it.

    Numbers are Python and numpy integers and floats, `Decimal` and `Fraction`. Truth values,
    complex numbers and texts that read as numbers are not: whoever wants the numbers in a text
    converts it first.

    The semantic tests (dates, moments, coordinates, distances) are strict on purpose. A column
    wrongly called a date is converted and ruined; one that was missed is merely left as it is.
    """

    # Tests that do nothing but answer. A caller that has no use for the answer need not ask.
    side_effect_free: ClassVar[FrozenSet[str]] = frozenset({"is_string_in_datetime_format"})

    @staticmethod
    def is_positive(column: Any) -> Verdict:
        """Tell whether all numbers are above zero.

        Returns
        -------
        Verdict
            One element; its `bool()` is True when the column holds numbers only, at least one,
            and each is greater than 0. Infinity is.

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
        """Tell whether no number is below zero.

        Returns
        -------
        Verdict
            One element; its `bool()` is True when the column holds numbers only, at least one,
            and each is 0 (-0.0 too) or greater.

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
        """Tell whether a column of numbers holds one below zero.

        Not the plain opposite of `is_non_negative`: a column that holds something other than
        numbers, or nothing, answers False to both.

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
        """Tell whether whole numbers repeat often enough not to be row identifiers.

        Returns
        -------
        bool
            True when all numbers are whole (2.0 counts: a missing cell turns integers into
            floats) and different values are fewer than 80 per cent of the cells that are not
            missing. At 80 per cent and above four cells in five are alone with their value, as
            in keys with a few duplicated rows; a measured count repeats more.

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
        """Tell whether a column has no two different values.

        Values are compared as Python compares them, so 1 and 1.0 are one value. A column of
        missing cells only, or of no cells, is constant: it tells rows apart as little as any
        other constant column, and the column classifier's flag says the same.

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
        with warnings.catch_warnings():  # what a cell's own comparison may say
            warnings.simplefilter("ignore")
            return all(cell is first or _equal(cell, first) for cell in cells)

    @staticmethod
    def is_string_in_datetime_format(column: Any) -> bool:
        """Tell whether a column holds date or time texts and nothing else.

        Returns
        -------
        bool
            True when every cell that is not missing is a text in one of these forms, the order
            of day, month and year is the same throughout, and no date is impossible:

            - ISO 8601: ``2026-01-31``, ``2026-01-31T12:00:00.123+01:00``, ``2026-01``,
              ``2026-W05-6``; also with / or . and a blank before the time;
            - day or month first: ``31/1/2026``, ``1/31/26``, ``31.01.2026``, ``31.01.26``;
            - English month names: ``31-Jan-2026``, ``January 31, 2026``, ``Jan 2026``, ``Jan-26``,
              the date lines of mail, of web server logs, of ``ctime`` and of JavaScript;
            - times of day: ``08:30``, ``8:30:00``, ``8:30 PM``;
            - compact with a time: ``20260131T120000``.

        Notes
        -----
        All texts, not most: the caller passes at most 50 different values, and one that is no
        date means that the column cannot be converted as it stands. Years run from 1600 to 2199,
        the whole centuries between the Gregorian calendar's first year (1582) and the last that
        nanoseconds in 64 bits reach (2262), with 0001 and 9999, which databases write for
        "always" and "never".

        Refused although people write dates so, because other things look the same:

        - ``20260131``, and all else that reads as a number;
        - ``1.2.26`` and ``1-2-26``: versions, marks. With two digits in each place they count
          when a zero leads somewhere in the column, which versions avoid (semver.org, rule 2), and
          ``01.01.01`` never counts;
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
        """Tell whether numbers count seconds, milli-, micro- or nanoseconds since 1970.

        Returns
        -------
        bool
            True when all numbers are whole and, read in one of the four units, all lie from
            2002-01-01 to 2033-05-18 (UTC), and look like moments.

        Notes
        -----
        In that window a count has exactly 10, 13, 16 or 19 digits, the first being 1. Columns of
        other numbers of that length are told apart so:

        - one value alone must be a whole minute, and not all may be multiples of 10,000 s:
          amounts and made-up numbers end in zeros;
        - on average different values are two units or more apart: serial numbers are not;
        - they span at most 20 years unless all are whole minutes: arbitrary numbers that start
          with 1 (US provider numbers) span 30;
        - nanoseconds are multiples of 100: clocks are, identifiers of messages are not.

        The name a Series or DataFrame carries counts. One that speaks of an identifier, a phone,
        a count or an amount settles for False. One that speaks of a moment (timestamp, epoch,
        created, ...) widens the window to 1980 to 2099 and lifts the four rules.

        Number texts are refused: ten digits kept as text are phone numbers or identifiers.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_epoch([1609459200, 1612137600]), FC.is_epoch([1700000001, 1700000002])
        (True, False)
        """
        return is_epoch_column(column)

    @staticmethod
    def is_longitude(column: Any, name: Any = None) -> bool:
        """Tell whether a column holds degrees of longitude.

        Parameters
        ----------
        column
            The column.
        name
            Its name; None stands for the name that a Series or DataFrame carries.

        Returns
        -------
        bool
            True when the name says so and the numbers agree: -180 to 180, or 0 to 360.

        Notes
        -----
        Without a name the answer is False: numbers in that range with a fraction are also rates,
        returns, scores and most of what a program prints. A name with the word "longitude" (also
        French, Spanish, Portuguese, Italian, German) is enough for numbers in range. "lon", "lng"
        and "long" have other meanings, so half of the values need three digits of fraction (0.001
        degree is 111 m on the equator) or one value a minus sign and one a fraction; "long" also
        a value of 10 or more. A name that speaks of latitude too, or of an error, difference or
        distance, is refused, and so are columns scaled to mean 0 and deviation 1 or to 0 to 1.

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_longitude([-73.9857, 2.2945], "pickup_lng"), FC.is_longitude([-73.9857, 2.2945])
        (True, False)
        """
        return is_longitude_column(column, name)

    @staticmethod
    def is_latitude(column: Any, name: Any = None) -> bool:
        """Tell whether a column holds degrees of latitude.

        Parameters
        ----------
        column
            The column.
        name
            Its name; None stands for the name that a Series or DataFrame carries.

        Returns
        -------
        bool
            True when the name says so and the numbers agree: -90 to 90. The rules are those of
            `is_longitude`; the short word is "lat".

        Examples
        --------
        >>> from quorin_libs.utils.fc_methods import FC
        >>> FC.is_latitude([40.7484, 48.8584], "lat"), FC.is_latitude([40, 120], "latitude")
        (True, False)
        """
        return is_latitude_column(column, name)

    @staticmethod
    def is_distance(column: Any) -> bool:
        """Tell whether a column holds distances.

        Returns
        -------
        bool
            True for texts that are each a number with a unit of distance (km, m written out, mi,
            ft, yd, nmi), and for finite numbers, none below zero and some above, in a Series or
            DataFrame whose name speaks of a distance (distance, mileage, km, miles, ...).

        Notes
        -----
        Numbers without a name are refused: every measured quantity looks like them. A name that
        speaks of a rate, price, count, rank or identifier is refused too, as are flags of 0 and
        1. "dist" also means district, so it needs a fraction. Centimetres, millimetres and inches
        are sizes; "5 m" may be minutes or millions.

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
        """Tell whether a target is continuous, so that predicting it is regression.

        Returns
        -------
        bool
            True for numbers of which one has a fraction, and for whole numbers (0.0 and 1.0 too:
            labels become floats where cells are missing) unless they are categories: fewer than
            100 different ones that are under a tenth of the cells, or exactly 2, or fewer than 5
            in fewer than 30 cells. Texts, truth values, dates, mixtures and pandas categories
            are categorical; a column without values is.

        Notes
        -----
        The bounds are those by which ``FCplus.is_num_column_categorical`` judges integers, so that
        a target and a feature with the same numbers are judged alike. Here only cells that are
        not missing count.

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
    except Exception:  # a cell whose comparison fails is not the same value
        return False


def _is_category_typed(y: Any) -> bool:
    if isinstance(y, pd.DataFrame):
        return y.shape[1] == 1 and isinstance(y.dtypes.iloc[0], pd.CategoricalDtype)
    return isinstance(getattr(y, "dtype", None), pd.CategoricalDtype)
