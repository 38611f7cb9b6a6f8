"""Which columns of text are dates and times."""

from __future__ import annotations

import datetime
import random

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils.fc_methods import FC

is_date = FC.is_string_in_datetime_format

DATES = [
    # ISO 8601
    ["2026-01-31"],
    ["2026-01-31", "2025-12-01", None],
    ["2024-02-29"],
    ["2000-02-29", "1600-02-29"],
    ["0001-01-01", "9999-12-31"],
    ["2026-01-31T12:00"],
    ["2026-01-31T12:00:00", "2026-01-31T23:59:59"],
    ["2026-01-31T12:00:00Z", "2026-01-31t12:00:00z"],
    ["2026-01-31T12:00:00.123456789+01:00"],
    ["2026-01-31T12:00:00,5-0330"],
    ["2026-01-31 12:00:00"],
    ["2026-01-31 12:00:00.000"],
    ["2026-01-31 12:00:00 UTC"],
    ["2026-01-31 12:00:00+00"],
    ["2026-01-31", "2026-01-31 12:00:00"],
    ["2016-12-31T23:59:60Z"],
    ["2026-01-31Z", "2026-01-31+01:00"],
    ["2026-01-31T12:00:00+01:00[Europe/Berlin]"],
    ["2026-01-31-12.00.00.000000"],
    ["2026-1-5", "2026-12-31"],
    ["2026-W05", "2026-W53-7"],
    ["1949-01", "1949-02", "1960-12"],
    ["2026/01/31", "2026/1/5 9:30"],
    ["2026.01.31"],
    # compact, with what no number has
    ["20260131T120000"],
    ["20260131T1200Z", "20260131T120000.5+0100"],
    ["20260131 120000"],
    ["20260131-12:00:00.123"],
    ["20260131Z"],
    # day first, month first
    ["31/12/2025", "01/02/2026"],
    ["31/12/2025", "1/2/2026", pd.NaT, float("nan"), pd.NA],
    ["12/31/2025", "1/2/2026"],
    ["1/22/20", "1/23/20", "12/1/20"],
    ["29/02/00", "29/02/24"],
    ["31.12.2025", "1.2.2026"],
    ["31.12.25", "01.02.26"],
    ["31-12-2025", "1-2-2026"],
    ["31-12-25", "01-02-26"],
    ["12-31-99", "02-01-00"],
    ["1/31/2026 3:45:00 PM", "12/1/2026 12:05 am"],
    ["1/31/2026, 3:45:00\u202fPM"],
    ["31.12.2025 14:30", "31.12.2025, 14:30:15"],
    ["10.12.19 14:30"],
    ["31.12.9999"],
    # names of months
    ["31-Jan-2026", "1-FEB-2026"],
    ["31-Jan-26", "01-Feb-26"],
    ["31 January 2026", "1 May 2026", "1 Jun. 2026"],
    ["1st May 2026", "2nd of June 2026"],
    ["January 31, 2026", "May 5, 2026", "Sept. 5, 2026"],
    ["Jan 31 2026", "Jan-05-2026"],
    ["January 5, 2026 at 3:45 PM"],
    ["2026-Jan-31", "2026 Jan 31"],
    ["31JAN2026", "01FEB2026"],
    ["31JAN2026:12:00:00"],
    ["31-JAN-26 12.00.00.000000000 PM"],
    ["31/Jan/2026:12:00:00 +0000"],
    ["Sat, 31 Jan 2026 12:00:00 +0000", "Sun, 1 Feb 2026 12:00:00 GMT"],
    ["Sat Jan 31 12:00:00 2026", "Sun Feb  1 12:00:00 2026"],
    ["Sat Jan 31 12:00:00 UTC 2026"],
    ["Sat Jan 31 2026 12:00:00 GMT+0100 (Central European Standard Time)"],
    ["Saturday, January 31, 2026", "Sunday, February 1, 2026"],
    ["Jan 2026", "February 2026", "May 2026"],
    ["Jan-26", "Feb-26"],
    ["2026 Jan", "2026 Feb"],
    # the same order in two forms
    ["31/12/2025", "31.12.2025", "31 Dec 2025"],
    ["Dec 31, 2025", "1/2/2026"],
    # times of day
    ["08:30", "17:45"],
    ["12:05", "13:10"],
    ["8:30:00", "17:45:10.5"],
    ["8:30 AM", "12:15 p.m.", "9:05pm"],
    ["12:30Z", "12:45+01:00"],
    # around the text
    [" 2026-01-31", "2026-02-01\n"],
]

NOT_DATES = [
    # numbers
    ["20260131", "20260201"],
    ["2026", "1999"],
    ["1", "2.5", "-3"],
    ["1e5", "12.31", "1.2026"],
    ["1,234", "12,345.67"],
    ["20260131_120000"],
    ["+20260131"],
    ["1_000_000"],
    [0.5, 1.5],
    [20260131],
    # versions
    ["1.2.3", "10.2.19"],
    ["10.2.19", "10.2.20"],
    ["10.12.19"],
    ["10.0.19041", "6.1.7601", "5.1.2600"],
    ["v1.2.3"],
    ["1.2.3-beta", "1.2.3rc1"],
    ["1.10.2024.5"],
    # marks, codes, identifiers
    ["01.01.01", "01.01.02"],
    ["01-01-01", "01-01-02", "12-10-05"],
    ["2-10-20", "5-10-15"],
    ["10-10-10", "20-10-20"],
    ["978-0-306-40615-7"],
    ["50-00-0", "64-17-5"],
    ["04-00-04", "20-45-45"],
    ["2026-123", "2026-031"],
    ["2026/17", "2026/18"],
    ["3/2026", "12/2026"],
    ["01/2026", "12/2026"],
    ["INV-2026-01-31"],
    ["A1", "B2"],
    ["DEC-10", "MAR1", "SEPT7"],
    ["a2026-01-31", "2026-01-31a"],
    ["550e8400-e29b-41d4-a716-446655440000"],
    ["12:34:56:78:9a:bc"],
    # phones, addresses
    ["555-12-1234", "555-123-4567"],
    ["123-45-6789"],
    ["5551-12-10"],
    ["01 23 45 67 89", "01.23.45.67.89"],
    ["+49 30 123456", "(555) 123-4567"],
    ["192.168.0.1", "10.0.0.1"],
    ["10.10.10.10", "12.12.12.12"],
    ["::1", "fe80::1"],
    # fractions, scores, ratios, ranges, sizes
    ["1/2", "3/4"],
    ["1/2/3"],
    ["3-2", "2-2"],
    ["21:15", "25:23"],
    ["10:12", "11:13"],
    ["3:16", "5:12"],
    ["16:9", "4:3"],
    ["10-12", "13-15"],
    ["10x12", "10x12x14"],
    ["225/45/17"],
    ["2010-11", "2011-12"],
    ["2019/20"],
    ["90-60-90"],
    # impossible dates and times
    ["2026-13-01"],
    ["2026-00-10"],
    ["2026-01-32"],
    ["2026-01-00"],
    ["2026-02-30"],
    ["2026-02-29"],
    ["1900-02-29", "2100-02-29"],
    ["2026-04-31"],
    ["31/04/2026"],
    ["30/02/2026"],
    ["29/02/2025"],
    ["29/02/23"],
    ["13/13/2026"],
    ["0/1/2026"],
    ["32 Jan 2026", "31 Feb 2026"],
    ["February 30, 2026"],
    ["20260231T120000"],
    ["20261301T120000"],
    ["20260131T250000"],
    ["2026-01-31T25:00:00"],
    ["2026-01-31T24:00"],
    ["2026-01-31T12:60"],
    ["2026-01-31T12:00:61"],
    ["2026-01-31T12:30:60"],
    ["2026-01-31T12:00:00+25:00"],
    ["25:00:00"],
    ["13:00 PM", "0:30 AM"],
    ["2026-W54", "2026-W00", "2026-W05-8"],
    ["1066-10-14"],
    ["5.1.2600"],
    ["3012-01-01"],
    # no common order
    ["31/12/2025", "12/31/2025"],
    ["2025-12-31", "31/12/2025"],
    ["2025-12-31", "08:30"],
    ["2026-01", "2026-01-31"],
    ["31 Dec 2025", "Dec 31, 2025"],
    ["2026-31-12"],
    ["2026-01/31"],
    # not all of them dates
    ["2025-12-31", "unknown"],
    ["2025-12-31", ""],
    ["2025-12-31", "?", "2026-01-31"],
    ["2025-12-31", 5],
    ["2025-12-31", datetime.date(2026, 1, 31)],
    ["2025-12-31", b"2026-01-31"],
    ["2025-12-31", ["2026-01-31"]],
    [b"2026-01-31"],
    [datetime.date(2026, 1, 31)],
    [pd.Timestamp("2026-01-31")],
    # words
    ["May", "June"],
    ["May", "April", "August"],
    ["Monday", "Tuesday"],
    ["Mon", "Tue"],
    ["Jan", "Feb"],
    ["May flower", "March past"],
    ["12 Monkeys", "7 Marchers"],
    ["today", "now", "tomorrow"],
    ["Q1 2026", "2026Q1"],
    ["5 days", "3 months"],
    ["31 Jan", "Jan 31"],
    ["1 2 2026"],
    ["T12:00"],
    ["", " "],
    ["\u0662\u0660\u0662\u0666-\u0660\u0661-\u0663\u0661"],
    ["2026-01-31\x00", "2026\u201001\u201031"],
    ["31-\u017fep-2026"],
]


def forms(cells):
    as_objects = np.empty(len(cells), dtype=object)
    for position, cell in enumerate(cells):
        as_objects[position] = cell
    yield list(cells)
    yield tuple(reversed(cells))
    yield as_objects
    yield as_objects.reshape(-1, 1)
    yield pd.Series(as_objects)
    yield pd.Series(list(cells))
    yield pd.DataFrame({"date": as_objects})
    yield np.tile(as_objects, 50)
    if all(type(cell) is str and not cell.endswith("\0") for cell in cells):
        yield np.array(cells)
        yield np.array(cells).reshape(-1, 1)
        yield pd.Series(cells, dtype="string")
        yield pd.Series(cells, dtype="category")


@pytest.mark.parametrize("cells", DATES, ids=repr)
def test_dates(cells):
    for column in forms(cells):
        assert is_date(column) is True


@pytest.mark.parametrize("cells", DATES, ids=repr)
def test_one_other_text_among_dates_is_enough(cells):
    for other in ("n/a", "12", "1.2.3", "May", "x"):
        for place in (0, 1, len(cells)):
            assert is_date(cells[:place] + [other] + cells[place:]) is False


@pytest.mark.parametrize("cells", NOT_DATES, ids=ascii)
def test_not_dates(cells):
    for column in forms(cells):
        assert is_date(column) is False


@pytest.mark.parametrize(
    "column",
    [
        np.arange(50),
        np.arange(50) / 3,
        np.array([True, False]),
        np.array([b"2026-01-31"]),
        np.array(["2026-01-31"], dtype="datetime64[D]"),
        np.array([1], dtype="timedelta64[D]"),
        np.array([1j]),
        pd.Series(pd.to_datetime(["2026-01-31"])),
    ],
    ids=lambda column: str(column.dtype),
)
def test_columns_of_no_text(column):
    assert is_date(column) is False


@pytest.mark.skipif(not hasattr(np, "dtypes"), reason="needs numpy 2")
def test_variable_width_text():
    if not hasattr(np.dtypes, "StringDType"):
        pytest.skip("needs numpy 2")
    texts = np.dtypes.StringDType(na_object=np.nan)
    assert is_date(np.array(["2026-01-31", np.nan], dtype=texts)) is True
    assert is_date(np.array(["2026-01-31", "x"], dtype=texts)) is False


def test_every_day_is_read_and_only_days_are():
    """All days and near-days of leap, plain and century years against the calendar."""
    for year in (1900, 2000, 2023, 2024, 2100):
        for month in range(14):
            for day in range(33):
                try:
                    datetime.date(year, month, day)
                    real = True
                except ValueError:
                    real = False
                texts = (
                    "{:04}-{:02}-{:02}",
                    "{0}/{1}/{2}",
                    "{0:04}{1:02}{2:02}T0000",
                )
                for text in texts:
                    assert is_date([text.format(year, month, day)]) is real
                ordered = "{2}.{1}.{0}".format(year, month, day)
                try:
                    datetime.date(year, day, month)
                    swapped = True
                except ValueError:
                    swapped = False
                assert is_date([ordered]) is (real or swapped)


FORMATS = [
    "%Y-%m-%d",
    "%Y-%m-%dT%H:%M:%S",
    "%Y-%m-%d %H:%M:%S.%f",
    "%Y-%m-%dT%H:%M:%S.%f%z",
    "%Y/%m/%d",
    "%d/%m/%Y",
    "%m/%d/%Y %I:%M %p",
    "%d.%m.%Y %H:%M",
    "%d-%m-%Y",
    "%d-%b-%Y",
    "%d %B %Y",
    "%B %d, %Y",
    "%b %d %Y",
    "%a, %d %b %Y %H:%M:%S %z",
    "%A, %B %d, %Y",
    "%c",
    "%d/%b/%Y:%H:%M:%S %z",
    "%Y%m%dT%H%M%S",
    "%b %Y",
    "%H:%M:%S",
    "%I:%M %p",
]


@pytest.mark.parametrize("form", FORMATS)
def test_what_the_standard_library_writes(form):
    chance = random.Random(7)
    start = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
    for _ in range(200):
        moments = [
            start + datetime.timedelta(seconds=chance.randrange(4 * 10**9), microseconds=17)
            for _ in range(chance.choice((1, 3, 50)))
        ]
        assert is_date(np.unique([moment.strftime(form) for moment in moments])) is True


def test_arbitrary_codes_are_no_dates():
    """Columns of 30 codes shaped like dates, with digits by chance, none of which may pass."""
    chance = random.Random(11)
    shapes = ("##-##-##", "##.##.##", "####-##-##", "##/##/####", "########", "##:##", "#.#.####")
    for shape in shapes:
        for _ in range(300):
            column = [
                "".join(chance.choice("0123456789") if mark == "#" else mark for mark in shape)
                for _ in range(30)
            ]
            assert is_date(column) is False
