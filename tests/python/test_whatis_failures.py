"""The failures that leave the classifier: its own and those of the routines that it calls."""

from __future__ import annotations

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.replacements import record
from helpers.values import message_of, names_in_traceback
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_whatis

DEFAULT = exportable_utils.global_missing_values_reference_list


@pytest.mark.parametrize(
    "count, words",
    [
        (0, "at least 1 positional argument (0 given)"),
        (7, "at most 6 positional arguments (7 given)"),
    ],
)
def test_the_number_of_arguments(count, words):
    with pytest.raises(TypeError) as excinfo:
        numpy_whatis(*[None] * count)
    assert str(excinfo.value) == "numpy_whatis() takes " + words


def test_an_empty_column_is_refused_by_the_flattening():
    with pytest.raises(IndexError) as excinfo:
        numpy_whatis(np.array([]), DEFAULT)
    names = names_in_traceback(excinfo)
    assert names.index("numpy_whatis") < names.index("numpy_flatten_column")


@pytest.mark.parametrize("markers", [("?",), "?", frozenset("?"), 0])
def test_the_reference_list_must_have_a_copy_method(markers):
    if hasattr(markers, "copy"):
        assert numpy_whatis(objects("?", "1"), markers) == (["?"], "int_str")
    else:
        with pytest.raises(AttributeError) as excinfo:
            numpy_whatis(objects("?", "1"), markers)
        assert str(excinfo.value) == message_of(AttributeError, lambda: markers.copy)


def test_text_that_the_integer_test_cannot_take_is_an_error(monkeypatch):
    failure = OverflowError("too long")

    def isint(value):
        raise failure

    record(monkeypatch, "isint", isint)
    with pytest.raises(OverflowError) as excinfo:
        numpy_whatis(objects("1"))
    assert excinfo.value is failure


MASK = np.array([False])
VALUES, COUNTS = objects("1"), np.array([1])


@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 3, got 0)"),
        ((MASK,), "not enough values to unpack (expected 3, got 1)"),
        ((MASK, []), "not enough values to unpack (expected 3, got 2)"),
        ([MASK, []], "not enough values to unpack (expected 3, got 2)"),
        (iter((MASK, [])), "not enough values to unpack (expected 3, got 2)"),
        ((MASK, [], [], []), "too many values to unpack (expected 3)"),
        ([MASK, [], [], [], []], "too many values to unpack (expected 3)"),
        (iter("abcd"), "too many values to unpack (expected 3)"),
    ],
)
def test_the_masks_must_come_with_three_results(monkeypatch, answer, words):
    record(monkeypatch, "numpy_compute_missing_indicator", lambda *args, **kwargs: answer)
    with pytest.raises(ValueError) as excinfo:
        numpy_whatis(objects("1"), ["?"])
    assert str(excinfo.value) == words
    assert "numpy_whatis" in names_in_traceback(excinfo)


@pytest.mark.parametrize("markers", [None, ["?"]])
@pytest.mark.parametrize(
    "answer, words",
    [
        ((), "not enough values to unpack (expected 2, got 0)"),
        ((VALUES,), "not enough values to unpack (expected 2, got 1)"),
        (VALUES, "not enough values to unpack (expected 2, got 1)"),
        ((VALUES, COUNTS, COUNTS), "too many values to unpack (expected 2)"),
        (objects("1", "2", "3"), "too many values to unpack (expected 2)"),
    ],
)
def test_the_values_must_come_with_their_counts(monkeypatch, markers, answer, words):
    record(monkeypatch, "get_unique_values", lambda *args, **kwargs: answer)
    with pytest.raises(ValueError) as excinfo:
        numpy_whatis(objects("1"), markers)
    assert str(excinfo.value) == words


@pytest.mark.parametrize("name", ["numpy_compute_missing_indicator", "get_unique_values"])
def test_what_cannot_be_unpacked_at_all(monkeypatch, name):
    record(monkeypatch, name, lambda *args, **kwargs: None)
    with pytest.raises(TypeError):
        numpy_whatis(objects("1"), ["?"])


class Counted:
    """A column with a dtype and slices; its shape raises if its name is in `lost`."""

    dtype = np.dtype(object)

    def __init__(self, name, lost):
        self.name, self.lost = name, lost

    @property
    def shape(self):
        if self.name in self.lost:
            raise ArithmeticError(self.name)
        return (1,)

    def __getitem__(self, rows):
        return Counted("others", self.lost)


@pytest.mark.parametrize(
    "lost, first",
    [("others values column", "others"), ("values column", "values"), ("column", "column")],
)
def test_rows_are_counted_in_order(monkeypatch, lost, first):
    column, values = Counted("column", lost.split()), Counted("values", lost.split())
    record(monkeypatch, "numpy_flatten_column", lambda X: column)
    record(monkeypatch, "numpy_compute_missing_indicator", lambda *args, **kwargs: (MASK, [], []))
    record(monkeypatch, "get_unique_values", lambda *args, **kwargs: (values, COUNTS))
    with pytest.raises(ArithmeticError) as excinfo:
        numpy_whatis(objects("1"), ["?"])
    assert str(excinfo.value) == first


@pytest.mark.parametrize("kind", [list, tuple, iter])
def test_any_iterable_can_be_unpacked(monkeypatch, kind):
    record(
        monkeypatch,
        "numpy_compute_missing_indicator",
        lambda *args, **kwargs: kind([MASK, [], ["found"]]),
    )
    record(monkeypatch, "get_unique_values", lambda *args, **kwargs: kind([VALUES, COUNTS]))
    assert numpy_whatis(objects("x"), ["?"]) == (["found"], "int_str")


def test_a_column_that_cannot_be_sorted_is_reported(caplog):
    with pytest.raises(Exception, match="^Exception raised!\n") as excinfo:
        numpy_whatis(objects(1, None), ["?"])
    assert type(excinfo.value) is Exception
    names = names_in_traceback(excinfo)
    assert names.index("numpy_whatis") < names.index("QSR_raise_exception")


def test_text_beside_numbers_is_classified_as_text(caplog):
    assert numpy_whatis(objects(1.5, "a", 2)) == (["a"], "float_str")
    assert [r.levelname for r in caplog.records] == ["WARNING"]


def test_the_documentation():
    assert (
        "Classifies a 1-d numpy array as array of alphanumeric strings, int strings, "
        "float strings, ints or floats."
    ) in " ".join(numpy_whatis.__doc__.split())
