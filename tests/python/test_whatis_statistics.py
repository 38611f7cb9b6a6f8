"""The statistics of the classifier: keys in order, exact types, flags, identity, the date test."""

from __future__ import annotations

from decimal import Decimal

import numpy as np
import pytest

from helpers.arrays import mask, objects
from helpers.replacements import Recorder, record
from helpers.values import names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus, numpy_whatis

DEFAULT = exportable_utils.global_missing_values_reference_list
DATE_TEST = "is_column_string_in_datetime_format"
UNSET = "local variable 'cum_missing_mask_arr' referenced before assignment"
KINDS = [
    "missing",
    "char_str",
    "date_str",
    "int_str",
    "float_str",
    "float_num",
    "float_int_num",
    "int_num",
    "boolean",
    "Unknown",
]


def counts(**found):
    """All ten kinds in order, 0 if none was found."""
    return {kind: found.get(kind, 0) for kind in KINDS}


def statistics_of(X, markers=DEFAULT, **arguments):
    result = numpy_whatis(X, markers, return_stats_flag=True, **arguments)
    assert type(result) is tuple and len(result) == 3
    found, kind, statistics = result
    assert statistics["missing_values"] is found
    assert statistics["dtype_str"] == kind
    return statistics


def date_test(monkeypatch, answer):
    return record(monkeypatch, DATE_TEST, lambda column: answer, owner=FCplus)


def test_the_whole_dictionary(monkeypatch):
    date_test(monkeypatch, False)
    X = objects("b", "?", "a", "b", None)
    assert typed(statistics_of(X)) == typed(
        {
            "dtype_str": "char_str",
            "missing_values": ["?", np.nan],
            "unique_values": objects("a", "b"),
            "unique_values_counts": np.array([1, 2], np.intp),
            "missing_mask": mask(0, 1, 0, 0, 1),
            "dtypes_cnt": counts(missing=2, char_str=2),
            "dtypes_weighted_cnt_dict": counts(missing=2, char_str=np.intp(3)),
            "weird_new_missing_values_list": [],
            "unique_values_column_flag": False,
            "constant_column_flag": False,
            "datetime_column_flag": False,
            "monotonic_column_flag": False,
            "contiguous_column_flag": False,
        }
    )


@pytest.mark.parametrize(
    "X, plain, weighted",
    [
        # A lone text ends the scan: neither it nor later values are counted.
        (
            objects("!", "1", "1", "~", "~", "é"),
            {"char_str": 1, "int_str": 1},
            {"char_str": 1, "int_str": 2},
        ),
        (
            objects("1", "1", "2.5", "2.5", "2.5", "x"),
            {"int_str": 1, "float_str": 1, "char_str": 1},
            {"int_str": 2, "float_str": 3, "char_str": 1},
        ),
        (
            objects(0.5, 1, 2.0, 2.0, -1),
            {"float_num": 1, "int_num": 2, "float_int_num": 1},
            {"float_num": 1, "int_num": 2, "float_int_num": 2},
        ),
        (np.array([True, False, True]), {"boolean": 2}, {"boolean": 3}),
        (np.array([3, 3, 4]), {"int_num": 2}, {"int_num": 3}),
        (objects("-", "1", "?"), {"missing": 2, "int_str": 1}, {"missing": 2, "int_str": 1}),
        (objects("?", "?"), {"missing": 2}, {"missing": 2}),
    ],
)
def test_counts_of_values_and_of_rows(X, plain, weighted):
    statistics = statistics_of(X)
    assert typed(statistics["dtypes_cnt"]) == typed(counts(**plain))
    # Counts are numpy integers, except that of missing rows.
    expected = {
        kind: rows if kind == "missing" else np.intp(rows) for kind, rows in weighted.items()
    }
    assert typed(statistics["dtypes_weighted_cnt_dict"]) == typed(counts(**expected))


def test_a_value_of_no_kind_is_counted_with_the_one_before():
    statistics = statistics_of(objects(1, Decimal("2.5"), Decimal("2.5")), ["?"])
    assert typed(statistics["dtypes_cnt"]) == typed(counts(int_num=2))
    assert statistics["dtypes_weighted_cnt_dict"]["int_num"] == 3


@pytest.mark.parametrize(
    "X, weird",
    [
        (objects("1", "~"), ["~"]),
        (objects("!", "1", "~", "é"), ["~"]),
        (objects("1", "a"), []),
        (objects("?", "1"), []),
    ],
)
def test_the_sign_that_ended_the_scan_is_listed(X, weird):
    assert typed(statistics_of(X)["weird_new_missing_values_list"]) == typed(weird)


def test_the_running_class_is_reported_without_the_flag():
    statistics = statistics_of(objects("?", "1", "a", "b"), use_dtype_str1_flag=False)
    assert statistics["dtype_str"] == "char_str"
    assert statistics["missing_values"] == ["?", "a", "b"]
    statistics = statistics_of(objects("!", "#", "1"), use_dtype_str1_flag=False)
    assert statistics["dtype_str"] == "int_str"


@pytest.mark.parametrize("flag", [False, 0, None, ""])
def test_without_the_flag_there_are_two_results(flag):
    assert numpy_whatis(objects("1"), DEFAULT, return_stats_flag=flag) == ([], "int_str")


@pytest.mark.parametrize("flag", [True, 1, "yes"])
@pytest.mark.parametrize("markers", [None, []])
def test_without_a_reference_list_there_is_no_mask(flag, markers):
    with pytest.raises(UnboundLocalError) as excinfo:
        numpy_whatis(objects("1"), markers, return_stats_flag=flag)
    assert str(excinfo.value) == UNSET
    assert "numpy_whatis" in names_in_traceback(excinfo)


def test_the_results_of_the_routines_are_reported_themselves(monkeypatch):
    missing, exist = mask(1, 0), ["NA"]
    values, occurrences = objects("1"), np.array([7])
    record(
        monkeypatch,
        "numpy_compute_missing_indicator",
        lambda *args, **kwargs: (missing, [], exist),
    )
    record(monkeypatch, "get_unique_values", lambda *args, **kwargs: (values, occurrences))
    statistics = statistics_of(objects("a", "b"))
    assert statistics["missing_mask"] is missing
    assert statistics["unique_values"] is values
    assert statistics["unique_values_counts"] is occurrences
    assert statistics["dtypes_weighted_cnt_dict"]["int_str"] == 7
    assert exist == ["NA"]


def test_a_column_of_32_bits_has_values_of_64():
    X = np.array([0.1, 2.0], dtype=np.float32)
    statistics = statistics_of(X)
    assert typed(statistics["unique_values"]) == typed(np.array([np.float64(np.float32(0.1)), 2.0]))
    assert statistics["dtype_str"] == "float_num"


# --- flags of the column ----------------------------------------------------------------------


@pytest.mark.parametrize(
    "X, unique, constant",
    [
        (objects("a", "b"), True, False),
        (objects("a", "b", "b"), False, False),
        (objects("a"), True, True),
        (objects("a", "a"), False, True),
        (objects("a", "?", "b"), True, False),
        (objects("a", "?", "?"), True, True),
        (objects("?", "?"), True, True),
        (np.array([np.nan]), True, True),
        (np.array([1.0, np.nan]), True, True),
    ],
)
def test_unique_and_constant(X, unique, constant):
    statistics = statistics_of(X)
    assert statistics["unique_values_column_flag"] is unique
    assert statistics["constant_column_flag"] is constant


@pytest.mark.parametrize("X", [np.arange(5), objects("a", "b"), np.array([5.0, 4.5])])
def test_monotonic_and_contiguous_are_never_true(X):
    statistics = statistics_of(X)
    assert statistics["monotonic_column_flag"] is False
    assert statistics["contiguous_column_flag"] is False


@pytest.mark.parametrize("answer", [True, 1, "yes", np.bool_(True), [0]])
@pytest.mark.parametrize(
    "X, flag",
    [
        (objects("a", "b"), True),
        # The running class decides, not the reported kind.
        (objects("1", "a"), True),
        (objects("!", "#", "1"), False),
        (objects("1", "2.5", "x", "y"), False),
        (np.array([1, 2]), False),
        (objects("?"), False),
    ],
)
@pytest.mark.parametrize("use_counting_rules", [True, False])
def test_only_running_text_is_a_date(monkeypatch, answer, X, flag, use_counting_rules):
    date_test(monkeypatch, answer)
    statistics = statistics_of(X, use_dtype_str1_flag=use_counting_rules)
    assert statistics["datetime_column_flag"] is flag


@pytest.mark.parametrize("answer", [False, 0, "", None, [], np.bool_(False)])
def test_a_false_answer_is_reported_itself(monkeypatch, answer):
    date_test(monkeypatch, answer)
    assert statistics_of(objects("a"))["datetime_column_flag"] is answer


@pytest.mark.parametrize("with_statistics", [True, False])
@pytest.mark.parametrize("distinct, sampled", [(1, 1), (49, 49), (50, 50), (51, 50), (120, 50)])
def test_the_date_test_gets_fifty_distinct_values(monkeypatch, distinct, sampled, with_statistics):
    asked = date_test(monkeypatch, False)
    X = np.array([0] * 7 + list(range(distinct)))
    numpy_whatis(X, DEFAULT, return_stats_flag=with_statistics)
    expected = np.unique(X)[:sampled]
    assert [(typed(args), kwargs) for args, kwargs in asked.calls] == [(typed((expected,)), {})]


def test_the_date_test_is_called_without_distinct_values(monkeypatch):
    asked = date_test(monkeypatch, False)
    numpy_whatis(objects("?"), DEFAULT)
    assert typed(asked.calls) == typed([((objects(),), {})])


def test_the_class_is_looked_up_in_the_module(monkeypatch):
    class Other:
        pass

    Other.is_column_string_in_datetime_format = staticmethod(Recorder(lambda column: "maybe"))
    monkeypatch.setattr(exportable_utils, "FCplus", Other)
    assert statistics_of(objects("a"))["datetime_column_flag"] is True


def test_an_answer_without_truth_value_propagates(monkeypatch):
    date_test(monkeypatch, np.array([True, False]))
    with pytest.raises(ValueError):
        numpy_whatis(objects("a"))


def test_an_error_of_the_date_test_propagates(monkeypatch):
    def failing(column):
        raise RuntimeError("no dates today")

    record(monkeypatch, DATE_TEST, failing, owner=FCplus)
    with pytest.raises(RuntimeError, match="^no dates today$"):
        numpy_whatis(objects("a"))


def test_dates_are_text_that_is_a_date():
    days = ["2020-01-{:02d}".format(day) for day in range(1, 29)]
    statistics = statistics_of(objects("?", *days))
    assert statistics["dtype_str"] == "char_str"
    assert statistics["datetime_column_flag"] is True
    assert statistics["dtypes_cnt"]["date_str"] == 0
