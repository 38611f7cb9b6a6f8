"""Categorical or numerical: the rule of distinct values, single columns, the columns of a table."""

from __future__ import annotations

from types import SimpleNamespace

import numpy as np
import pandas as pd
import pytest
from support import (
    Recorder,
    message_of,
    names_in_traceback,
    objects,
    record,
    replace_in,
    typed,
)

from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

DEFAULT = exportable_utils.global_missing_values_reference_list
KINDS = [
    "missing", "char_str", "date_str", "int_str", "float_str", "float_num", "float_int_num",
    "int_num", "boolean", "Unknown",
]  # fmt: skip
INTEGERS = ["int_num", "float_int_num"]
NAN = np.nan


def spread(rows, distinct):
    """A column of so many rows and distinct values."""
    return np.arange(rows) % distinct


# --- is_num_column_categorical ----------------------------------------------------------------


@pytest.mark.parametrize(
    "rows, distinct, expected",
    [
        (1000, 50, True),
        (400, 50, False),
        (1000, 99, True),
        (1001, 100, False),
        (1001, 101, False),
        (990, 99, False),
        (991, 99, True),
        (100, 10, False),
        (101, 10, True),
        (2, 2, True),
        (19, 2, True),
        (20, 2, True),
        (1, 1, True),
        (29, 1, True),
        (29, 3, True),
        (29, 4, True),
        (30, 4, False),
        (30, 3, False),
        (31, 3, True),
        (29, 5, False),
        (10, 5, False),
        (50, 5, False),
        (51, 5, True),
    ],
)
@pytest.mark.parametrize("make", [np.asarray, list, pd.Series, lambda c: pd.DataFrame({"a": c})])
def test_few_distinct_values_are_categories(rows, distinct, expected, make, capsys):
    assert FCplus.is_num_column_categorical(make(spread(rows, distinct))) is expected
    assert capsys.readouterr().out == ""


@pytest.mark.parametrize(
    "rows, distinct, thresholds, expected",
    [
        (40, 20, {"uni_max": 21, "uni_ratio": 0.6}, True),
        (40, 20, {"uni_max": 20, "uni_ratio": 0.6}, False),
        (40, 20, {"uni_max": 20.5, "uni_ratio": 0.6}, True),
        (40, 20, {"uni_max": 21, "uni_ratio": 0.5}, False),
        (40, 20, {"uni_ratio": 1}, True),
        (40, 2, {"uni_max": 0, "uni_ratio": 0}, True),
        (29, 4, {"uni_max": 0}, True),
    ],
)
def test_thresholds(rows, distinct, thresholds, expected):
    column = spread(rows, distinct)
    assert FCplus.is_num_column_categorical(column, **thresholds) is expected
    positional = (thresholds.get("uni_max", 100), thresholds.get("uni_ratio", 0.1))
    assert FCplus.is_num_column_categorical(column, *positional) is expected
    assert FCplus.is_num_column_categorical(dfc=column, **thresholds) is expected


def test_the_rows_of_a_matrix_are_counted():
    # Six distinct values in three rows.
    assert FCplus.is_num_column_categorical(np.arange(6).reshape(3, 2)) is False
    assert FCplus.is_num_column_categorical(np.arange(6).reshape(3, 2), 100, 2.5) is True


class Counted:
    """Something with a length, whose readings are noted by name."""

    def __init__(self, log, name, *lengths):
        self.log, self.name, self.lengths = log, name, list(lengths)

    def __len__(self):
        self.log.append(self.name)
        return self.lengths.pop(0) if len(self.lengths) > 1 else self.lengths[0]


class Bound:
    """A threshold; notes what is compared with it and whether the truth of its answer is taken."""

    def __init__(self, log, name, answer):
        self.log, self.name, self.answer = log, name, answer

    def __gt__(self, value):
        self.log.append((self.name, value))
        return self

    def __bool__(self):
        self.log.append(self.name + "?")
        return self.answer


U, D = "uni", "dfc"
BELOW_MAX = [U, D, U, ("max", 4), "max?"]
BELOW_RATIO = [("ratio", 0.25), "ratio?"]


@pytest.mark.parametrize(
    "uni, few, sparse, log",
    [
        ([4], True, True, [*BELOW_MAX, *BELOW_RATIO]),
        ([4, 4, 2], True, False, [*BELOW_MAX, *BELOW_RATIO, U]),
        ([4, 4, 5], True, False, [*BELOW_MAX, *BELOW_RATIO, U, U]),
        ([4], True, False, [*BELOW_MAX, *BELOW_RATIO, U, U, D]),
        ([4], False, True, [*BELOW_MAX, U, U, D]),
        ([4, 4, 5, 1], False, True, [*BELOW_MAX, U, U, D]),
    ],
)
def test_lengths_and_comparisons_in_their_order(monkeypatch, uni, few, sparse, log):
    seen = []
    dfc = Counted(seen, D, 16)
    unique = Recorder(lambda column: Counted(seen, U, *uni))
    replace_in(monkeypatch, "np", unique=unique)
    uni_max, uni_ratio = Bound(seen, "max", few), Bound(seen, "ratio", sparse)
    result = FCplus.is_num_column_categorical(dfc, uni_max, uni_ratio)
    assert seen == log
    assert [type(value) for name, value in filter(lambda e: type(e) is tuple, seen)] == (
        [int, float] if few else [int]
    )
    if few and sparse:
        assert result is uni_ratio
    else:
        assert result is (log[-1] == D or uni == [4, 4, 2])
    args, kwargs = unique.only_call()
    assert len(args) == 1 and args[0] is dfc and kwargs == {}


@pytest.mark.parametrize("rows, expected", [(29, True), (30, False)])
def test_the_length_of_the_column_is_read_again(monkeypatch, rows, expected):
    replace_in(monkeypatch, "np", unique=lambda column: [1, 2, 3])
    assert FCplus.is_num_column_categorical(Counted([], D, 3, rows)) is expected


@pytest.mark.parametrize("args", [(None,), ("a",), (100, None), (100, "a"), (1j,)])
def test_a_threshold_must_compare(args):
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_num_column_categorical(spread(10, 5), *args)
    left = 5 if len(args) == 1 else 0.5
    assert str(excinfo.value) == message_of(TypeError, lambda: left < args[-1])
    assert "is_num_column_categorical" in names_in_traceback(excinfo)


def test_the_second_threshold_is_not_consulted_above_the_first():
    assert FCplus.is_num_column_categorical(spread(10, 5), 5, None) is False


@pytest.mark.parametrize(
    "empty", [np.array([]), [], "", pd.Series([], dtype=float), np.empty((0, 2))]
)
def test_an_empty_column_has_no_share(empty):
    with pytest.raises(ZeroDivisionError, match="^float division$") as excinfo:
        FCplus.is_num_column_categorical(empty)
    assert names_in_traceback(excinfo)[-1] == "is_num_column_categorical"


def test_a_column_without_length(monkeypatch):
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_num_column_categorical(5)
    assert str(excinfo.value) == message_of(TypeError, len, 5)


# What is printed when the distinct values cannot be found.


def printed(*values):
    return "".join("{}\n".format(value) for value in values)


@pytest.mark.parametrize(
    "dfc",
    [
        pd.Series([1, "a"], dtype=object),
        pd.Series([1, "a", None], dtype=object),
        pd.DataFrame({"x": [1, "a"]}),
    ],
)
def test_a_failure_of_pandas_data_is_described_and_raised_again(dfc, capsys):
    with pytest.raises(TypeError) as excinfo:
        FCplus.is_num_column_categorical(dfc)
    assert str(excinfo.value) == message_of(TypeError, np.unique, dfc)
    assert excinfo.value.__context__ is None
    assert excinfo.value.__cause__ is None
    assert "is_num_column_categorical" in names_in_traceback(excinfo)
    assert capsys.readouterr().out == printed(
        "exception " + str(excinfo.value), type(dfc), dfc, dfc.isnull().any()
    )


def test_a_failure_of_an_array_ends_in_another(capsys):
    dfc = objects(1, "a")
    with pytest.raises(AttributeError) as excinfo:
        FCplus.is_num_column_categorical(dfc)
    assert str(excinfo.value) == "'numpy.ndarray' object has no attribute 'isnull'"
    cause = excinfo.value.__context__
    assert type(cause) is TypeError
    assert str(cause) == message_of(TypeError, np.unique, dfc)
    assert excinfo.value.__cause__ is None
    assert capsys.readouterr().out == printed("exception " + str(cause), type(dfc), dfc)


def unique_fails(monkeypatch, failure):
    def unique(column):
        raise failure

    replace_in(monkeypatch, "np", unique=unique)


class Nulls:
    """A column that tells whether any cell is null."""

    def __init__(self, answer):
        self.answer = answer

    def __str__(self):
        return "the column"

    def isnull(self):
        return self

    def any(self):
        if isinstance(self.answer, BaseException):
            raise self.answer
        return self.answer


@pytest.mark.parametrize("failure", [ValueError("v\nw"), Exception(), KeyError("k"), MemoryError()])
def test_the_very_exception_is_raised_again(monkeypatch, failure, capsys):
    unique_fails(monkeypatch, failure)
    with pytest.raises(type(failure)) as excinfo:
        FCplus.is_num_column_categorical(Nulls("any"))
    assert excinfo.value is failure
    assert capsys.readouterr().out == printed(
        "exception " + str(failure), Nulls, "the column", "any"
    )


def test_a_failure_of_the_last_question_takes_its_place(monkeypatch, capsys):
    first, second = ValueError("first"), RuntimeError("second")
    unique_fails(monkeypatch, first)
    with pytest.raises(RuntimeError) as excinfo:
        FCplus.is_num_column_categorical(Nulls(second))
    assert excinfo.value is second
    assert second.__context__ is first
    assert capsys.readouterr().out == printed("exception first", Nulls, "the column")


def test_a_column_that_cannot_be_shown_ends_the_description(monkeypatch, capsys):
    first, second = ValueError("first"), RuntimeError("no text")

    class Dark:
        def __str__(self):
            raise second

    unique_fails(monkeypatch, first)
    with pytest.raises(RuntimeError) as excinfo:
        FCplus.is_num_column_categorical(Dark())
    assert excinfo.value is second
    assert second.__context__ is first
    assert capsys.readouterr().out == printed("exception first", Dark)


@pytest.mark.parametrize("interruption", [KeyboardInterrupt(), SystemExit(), GeneratorExit()])
def test_an_interruption_is_not_described(monkeypatch, interruption, capsys):
    unique_fails(monkeypatch, interruption)
    with pytest.raises(type(interruption)) as excinfo:
        FCplus.is_num_column_categorical(Nulls("any"))
    assert excinfo.value is interruption
    assert capsys.readouterr().out == ""


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
        (spread(1000, 50), None, True),
        (spread(400, 50), None, False),
        (spread(400, 50).astype(float), None, False),
        (spread(1000, 50).astype(float), None, True),
        # Without the marker a hundred rows with ten values are left: a tenth is too much.
        (np.append(spread(100, 10), [-9] * 20), [-9], False),
        (np.append(spread(101, 10), [-9]), [-9], True),
        (np.append(spread(100, 10), [-9] * 20), [8888], True),
        (objects(*([1, 2, 3, 4, 5] * 11), "?"), ["?"], True),
        (spread(1000, 50).reshape(-1, 1), None, True),
        (spread(400, 50).reshape(-1, 1), [0], False),
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
    """Make the classifier answer this for every column."""
    return record(monkeypatch, "numpy_whatis", lambda *args: (misslist, dtype_str))


def judged(monkeypatch, answer):
    """Make the rule of distinct values answer this for every column."""
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
    """A kind that equals one text; notes with what it is compared."""

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
    """A column that notes which rows are read."""

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
    """Make `is_column_categorical` answer this, or what a function says of the column."""
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


def table(*columns):
    """An object array of these columns."""
    return np.array(columns, dtype=object).T


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
