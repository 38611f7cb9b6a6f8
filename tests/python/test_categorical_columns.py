"""Categorical or numerical: single columns, and which columns of a table are."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pytest

from helpers.arrays import distinct_numbers, objects, table
from helpers.replacements import Recorder, record, replace_in
from helpers.values import message_of, names_in_traceback, typed
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list
KINDS = [
    "missing", "char_str", "date_str", "int_str", "float_str", "float_num", "float_int_num",
    "int_num", "boolean", "Unknown",
]  # fmt: skip
INTEGERS = ["int_num", "float_int_num"]
NAN = np.nan


# --- is_column_categorical --------------------------------------------------------------------


@pytest.mark.parametrize(
    "y, markers, expected",
    [
        (objects(*["w{}".format(n) for n in range(500)]), None, True),
        (objects(*[str(n) for n in range(500)]), None, True),
        (objects("a", "?"), None, True),
        (objects("1.5", "2.5"), None, False),
        (np.array([0.5, 1.5]), None, False),
        (np.array([True, False]), None, False),
        (objects("?", "-"), None, False),
        (distinct_numbers(1000, 50), None, True),
        (distinct_numbers(400, 50), None, False),
        (distinct_numbers(400, 50).astype(float), None, False),
        (distinct_numbers(1000, 50).astype(float), None, True),
        # Without the marker, 100 rows with 10 distinct values remain: 10 % is too much.
        (np.append(distinct_numbers(100, 10), [-9] * 20), [-9], False),
        (np.append(distinct_numbers(101, 10), [-9]), [-9], True),
        (np.append(distinct_numbers(100, 10), [-9] * 20), [8888], True),
        (objects(*([1, 2, 3, 4, 5] * 11), "?"), ["?"], True),
        (distinct_numbers(1000, 50).reshape(-1, 1), None, True),
        (distinct_numbers(400, 50).reshape(-1, 1), [0], False),
    ],
)
def test_columns(y, markers, expected, capsys):
    before = typed(y)
    assert FCplus.is_column_categorical(y, markers) is expected
    assert FCplus.is_column_categorical(missing_values_reference_list=markers, y=y) is expected
    assert FCplus().is_column_categorical(y, markers) is expected
    assert FCplus.is_numerical(y, markers) is (not expected)
    assert FCplus.is_numerical(y, missing_values_reference_list=markers) is (not expected)
    assert typed(y) == before
    assert capsys.readouterr().out == ""


def classified(monkeypatch, misslist, dtype_str):
    """Make the classifier return this for every column."""
    return record(monkeypatch, "numpy_whatis", lambda *args: (misslist, dtype_str))


def judged(monkeypatch, answer):
    """Make the rule of distinct values return this for every column."""
    return record(monkeypatch, "is_num_column_categorical", lambda *args, **kwargs: answer, FCplus)


@pytest.mark.parametrize("misslist", [[], ["?"]])
@pytest.mark.parametrize("kind", [*KINDS, "INT_STR", "", None, 5])
def test_the_kind_decides(monkeypatch, kind, misslist):
    answer = object()
    classified(monkeypatch, misslist, kind)
    rule = judged(monkeypatch, answer)
    result = FCplus.is_column_categorical(objects("a"), [])
    if kind in INTEGERS:
        assert result is answer
    else:
        assert result is (kind in ("char_str", "int_str"))
    assert len(rule.calls) == (kind in INTEGERS)


class Kind:
    """A kind that equals one text; records what it is compared with."""

    def __init__(self, text):
        self.text, self.asked = text, []

    def __eq__(self, other):
        self.asked.append(other)
        return self.text == other

    __hash__ = None  # type: ignore[assignment]


ASKED = ["int_str", "char_str", "int_num", "float_int_num"]


@pytest.mark.parametrize(
    "text, asked", [*((a, ASKED[: n + 1]) for n, a in enumerate(ASKED)), ("", ASKED)]
)
def test_kinds_are_compared_in_order(monkeypatch, text, asked):
    kind = Kind(text)
    classified(monkeypatch, [], kind)
    judged(monkeypatch, True)
    assert FCplus.is_column_categorical(objects("a"), []) is bool(text)
    assert kind.asked == asked


@pytest.mark.parametrize("kind", INTEGERS)
def test_a_column_without_markers_is_judged_itself(monkeypatch, kind):
    classified(monkeypatch, [], kind)
    rule = judged(monkeypatch, True)
    y = object()
    FCplus.is_column_categorical(y, [])
    args, kwargs = rule.only_call()
    assert len(args) == 1 and args[0] is y
    assert kwargs == {"uni_max": 100, "uni_ratio": 0.1}
    assert [type(value) for value in kwargs.values()] == [int, float]


class Cells:
    """A column that records which rows are read."""

    def __init__(self, *cells):
        self.cells, self.shape, self.asked = cells, (len(cells),), []

    def __getitem__(self, row):
        self.asked.append(row)
        return self.cells[row]


@pytest.mark.parametrize("kind", INTEGERS)
def test_markers_are_left_out(monkeypatch, kind):
    classified(monkeypatch, ["?", 3], kind)
    rule = judged(monkeypatch, True)
    y = Cells(1, "?", 3.0, 2)
    FCplus.is_column_categorical(y, [])
    assert y.asked == [0, 0, 1, 2, 3, 3]
    args, kwargs = rule.only_call()
    assert typed(args) == typed((np.array([1, 2]),))
    assert kwargs == {"uni_max": 100, "uni_ratio": 0.1}


def test_np_asarray_makes_the_column_of_what_is_left(monkeypatch):
    classified(monkeypatch, ["?"], "int_num")
    rule = judged(monkeypatch, True)
    column = object()
    asarray = Recorder(lambda cells: column)
    replace_in(monkeypatch, "np", asarray=asarray)
    FCplus.is_column_categorical(objects(1, "?", 2), [])
    assert asarray.calls == [(([1, 2],), {})]
    assert rule.only_call()[0][0] is column


def test_a_nan_that_is_read_anew_is_not_left_out(monkeypatch):
    rule = judged(monkeypatch, True)
    FCplus.is_column_categorical(np.array([1.0, NAN]), [NAN])
    FCplus.is_column_categorical(objects(1, NAN), [NAN])
    (float_column,), (object_column,) = (args for args, _ in rule.calls)
    assert typed(float_column) == typed(np.array([1.0, NAN]))
    assert typed(object_column) == typed(np.array([1]))


@pytest.mark.parametrize("answer", [True, False, None, 0, "", [], object()])
def test_the_answer_of_the_rule_is_passed_on(monkeypatch, answer):
    classified(monkeypatch, [], "int_num")
    judged(monkeypatch, answer)
    assert FCplus.is_column_categorical([], []) is answer


def test_nothing_left_to_judge(monkeypatch):
    classified(monkeypatch, [1, 2], "int_num")
    with pytest.raises(ZeroDivisionError, match="^float division$") as excinfo:
        FCplus.is_column_categorical(np.array([1, 2, 1]), [])
    names = names_in_traceback(excinfo)
    assert names.index("is_column_categorical") < names.index("is_num_column_categorical")


@pytest.mark.parametrize("kind", [kind for kind in KINDS if kind not in INTEGERS])
def test_markers_of_other_kinds_are_not_looked_at(monkeypatch, kind):
    class Untouchable:
        def __bool__(self):
            raise AssertionError("the truth of the markers was taken")

    classified(monkeypatch, Untouchable(), kind)
    assert FCplus.is_column_categorical(objects("a"), []) is (kind in ("char_str", "int_str"))


@pytest.mark.parametrize("markers", [None, [], ["z"], "any object"])
def test_the_classifier_gets_column_and_markers(monkeypatch, markers):
    whatis = classified(monkeypatch, [], "boolean")
    y = object()
    FCplus.is_column_categorical(y, markers)
    args, kwargs = whatis.only_call()
    assert len(args) == 2 and kwargs == {}
    assert args[0] is y
    assert args[1] is (DEFAULT if markers is None else markers)


@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        (([],), "not enough values to unpack (expected 2, got 1)"),
        (iter("a"), "not enough values to unpack (expected 2, got 1)"),
        (([], "int_num", {}), "too many values to unpack (expected 2)"),
        ("abc", "too many values to unpack (expected 2)"),
    ],
)
def test_the_classifier_must_give_a_pair(monkeypatch, answer, words):
    record(monkeypatch, "numpy_whatis", lambda *args: answer)
    with pytest.raises(ValueError) as excinfo:
        FCplus.is_column_categorical(objects("a"), [])
    assert str(excinfo.value) == words


# --- is_numerical -----------------------------------------------------------------------------


def categorical(monkeypatch, answer):
    """Make `is_column_categorical` return this, or the result of a function of the column."""
    function = answer if callable(answer) else lambda column: answer
    return record(
        monkeypatch,
        "is_column_categorical",
        lambda column, missing_values_reference_list: function(column),
        FCplus,
    )


@pytest.mark.parametrize("answer", [True, 1, "no", [0], False, 0, "", [], None, np.bool_(False)])
def test_numerical_is_not_categorical(monkeypatch, answer):
    rule = categorical(monkeypatch, answer)
    y, markers = object(), object()
    assert FCplus.is_numerical(y, markers) is (not answer)
    assert FCplus.is_numerical(y, None) is (not answer)
    assert rule.calls == [
        ((y,), {"missing_values_reference_list": markers}),
        ((y,), {"missing_values_reference_list": None}),
    ]


def test_an_answer_without_a_truth(monkeypatch):
    answer = np.array([True, False])
    categorical(monkeypatch, answer)
    for call in FCplus.is_numerical, FCplus.find_categorical_columns:
        with pytest.raises(ValueError) as excinfo:
            call(np.array([1]), None)
        assert str(excinfo.value) == message_of(ValueError, bool, answer)


# --- find_categorical_columns, find_numerical_columns -----------------------------------------

FINDERS = [
    (FCplus.find_categorical_columns, "is_column_categorical"),
    (FCplus.find_numerical_columns, "is_numerical"),
]
every_finder = pytest.mark.parametrize("find, judge", FINDERS)


WORDS, NUMBERS, FEW = list("abcdefgh"), [0.5] * 8, [1, 2] * 4
MANY = list(range(8))


@pytest.mark.parametrize(
    "X, markers, expected, columns",
    [
        (objects(*WORDS), None, [0], 1),
        (np.array(NUMBERS), None, [], 1),
        (np.array(FEW), None, [0], 1),
        (np.array(MANY), None, [], 1),
        (table(WORDS, NUMBERS, FEW, MANY), None, [0, 2], 4),
        (table(MANY, WORDS), ["?"], [1], 2),
        (np.array([FEW, MANY]).T, None, [0], 2),
        (np.array([[5, 5, 1, 2, 1, 2, 3, 3]]).T, [5], [0], 1),
        (np.empty((3, 0)), None, [], 0),
    ],
)
def test_every_column_is_found_by_one(X, markers, expected, columns):
    found = FCplus.find_categorical_columns(X, markers)
    others = FCplus.find_numerical_columns(X, markers)
    assert typed(found) == typed(expected)
    assert typed(others) == typed([j for j in range(columns) if j not in expected])
    assert typed(FCplus.find_categorical_columns(missing_values_reference_list=markers, X=X)) == (
        typed(expected)
    )


@every_finder
@pytest.mark.parametrize("answer", [True, False, 1, 0, "x", "", None])
def test_one_dimension_is_judged_as_a_matrix_of_one_column(monkeypatch, find, judge, answer):
    reshaped = object()
    X = SimpleNamespace(ndim=1, reshape=Recorder(lambda *shape: reshaped))
    rule = record(monkeypatch, judge, lambda column, missing_values_reference_list: answer, FCplus)
    markers = object()
    assert typed(find(X, markers)) == typed([0] if answer else [])
    assert X.reshape.calls == [((-1, 1), {})]
    assert rule.calls == [((reshaped,), {"missing_values_reference_list": markers})]


@every_finder
@pytest.mark.parametrize("markers", [None, [], ["z"]])
def test_each_column_is_judged(monkeypatch, find, judge, markers):
    class Table:
        ndim = 2
        shape = (9, 5)

        def __getitem__(self, index):
            rows, j = index
            assert rows == slice(None)
            return "no yes yes none yes".split()[j]

    rule = record(
        monkeypatch,
        judge,
        lambda column, missing_values_reference_list: {"yes": [1], "no": "", "none": None}[column],
        FCplus,
    )
    assert typed(find(Table(), markers)) == typed([1, 2, 4])
    assert [args for args, _ in rule.calls] == [(c,) for c in "no yes yes none yes".split()]
    for _, kwargs in rule.calls:
        assert list(kwargs) == ["missing_values_reference_list"]
        assert kwargs["missing_values_reference_list"] is markers


@every_finder
@pytest.mark.parametrize("X", [["a"], None])
def test_a_table_has_dimensions(find, judge, X):
    with pytest.raises(AttributeError) as excinfo:
        find(X, None)
    assert str(excinfo.value) == message_of(AttributeError, lambda: X.ndim)
    assert find.__name__ in names_in_traceback(excinfo)


@every_finder
def test_a_table_has_a_width(find, judge):
    with pytest.raises(IndexError, match="^tuple index out of range$"):
        find(np.array(5), None)
