"""Predicates of one column that use the classifier: markers, text, numbers of categories."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list


# --- is_column_missing, is_column_string ------------------------------------------------------


@pytest.mark.parametrize(
    "column, args, missing, text",
    [
        (objects("a", "b"), (), False, True),
        (objects("a", "?"), (), True, True),
        (objects("a", "?"), (["z"],), False, True),
        (objects("a", "?"), (["a"],), True, True),
        (objects("a", "?"), ([],), False, True),
        (objects("?", "-"), (), True, False),
        (objects("1", "?"), (), True, False),
        (objects("1", "2"), (), False, False),
        (objects("1.5"), (), False, False),
        (np.array([1, 2]), (), False, False),
        (np.array([1.5, np.nan]), (None,), True, False),
        (np.array([[1], [-9]]), ([-9],), True, False),
        (pd.Series(["a", "?"], dtype=object), (), True, True),
    ],
)
def test_markers_and_text(column, args, missing, text, capsys):
    before = typed(column)
    assert FCplus.is_column_missing(column, *args) is missing
    assert FCplus.is_column_string(column, *args) is text
    for markers in args:
        keywords = {"missing_values_reference_list": markers, "column": column}
        assert FCplus.is_column_missing(**keywords) is missing
        assert FCplus.is_column_string(**keywords) is text
    assert typed(column) == before
    assert capsys.readouterr().out == ""


CLASSIFIED = [FCplus.is_column_missing, FCplus.is_column_string]
every_classified = pytest.mark.parametrize("predicate", CLASSIFIED)


@every_classified
@pytest.mark.parametrize("markers", [None, [], ["z"], "any object"])
def test_the_classifier_gets_column_and_markers(monkeypatch, predicate, markers):
    whatis = record(monkeypatch, "numpy_whatis", lambda *args: ([], "int_num"))
    column = object()
    assert predicate(column, markers) is False
    args, kwargs = whatis.only_call()
    assert len(args) == 2 and kwargs == {}
    assert args[0] is column
    assert args[1] is (DEFAULT if markers is None else markers)


class Asked:
    """A half of the classifier's answer; records its operations."""

    def __init__(self, answer):
        self.answer, self.asked = answer, []

    def __bool__(self):
        self.asked.append("truth")
        return self.answer

    def __eq__(self, other):
        self.asked.append(other)
        return ["equal"] if self.answer else ""

    __hash__ = None  # type: ignore[assignment]


@pytest.mark.parametrize("answer", [True, False])
@pytest.mark.parametrize(
    "predicate, of_markers, of_kind",
    [
        (FCplus.is_column_missing, ["truth"], []),
        (FCplus.is_column_string, [], ["char_str"]),
    ],
)
def test_one_half_of_the_answer_counts(monkeypatch, predicate, of_markers, of_kind, answer):
    markers, kind = Asked(answer), Asked(answer)
    record(monkeypatch, "numpy_whatis", lambda *args: (markers, kind))
    assert predicate(object()) is answer
    assert markers.asked == of_markers
    assert kind.asked == of_kind


@pytest.mark.parametrize(
    "kind",
    ["missing", "date_str", "int_str", "float_str", "float_num", "int_num", "boolean", "Unknown",
     "CHAR_STR", "char_str ", None],
)  # fmt: skip
def test_only_one_kind_is_text(monkeypatch, kind):
    record(monkeypatch, "numpy_whatis", lambda *args: (["?"], kind))
    assert FCplus.is_column_string(object()) is False
    assert FCplus.is_column_missing(object()) is True


@every_classified
@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        (([],), "not enough values to unpack (expected 2, got 1)"),
        ([[]], "not enough values to unpack (expected 2, got 1)"),
        ("a", "not enough values to unpack (expected 2, got 1)"),
        (([], "int_num", {}), "too many values to unpack (expected 2)"),
        ("abc", "too many values to unpack (expected 2)"),
    ],
)
def test_the_classifier_must_give_a_pair(monkeypatch, predicate, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args: answer)
    with pytest.raises(ValueError) as excinfo:
        predicate(object())
    assert str(excinfo.value) == words
    assert predicate.__name__ in names_in_traceback(excinfo)


@every_classified
@pytest.mark.parametrize("kind", [list, iter])
def test_any_pair_can_be_unpacked(monkeypatch, predicate, kind):
    record(monkeypatch, "numpy_whatis", lambda *args: kind([["?"], "char_str"]))
    assert predicate(object()) is True


# --- is_column_categorical_mult_cats, is_column_not_categorical -------------------------------


@pytest.mark.parametrize(
    "column, markers, many, numerical",
    [
        (objects("a", "b"), None, False, False),
        (objects("a", "b", "c"), None, True, False),
        (objects("a", "a", "a"), None, False, False),
        (np.array([1, 2, 3] * 50), None, True, False),
        (np.array([1, 2] * 50), None, False, False),
        (np.array([0.5, 1.5, 2.5]), None, False, True),
        (np.arange(400) % 50, None, False, True),
        # A marker counts as a distinct value.
        (objects("a", "b", "?"), ["?"], True, False),
        (np.array([1, 2, -9] * 50), [-9], True, False),
    ],
)
def test_categories(column, markers, many, numerical):
    assert FCplus.is_column_categorical_mult_cats(column, markers) is many
    assert FCplus.is_column_not_categorical(column, markers) is numerical
    keywords = {"missing_values_reference_list": markers, "dfc": column}
    assert FCplus.is_column_categorical_mult_cats(**keywords) is many
    assert FCplus.is_column_not_categorical(**keywords) is numerical
    if markers is None:
        assert FCplus.is_column_categorical_mult_cats(column) is many
        assert FCplus.is_column_not_categorical(column) is numerical


def categorical(monkeypatch, answer):
    return record(
        monkeypatch, "is_column_categorical", lambda *args, **kwargs: answer, owner=FCplus
    )


@pytest.mark.parametrize(
    "answer", [False, None, 0, 0.0, "", [], {}, np.bool_(False), np.array([]).tolist()]
)
def test_the_very_false_value_comes_back(monkeypatch, answer):
    categorical(monkeypatch, answer)
    unique = Recorder(np.unique)
    replace_in(monkeypatch, "np", unique=unique)
    assert FCplus.is_column_categorical_mult_cats([1, 2, 3]) is answer
    assert FCplus.is_column_not_categorical([1, 2, 3]) is True
    assert unique.calls == []


@pytest.mark.parametrize("answer", [True, 1, "yes", [0], object()])
@pytest.mark.parametrize("values", range(5))
def test_more_than_two_distinct_values_are_many(monkeypatch, answer, values):
    categorical(monkeypatch, answer)
    unique = Recorder(lambda dfc: range(values))
    replace_in(monkeypatch, "np", unique=unique)
    dfc = object()
    assert FCplus.is_column_categorical_mult_cats(dfc) is (values > 2)
    assert unique.calls == [((dfc,), {})]
    assert FCplus.is_column_not_categorical(dfc) is False


BOTH = [FCplus.is_column_categorical_mult_cats, FCplus.is_column_not_categorical]
every_of_both = pytest.mark.parametrize("predicate", BOTH)


@every_of_both
@pytest.mark.parametrize("markers", [None, [], ["z"]])
def test_the_list_is_passed_by_keyword(monkeypatch, predicate, markers):
    rule = categorical(monkeypatch, False)
    dfc = object()
    predicate(dfc, markers)
    ((seen,), kwargs) = rule.only_call()
    assert seen is dfc
    assert list(kwargs) == ["missing_values_reference_list"]
    assert kwargs["missing_values_reference_list"] is markers


@every_of_both
@pytest.mark.parametrize("answer", [True, False])
def test_the_truth_is_taken_once(monkeypatch, predicate, answer):
    truth = Asked(answer)
    categorical(monkeypatch, truth)
    predicate([1, 2, 3])
    assert truth.asked == ["truth"]


@every_of_both
def test_an_answer_without_a_truth(monkeypatch, predicate):
    answer = np.array([True, False])
    categorical(monkeypatch, answer)
    with pytest.raises(ValueError) as excinfo:
        predicate([1, 2, 3])
    assert str(excinfo.value) == message_of(ValueError, bool, answer)
    assert predicate.__name__ in names_in_traceback(excinfo)


def test_values_that_cannot_be_compared(monkeypatch):
    categorical(monkeypatch, True)
    dfc = objects(1, "a")
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_column_categorical_mult_cats(dfc)
    assert str(excinfo.value) == message_of(TypeError, np.unique, dfc)
