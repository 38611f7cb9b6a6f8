"""The six tests that pass a column to ``FC``."""

from __future__ import annotations

import types

import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.replacements import Recorder

# Routine, the test of FC that it calls, arguments given, arguments that FC receives.
COLUMN = [object()]
NAME = "".join(["lo", "n"])
DELEGATIONS = [
    ("is_column_constant", "is_constant", (COLUMN,), {}, (COLUMN,)),
    (
        "is_column_string_in_datetime_format",
        "is_string_in_datetime_format",
        (COLUMN,),
        {},
        (COLUMN,),
    ),
    ("is_column_epoch", "is_epoch", (COLUMN,), {}, (COLUMN,)),
    ("is_column_distance", "is_distance", (COLUMN,), {}, (COLUMN,)),
    ("is_column_longitude", "is_longitude", (COLUMN,), {}, (COLUMN, None)),
    ("is_column_longitude", "is_longitude", (COLUMN, NAME), {}, (COLUMN, NAME)),
    ("is_column_longitude", "is_longitude", (COLUMN,), {"name": NAME}, (COLUMN, NAME)),
    ("is_column_longitude", "is_longitude", (), {"name": NAME, "column": COLUMN}, (COLUMN, NAME)),
    ("is_column_latitude", "is_latitude", (COLUMN,), {}, (COLUMN, None)),
    ("is_column_latitude", "is_latitude", (COLUMN, NAME), {}, (COLUMN, NAME)),
    ("is_column_latitude", "is_latitude", (COLUMN,), {"name": NAME}, (COLUMN, NAME)),
    ("is_column_latitude", "is_latitude", (), {"name": NAME, "column": COLUMN}, (COLUMN, NAME)),
]
every_delegation = pytest.mark.parametrize("method, test, args, kwargs, received", DELEGATIONS)


class Answer:
    """A result that must be returned unchanged: every operation raises."""

    def __bool__(self):
        raise AssertionError("the answer's truth value was taken")

    __eq__ = __hash__ = __len__ = __iter__ = None  # type: ignore[assignment]


class Untouchable:
    """A column that the routine may not read."""

    def __getattribute__(self, name):
        raise AssertionError("the column was looked at: " + name)

    def __len__(self):
        raise AssertionError("the column's length was taken")

    def __getitem__(self, index):
        raise AssertionError("a cell was read")


@every_delegation
@pytest.mark.parametrize("through", ["class", "instance"])
def test_fc_receives_the_arguments_and_its_answer_comes_back(
    monkeypatch, method, test, args, kwargs, received, through
):
    answer = Answer()
    recorder = Recorder(lambda *args: answer)
    monkeypatch.setattr(eu, "FC", types.SimpleNamespace(**{test: recorder}))
    owner = eu.FCplus if through == "class" else eu.FCplus()
    assert getattr(owner, method)(*args, **kwargs) is answer
    ((seen, keywords),) = recorder.calls
    assert keywords == {}
    assert len(seen) == len(received)
    assert all(one is other for one, other in zip(seen, received))


@every_delegation
def test_a_test_replaced_on_the_class_is_honoured(
    monkeypatch, method, test, args, kwargs, received
):
    recorder = Recorder(lambda *args: "answer")
    monkeypatch.setattr(eu.FC, test, recorder)
    assert getattr(eu.FCplus, method)(*args, **kwargs) == "answer"
    assert recorder.calls == [(received, {})]


@every_delegation
def test_exception_of_fc_propagates(monkeypatch, method, test, args, kwargs, received):
    class Raised(BaseException):
        pass

    raised = Raised("x")

    def fail(*args):
        raise raised

    monkeypatch.setattr(eu, "FC", types.SimpleNamespace(**{test: fail}))
    with pytest.raises(Raised) as caught:
        getattr(eu.FCplus, method)(*args, **kwargs)
    assert caught.value is raised
    assert raised.__cause__ is None and raised.__context__ is None


@every_delegation
def test_fc_without_the_test(monkeypatch, method, test, args, kwargs, received):
    monkeypatch.setattr(eu, "FC", type("FC", (), {}))
    with pytest.raises(AttributeError) as caught:
        getattr(eu.FCplus, method)(*args, **kwargs)
    assert str(caught.value) == "type object 'FC' has no attribute '{}'".format(test)


@every_delegation
def test_fc_unbound(monkeypatch, method, test, args, kwargs, received):
    monkeypatch.delattr(eu, "FC")
    with pytest.raises(NameError) as caught:
        getattr(eu.FCplus, method)(*args, **kwargs)
    assert str(caught.value) == "name 'FC' is not defined"


@pytest.mark.parametrize("method, test", sorted({row[:2] for row in DELEGATIONS}))
def test_the_column_is_not_looked_at(monkeypatch, method, test):
    column = Untouchable()
    recorder = Recorder(lambda *args: 1)
    monkeypatch.setattr(eu, "FC", types.SimpleNamespace(**{test: recorder}))
    assert getattr(eu.FCplus, method)(column) == 1
    assert recorder.calls[0][0][0] is column


@pytest.mark.parametrize("answer", [True, False, None, 0, "", [], 5.5])
def test_plain_answers_are_not_converted(monkeypatch, answer):
    monkeypatch.setattr(eu, "FC", types.SimpleNamespace(is_constant=lambda column: answer))
    assert eu.FCplus.is_column_constant([]) is answer
