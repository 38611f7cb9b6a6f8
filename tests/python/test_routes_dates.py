"""A replaced date test is called with exactly the least distinct values."""

from __future__ import annotations

import functools
import random

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.comparison import Tally, module, replaced
from helpers.native_lookups import names_for
from helpers.property_tests import property_test
from helpers.replacements import Recorder
from helpers.route_columns import SHORT, Twins, cases
from helpers.routes import pass_through, shown, without_places
from helpers.tracing import Trace
from quorin_libs.utils.fc_methods import FC

NAMES = ["FC.is_string_in_datetime_format", "FCplus.is_column_string_in_datetime_format"]
COUNTS = [1, 2, 3, 49, 50, 51, 64, 200]
MAKERS = {
    "texts": ("w{:03}".format, "O"),
    "numbers as text": ("{}".format, "O"),
    "dates": ("2020-{:04}".format, "O"),
    "texts of other alphabets": ("\u00e9\u6f22{}".format, "O"),
    "fixed-width texts": ("w{:03}".format, "U"),
    "Python integers": (lambda i: 1000 + i, "O"),
    "Python floats": (lambda i: i + 0.5, "O"),
    "integers": (int, "i8"),
    "small integers": (int, "u1"),
    "floats": (lambda i: i / 4, "f8"),
    "short floats": (lambda i: i / 4, "f4"),
    "booleans": (lambda i: i % 2 == 0, "?"),
}


def column_of(kind, count):
    """A shuffled column with each value twice, and its distinct values in ascending order."""
    maker, dtype = MAKERS[kind]
    values = [maker(i) for i in range(count)]
    twice = values + values
    random.Random(count).shuffle(twice)
    column = objects(*twice) if dtype == "O" else np.array(twice, dtype=dtype)
    return column, sorted(set(values))


def recorded(name, call, answer=False):
    recorder = Recorder(lambda column: answer)
    with replaced(module, {name: staticmethod(recorder)}):
        result = call()
    ((sample,), keywords), *others = recorder.calls
    assert not others
    assert keywords == {}
    return result, sample


def check_sample(sample, column, expected):
    assert type(sample) is np.ndarray
    assert sample.dtype == ("f8" if column.dtype == "f4" else column.dtype)
    assert sample.shape == (min(50, len(expected)),)
    assert sample.tolist() == expected[:50]
    assert list(map(type, sample.tolist())) == list(map(type, expected[:50]))
    if column.dtype == object:
        own = {id(cell) for cell in column.tolist()}
        assert all(id(cell) in own for cell in sample.tolist())
    sample[:] = sample[0]
    assert sorted(set(column.tolist())) == expected


@pytest.mark.parametrize("name", NAMES)
@pytest.mark.parametrize("count", COUNTS)
@pytest.mark.parametrize("kind", sorted(MAKERS))
@pytest.mark.parametrize(
    "markers, stats", [(None, False), (["?", np.nan], False), (["?", np.nan], True)]
)
def test_sample(name, count, kind, markers, stats):
    column, expected = column_of(kind, count)
    ask = functools.partial(module.numpy_whatis, column, markers, return_stats_flag=stats)
    plain = ask()[:2]
    result, sample = recorded(name, ask)
    assert result[:2] == plain
    check_sample(sample, column, expected)
    assert ask()[:2] == plain


@pytest.mark.parametrize("name", NAMES)
@pytest.mark.parametrize("cells", [["?"] * 9, ["?", None, "b", "a"] * 30, [float("nan"), 2.5] * 30])
def test_missing_cells_are_not_in_the_sample(name, cells):
    column = objects(*cells)
    expected = sorted({cell for cell in cells if cell in ("b", "a", 2.5)})
    _, sample = recorded(name, lambda: module.numpy_whatis(column, ["?", np.nan]))
    assert sample.tolist() == expected
    assert sample.dtype == object


@pytest.mark.parametrize("name", NAMES)
@pytest.mark.parametrize("routine", ["getClasses", "is_column_categorical", "is_numerical"])
def test_calling_routines_call_the_date_test(name, routine):
    column, expected = column_of("texts", 70)
    _, sample = recorded(name, lambda: getattr(module.FCplus, routine)(column))
    check_sample(sample, column, expected)


@pytest.mark.parametrize("answer", [True, False, 1, 0, "yes", "", None, [], (0,)])
@pytest.mark.parametrize("name", NAMES)
def test_answer_decides_the_flag(name, answer):
    column, _ = column_of("texts", 60)
    ask = functools.partial(module.numpy_whatis, column, ["?"], return_stats_flag=True)
    (_, _, stats), _ = recorded(name, ask, answer)
    assert stats["datetime_column_flag"] is (True if answer else answer)


def test_failure_of_the_foreign_test_is_raised():
    class Refused(Exception):
        pass

    def refuse(column):
        raise Refused(column.shape)

    for name in NAMES:
        with replaced(module, {name: staticmethod(refuse)}), pytest.raises(Refused):
            module.numpy_whatis(objects("a", "b"))
        assert module.numpy_whatis(objects("a", "b")) == ([], "char_str")


def test_another_class_in_place_of_ours():
    class Other(FC):
        asked = []

        @staticmethod
        def is_string_in_datetime_format(column):
            Other.asked.append(column.tolist())
            return False

    with replaced(module, {"FC": Other}):
        module.numpy_whatis(objects("b", "a", "b"))
    assert Other.asked == [["a", "b"]]


@property_test(weight=2, case=cases(lengths=SHORT), by=names_for("numpy_whatis"))
def test_samples_of_both_routes(case, by):
    if by.startswith("FC"):
        by = "isint"
    seen = []
    for names in ({}, {by: pass_through(by)}):
        Tally.cases += 1
        seen.append(shown("numpy_whatis", case, {}, names, Trace(["FC"])))
    if isinstance(case[0], Twins):
        for each in seen:
            each["calls"] = without_places(each["calls"])
            each["result"] = without_places(each.get("result"))
    assert seen[0] == seen[1]
