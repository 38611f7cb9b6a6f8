"""Whole tables: markers in a column, columns of text, and the early end of the search."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pytest

from helpers.arrays import objects, table
from helpers.replacements import record
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list
KINDS = [
    "missing", "char_str", "date_str", "int_str", "float_str", "float_num", "float_int_num",
    "int_num", "boolean", "Unknown", "", "Char_str",
]  # fmt: skip
TEXT = ["char_str", "int_str", "float_str"]

# Routine, whether it searches for markers, for text, whether it returns a list of columns.
CHECKS = [
    (FCplus.is_dataset_preprocessed, True, True, False),
    (FCplus.is_dataset_missing, True, False, False),
    (FCplus.get_dataset_missing_columns, True, False, True),
    (FCplus.is_dataset_numeric, False, True, False),
    (FCplus.get_dataset_non_numeric_columns, False, True, True),
]
every_check = pytest.mark.parametrize("check, markers, text, lists", CHECKS)
ROUTINES = [check[0] for check in CHECKS]
every_routine = pytest.mark.parametrize("check", ROUTINES)


def answers(X, *args):
    """The results of the five checks for this table, in the order above."""
    return [check(X, *args) for check in ROUTINES]


@pytest.mark.parametrize(
    "X, args, expected",
    [
        (np.array([1, 2]), (), [True, True, [], True, []]),
        (np.array([0.5, 2]), (), [True, True, [], True, []]),
        (np.array([True, False]), (), [True, True, [], True, []]),
        (np.array([0.5, np.nan]), (), [False, False, [0], True, []]),
        (np.array([0.5, np.nan]), (["?"],), [True, True, [], True, []]),
        (np.array([1, -1]), ([-1],), [False, False, [0], True, []]),
        (objects("a", "b"), (), [False, True, [], False, [0]]),
        (objects("1", "2"), (), [False, True, [], False, [0]]),
        (objects("1.5", "2.5"), (), [False, True, [], False, [0]]),
        (objects("1.5", "?"), (), [False, False, [0], False, [0]]),
        (table(["?", 1], ["a", "b"]), (), [False, False, [0], False, [1]]),
        (table(["?", 1], ["a", "-"]), (), [False, False, [0, 1], False, [1]]),
        (table(["?", "b"], ["a", "-"]), (["-"],), [False, False, [1], False, [0, 1]]),
        (table([1, 2], ["a", "b"], [3, 4], ["?", "c"]), (), [False, False, [3], False, [1, 3]]),
        (np.array([[1, 2], [3, 4]]), (), [True, True, [], True, []]),
        (np.array([[1, 2], [3, 4]]), (None,), [True, True, [], True, []]),
        (np.array([[1, 2], [3, 4]]), ([3, 4],), [False, False, [0, 1], True, []]),
        (np.array([[1], [2]]), (), [True, True, [], True, []]),
        (np.empty((3, 0)), (), [True, True, [], True, []]),
        (np.empty((0, 0), dtype="U1"), (), [True, True, [], True, []]),
    ],
)
def test_tables(X, args, expected, capsys, caplog):
    before = typed(X), typed(DEFAULT)
    assert typed(answers(X, *args)) == typed(expected)
    assert (typed(X), typed(DEFAULT)) == before
    assert capsys.readouterr().out == ""
    assert caplog.records == []


@every_routine
def test_arguments_may_be_keywords(check):
    X = table([1, 2], ["?", "-"])
    for markers in None, ["?"]:
        assert check(missing_values_reference_list=markers, X=X) == check(X, markers)


# --- what counts in a column ------------------------------------------------------------------


def classified(monkeypatch, *results):
    """Make the classifier return these results, one a call."""
    answer = iter(results)
    return record(monkeypatch, "numpy_whatis", lambda *args: next(answer))


@every_check
@pytest.mark.parametrize("misslist", [[], ["?"], (), "yes"])
@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("shape", [(2,), (2, 1)])
def test_markers_and_kind(monkeypatch, check, markers, text, lists, misslist, kind, shape):
    classified(monkeypatch, (misslist, kind))
    hit = (markers and bool(misslist)) or (text and kind in TEXT)
    result = check(np.zeros(shape))
    if lists:
        assert typed(result) == typed([0] if hit else [])
    else:
        assert result is (not hit)


class Markers:
    def __init__(self, log, answer):
        self.log, self.answer = log, answer

    def __bool__(self):
        self.log.append("markers")
        return self.answer


class Kind:
    """A kind that equals one text; records what it is compared with."""

    def __init__(self, log, text):
        self.log, self.text = log, text

    def __eq__(self, other):
        self.log.append(other)
        return self.text == other

    __hash__ = None  # type: ignore[assignment]


@every_check
@pytest.mark.parametrize("found", [False, True])
@pytest.mark.parametrize("kind", [*TEXT, "int_num"])
@pytest.mark.parametrize("shape", [(2,), (2, 1)])
def test_the_tests_stop_at_the_first_that_holds(
    monkeypatch, check, markers, text, lists, found, kind, shape
):
    log = []
    classified(monkeypatch, (Markers(log, found), Kind(log, kind)))
    check(np.zeros(shape))
    expected = ["markers"] if markers else []
    if text and not (markers and found):
        expected += TEXT[: TEXT.index(kind) + 1] if kind in TEXT else TEXT
    assert log == expected


# --- which columns are looked at --------------------------------------------------------------


class Table:
    """A table whose columns are texts."""

    ndim = 2

    def __init__(self, width):
        self.shape = (9, width)

    def __getitem__(self, index):
        rows, j = index
        assert rows == slice(None) and type(j) is int
        return "column {}".format(j)


CLEAN, BAD = ([], "int_num"), (["?"], "char_str")


@every_check
@pytest.mark.parametrize("first", range(4))
def test_the_search_for_a_flag_ends_at_the_first_hit(
    monkeypatch, check, markers, text, lists, first
):
    # A call after the first hit would fail: the replacement has no further result.
    results = [*[CLEAN] * first, BAD, *([BAD] * (3 - first) if lists else [None] * (3 - first))]
    whatis = classified(monkeypatch, *results)
    result = check(Table(4))
    looked_at = range(4) if lists else range(first + 1)
    assert whatis.calls == [(("column {}".format(j), DEFAULT), {}) for j in looked_at]
    assert typed(result) == typed(list(range(first, 4)) if lists else False)


@every_check
def test_all_columns_are_looked_at_when_none_is_hit(monkeypatch, check, markers, text, lists):
    whatis = classified(monkeypatch, *[CLEAN] * 4)
    assert typed(check(Table(4))) == typed([] if lists else True)
    assert len(whatis.calls) == 4


@every_check
def test_hits_are_listed_among_others(monkeypatch, check, markers, text, lists):
    classified(monkeypatch, CLEAN, BAD, CLEAN, BAD)
    assert typed(check(Table(4))) == typed([1, 3] if lists else False)


@every_routine
@pytest.mark.parametrize("markers", [None, [], ["z"], "any object"])
def test_one_dimension_is_classified_itself(monkeypatch, check, markers):
    whatis = classified(monkeypatch, CLEAN)
    X = np.array([1, 2])
    check(X, markers)
    args, kwargs = whatis.only_call()
    assert len(args) == 2 and kwargs == {}
    assert args[0] is X
    assert args[1] is (DEFAULT if markers is None else markers)


@every_routine
@pytest.mark.parametrize("ndim", [1, 1.0, True])
def test_dimensions_are_compared_by_equality(monkeypatch, check, ndim):
    whatis = classified(monkeypatch, CLEAN)
    X = SimpleNamespace(ndim=ndim)
    check(X)
    assert whatis.only_call()[0][0] is X


@every_routine
def test_each_call_makes_its_own_result(monkeypatch, check):
    first, second = check(np.empty((2, 0))), check(np.empty((2, 0)))
    assert type(first) is bool or first is not second


# --- failures ---------------------------------------------------------------------------------


@every_routine
@pytest.mark.parametrize("shape", [(2,), (2, 1)])
@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        (([],), "not enough values to unpack (expected 2, got 1)"),
        ([[]], "not enough values to unpack (expected 2, got 1)"),
        (([], "int_num", {}), "too many values to unpack (expected 2)"),
        ("abc", "too many values to unpack (expected 2)"),
    ],
)
def test_the_classifier_must_give_a_pair(monkeypatch, check, shape, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args: answer)
    with pytest.raises(ValueError) as excinfo:
        check(np.zeros(shape))
    assert str(excinfo.value) == words
    assert check.__name__ in names_in_traceback(excinfo)


@every_routine
def test_a_failure_of_the_classifier_propagates(check):
    with pytest.raises(IndexError) as excinfo:
        check(np.array([]))
    names = names_in_traceback(excinfo)
    assert names.index(check.__name__) < names.index("numpy_whatis")


@every_routine
@pytest.mark.parametrize("X", [["a"], None])
def test_a_table_has_dimensions(check, X):
    with pytest.raises(AttributeError) as excinfo:
        check(X)
    assert str(excinfo.value) == message_of(AttributeError, lambda: X.ndim)


@every_routine
def test_a_table_has_a_width(check):
    with pytest.raises(IndexError, match="^tuple index out of range$"):
        check(np.array(5))


# --- is_dataset_for_classification ------------------------------------------------------------


@pytest.mark.parametrize(
    "y, markers, expected",
    [
        (objects("a", "b", "?"), None, True),
        (objects("1", "2"), None, True),
        (np.array([0.5, 1.5]), None, False),
        (np.arange(400) % 50, None, False),
        (np.arange(1000) % 50, None, True),
        (np.append(np.arange(100) % 10, [-9] * 20), [-9], False),
    ],
)
def test_a_categorical_target_is_for_classification(y, markers, expected):
    classify = FCplus.is_dataset_for_classification
    assert classify(y, None, markers) is expected
    assert classify(y, missing_values_reference_list=markers) is expected
    assert classify(X="anything", missing_values_reference_list=markers, y=y) is expected
    assert FCplus.is_column_categorical(y, markers) is expected
    if markers is None:
        assert classify(y) is expected


@pytest.mark.parametrize("answer", [True, False, None, 0, "", [], object()])
@pytest.mark.parametrize("markers", [None, [], ["z"]])
def test_the_answer_for_the_target_is_passed_on(monkeypatch, answer, markers):
    class Untouchable:
        def __getattribute__(self, name):
            raise AssertionError("the features were looked at: " + name)

    rule = record(
        monkeypatch, "is_column_categorical", lambda *args, **kwargs: answer, owner=FCplus
    )
    y = object()
    assert FCplus.is_dataset_for_classification(y, Untouchable(), markers) is answer
    ((seen,), kwargs) = rule.only_call()
    assert seen is y
    assert list(kwargs) == ["missing_values_reference_list"]
    assert kwargs["missing_values_reference_list"] is markers
