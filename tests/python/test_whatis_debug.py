"""The output of the classifier under debug, and its readings of the clock."""

from __future__ import annotations

import numpy as np
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import record, set_clock
from helpers.values import typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_whatis

DEFAULT = exportable_utils.global_missing_values_reference_list


def starting(column):
    return "numpy_whatis(): Starting. Column: " + str(column) + "\n\n\n"


def from_scan_on(clock, values, rows, first):
    """The output from the scan on; `first` is the number of its first reading of the clock."""
    values, rows, sample, first_rows = (
        str(number) for number in (values, rows, min(values, 50), min(rows, 50))
    )
    return "".join(
        [
            "numpy_whatis():Start finding dtype on" + values + " rows\n",
            "numpy_whatis():Ending finding dtype on" + values + " rows\n",
            "elapsed_time: numpy_isin_elapsed_end(s): " + clock.between(first, first + 1) + "\n",
            "numpy_whatis():Starting checking datetime property  on" + sample + " rows\n",
            "numpy_whatis():Ending checking datetime property  on" + sample + " rows\n",
            "elapsed_time(s): " + clock.between(first + 2, first + 3) + "\n",
            "numpy_whatis():Starting checking monotonic property  on " + first_rows + " rows\n",
            "numpy_whatis():Ending checking monotonic property on " + first_rows + " rows\n",
            "elapsed_time(s): " + clock.between(first + 4, first + 5) + "\n",
            "numpy_whatis():Starting checking contiguous property  on " + first_rows + " rows\n",
            "numpy_whatis():Ending checking contiguous property on " + first_rows + " rows\n",
            "elapsed_time(s): " + clock.between(first + 6, first + 7) + "\n",
            "numpy_whatis():Ending_\n",
            "elapsed_time(s): " + clock.between(1, first + 8) + "\n",
        ]
    )


@pytest.mark.parametrize("debug", [True, 1, "yes"])
@pytest.mark.parametrize("markers", [None, []])
def test_the_transcript_without_a_reference_list(monkeypatch, capsys, markers, debug):
    clock = set_clock(monkeypatch)
    assert numpy_whatis(objects("1", "?", None), markers, debug=debug) == (["?"], "int_str")
    # NaN rows count as rows, not as values.
    assert capsys.readouterr().out == (
        starting("['1' '?' None]") + from_scan_on(clock, values=2, rows=3, first=2)
    )
    assert clock.readings == 10


def test_the_transcript_with_a_reference_list(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    result = numpy_whatis(objects("a", "?", "a"), ["?", "-"], debug=True)
    assert result == (["?"], "char_str")
    name = "numpy_compute_missing_indicator()"
    elapsed = "\nelapsed_time: numpy_isin_elapsed_end(s): "
    assert capsys.readouterr().out == (
        starting("['a' '?' 'a']")
        + name + ": Column: ['a' '?' 'a']\n\n\n"
        + "\n\n" + name + ":Checking for missing_value=?\n"
        + name + ":missing_value=? found: True" + elapsed + clock.between(2, 3) + "\n"
        + "\n\n" + name + ":Checking for missing_value=-\n"
        + name + ":missing_value=- found: False" + elapsed + clock.between(4, 5) + "\n"
        + from_scan_on(clock, values=1, rows=2, first=6)
    )  # fmt: skip
    assert clock.readings == 14


@pytest.mark.parametrize(
    "rows, values, shown",
    [(1, 1, 1), (49, 49, 49), (50, 50, 50), (51, 51, 50), (200, 200, 50), (200, 3, 50)],
)
def test_fifty_rows_at_most(monkeypatch, capsys, rows, values, shown):
    clock = set_clock(monkeypatch)
    X = np.arange(rows) % values
    numpy_whatis(X, debug=True)
    assert capsys.readouterr().out == (
        starting(X[:shown]) + from_scan_on(clock, values=values, rows=rows, first=2)
    )


def test_the_column_is_shown_before_it_is_flattened(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    numpy_whatis(np.array([[1], [2]]), debug=True)
    assert capsys.readouterr().out == (
        starting("[[1]\n [2]]") + from_scan_on(clock, values=2, rows=2, first=2)
    )


def test_a_column_of_missing_rows(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    record(
        monkeypatch,
        "numpy_compute_missing_indicator",
        lambda *args, **kwargs: (mask(1, 1), [], ["?"]),
    )
    assert numpy_whatis(objects("?", "?"), ["?"], debug=True) == (["?"], "missing")
    assert capsys.readouterr().out == (
        starting("['?' '?']") + from_scan_on(clock, values=0, rows=0, first=2)
    )


def test_a_value_that_cannot_be_counted_ends_the_transcript(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    with pytest.raises(UnboundLocalError):
        numpy_whatis(objects(1j), debug=True)
    assert capsys.readouterr().out == (
        starting("[1j]") + "numpy_whatis():Start finding dtype on1 rows\n"
    )
    assert clock.readings == 2


def test_a_mask_that_was_never_made_is_missed_after_the_last_line(monkeypatch, capsys):
    clock = set_clock(monkeypatch)
    with pytest.raises(UnboundLocalError):
        numpy_whatis(objects("a"), debug=True, return_stats_flag=True)
    assert capsys.readouterr().out == (
        starting("['a']") + from_scan_on(clock, values=1, rows=1, first=2)
    )


@pytest.mark.parametrize("markers", [None, DEFAULT])
def test_debug_changes_no_result(monkeypatch, capsys, markers):
    X = objects("!", "?", "1", "2.5", None)
    silent = numpy_whatis(X, markers)
    assert capsys.readouterr().out == ""
    assert typed(numpy_whatis(X, markers, debug=True)) == typed(silent)
    assert capsys.readouterr().out != ""


@pytest.mark.parametrize("markers", [None, DEFAULT])
@pytest.mark.parametrize("debug", [False, 0, None, ""])
def test_without_debug_nothing_is_printed_or_timed(monkeypatch, capsys, markers, debug):
    clock = set_clock(monkeypatch)
    numpy_whatis(objects("?", "1"), markers, debug=debug)
    assert capsys.readouterr().out == ""
    assert clock.readings == 0
