"""What the classifier looks up when it is called, and the failures that leave it."""

from __future__ import annotations

from decimal import Decimal

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.replacements import record, replace_in
from helpers.values import message_of, names_in_traceback
from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import numpy_whatis

DEFAULT = exportable_utils.global_missing_values_reference_list
UNSET = "local variable 'dtype_str_found' referenced before assignment"


# --- names looked up at call time -------------------------------------------------------------


def test_each_text_is_tested_as_integer_and_as_float(monkeypatch):
    isint, isfloat = record(monkeypatch, "isint"), record(monkeypatch, "isfloat")
    numpy_whatis(objects("1", "2.5", "?", "a"))
    # The question mark after numbers ends the scan before it is tested.
    assert isint.calls == isfloat.calls == [(("1",), {}), (("2.5",), {})]


@pytest.mark.parametrize(
    "isint, isfloat, text, kind",
    [
        (True, False, "a", "int_str"),
        (True, False, "a.", "char_str"),
        (False, True, "a", "char_str"),
        (False, True, "a.", "float_str"),
        (True, True, "a", "int_str"),
        (True, True, ".", "float_str"),
        ("yes", None, "a", "int_str"),
        ([], 1, "a.", "float_str"),
        (False, False, "1", "char_str"),
        (False, False, "1.5", "char_str"),
    ],
)
def test_the_point_decides_with_the_predicates(monkeypatch, isint, isfloat, text, kind):
    record(monkeypatch, "isint", lambda value: isint)
    record(monkeypatch, "isfloat", lambda value: isfloat)
    assert numpy_whatis(objects(text)) == ([], kind)


def test_six_says_what_text_is(monkeypatch):
    replace_in(monkeypatch, "six", string_types=(bytes,))
    with pytest.raises(UnboundLocalError) as excinfo:
        numpy_whatis(objects("1"))
    assert str(excinfo.value) == UNSET


def test_numbers_says_what_an_integer_is(monkeypatch):
    replace_in(monkeypatch, "numbers", Integral=Decimal)
    assert numpy_whatis(objects(Decimal("1.5"))) == ([], "int_num")


@pytest.mark.parametrize(
    "replaced, kind",
    [({"integer": Decimal}, "int_num"), ({"bool_": Decimal}, "boolean")],
)
def test_np_says_what_integers_and_booleans_are(monkeypatch, replaced, kind):
    # With a `float` of its own the stand-in asks numpy for none, which old versions warn about.
    replace_in(monkeypatch, "np", float=float, **replaced)
    assert numpy_whatis(objects(Decimal("1.5"))) == ([], kind)


@pytest.mark.parametrize("whole, kind", [(True, "float_int_num"), (False, "float_num")])
def test_np_float_is_asked_beside_float(monkeypatch, whole, kind):
    class Fixed:
        def is_integer(self):
            return whole

    replace_in(monkeypatch, "np", float=Fixed)
    assert numpy_whatis(objects(Fixed())) == ([], kind)
    assert numpy_whatis(np.array([0.5])) == ([], "float_num")


def test_a_float_says_itself_whether_it_is_whole(monkeypatch):
    class Odd(float):
        def is_integer(self):
            raise RuntimeError("odd")

    with pytest.raises(RuntimeError, match="^odd$"):
        numpy_whatis(objects(Odd(1.0)))


@pytest.mark.parametrize(
    "name, args",
    [
        ("numpy_flatten_column", (objects("1"),)),
        ("numpy_compute_missing_indicator", (objects("1"), ["?"])),
        ("get_unique_values", (objects("1"), ["?"])),
        ("get_unique_values", (objects("1"),)),
        ("isint", (objects("a"),)),
        ("isfloat", (objects("a"),)),
        ("six", (objects("1"),)),
        ("six", (np.array([1]),)),
        ("numbers", (np.array([1.5]),)),
        ("np", (objects("1"),)),
        ("np", (np.array([True]), ["?"])),
        ("FCplus", (objects("1"),)),
        ("time", (objects("1"), None, False, True)),
    ],
)
def test_a_name_that_is_gone_is_named(monkeypatch, name, args):
    monkeypatch.delattr(exportable_utils, name)
    with pytest.raises(NameError) as excinfo:
        numpy_whatis(*args)
    assert str(excinfo.value) == "name '{}' is not defined".format(name)


@pytest.mark.parametrize(
    "name, args",
    [
        ("isint", (np.array([1]),)),
        ("isfloat", (np.array([1]),)),
        ("numbers", (objects("1"),)),
        ("numpy_compute_missing_indicator", (objects("1"),)),
        ("numpy_compute_missing_indicator", (objects("1"), [])),
        ("time", (objects("1"), ["?"])),
    ],
)
def test_a_name_that_is_not_needed_may_be_gone(monkeypatch, name, args):
    monkeypatch.delattr(exportable_utils, name)
    assert numpy_whatis(*args)[1] in ("int_num", "int_str")


# --- failures ---------------------------------------------------------------------------------


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
    """What has a dtype and a part, and rows unless it is among those that have lost count."""

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
