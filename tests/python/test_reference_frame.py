"""Model and module agree on error raising, single values and the plain delegations."""

from __future__ import annotations

from typing import Any

import pytest
from hypothesis import strategies as st

from helpers.cell_values import OBJECTS, SCALARS
from helpers.column_strategies import cells, columns, flags, texts
from helpers.comparison import DELETED, compare, model, module, replaced
from helpers.description import Describer
from helpers.property_tests import property_test
from helpers.tracing import Trace


def caught(error: Exception, depth: int) -> Exception:
    """The error with a traceback."""
    try:
        if depth:
            raise error from caught(KeyError("cause"), depth - 1)
        raise error
    except Exception as e:
        return e


class Bare:
    __traceback__ = None


errors = st.one_of(
    st.none(),
    st.builds(
        caught,
        st.sampled_from([ValueError("bad"), TypeError(), OSError(2, "gone"), Exception("a\nb")]),
        st.integers(0, 1),
    ),
    st.builds(ValueError, st.just("never raised")),
    st.sampled_from([5, "text", Bare()]),
)
messages = st.one_of(
    st.none(), st.text(max_size=6), st.sampled_from([7, b"m", (), ["m"], Exception("e")])
)
types = st.sampled_from(
    [
        "FileNotFoundError",
        "ValueError",
        "TypeError",
        "Exception",
        "valueerror",
        "KeyError",
        "",
        None,
        3,
    ]
)


@property_test(
    weight=2,
    message=messages,
    kind=types,
    error=errors,
    trace_flag=flags,
    log_flag=flags,
    count=st.integers(0, 5),
)
def test_raise_exception(message, kind, error, trace_flag, log_flag, count):
    values = (message, kind, error, trace_flag, log_flag)
    names = (
        "error_message",
        "exception_type",
        "exception_obj",
        "exception_trace_flag",
        "logger_error_flag",
    )
    compare("QSR_raise_exception", values[:count], dict(zip(names[count:], values[count:])))
    compare("QSR_raise_exception", values[:count])


@property_test(weight=3, value=st.one_of(texts, texts, cells, columns()))
def test_single_values(value):
    compare("isint", (value,))
    compare("isfloat", (value,))
    encoded = value.encode("utf-8", "replace") if isinstance(value, str) else value
    if encoded is not value:
        for form in (bytes, bytearray):
            compare("isint", (form(encoded),))
            compare("isfloat", (form(encoded),))


@property_test(variable=cells, default=cells, keyword=st.booleans())
def test_set_value_or_default(variable, default, keyword):
    if keyword:
        compare("setValueOrDefault", (variable,), {"def_value": default})
    else:
        compare("setValueOrDefault", (variable, default))
    compare("setValueOrDefault", (variable,))
    compare("setValueOrDefault", (None, default))


def test_set_value_or_default_hands_back_the_very_object():
    for value in OBJECTS + SCALARS:
        for side in (model, module):
            assert side.setValueOrDefault(value, None) is value
            assert side.setValueOrDefault(None, value) is value


class RecordingFC:
    """Returns the given answer from every test, and records the calls."""

    def __init__(self, answer: Any) -> None:
        self.answer = answer
        self.asked: Any = []

    def __getattr__(self, name: str) -> Any:
        def test(*args: Any, **kwargs: Any) -> Any:
            self.asked.append((name, len(args), args, kwargs))
            if isinstance(self.answer, Exception):
                raise self.answer
            return self.answer

        return test


DELEGATIONS = {
    "is_column_constant": "is_constant",
    "is_column_string_in_datetime_format": "is_string_in_datetime_format",
    "is_column_epoch": "is_epoch",
    "is_column_distance": "is_distance",
    "is_column_longitude": "is_longitude",
    "is_column_latitude": "is_latitude",
}


@pytest.mark.parametrize("routine", sorted(DELEGATIONS))
def test_delegations_pass_the_very_objects(routine):
    column, name = object(), object()
    extra = ((), (name,), (None,)) if routine.endswith("itude") else ((),)
    for answer in (True, False, None, [], Describer(), ValueError("refused")):
        for more in extra:
            asked = []
            for side in (model, module):
                fc = RecordingFC(answer)
                with replaced(side, {"FC": fc}):
                    if isinstance(answer, Exception):
                        with pytest.raises(ValueError) as caught_error:
                            getattr(side.FCplus, routine)(column, *more)
                        assert caught_error.value is answer
                    else:
                        assert getattr(side.FCplus, routine)(column, *more) is answer
                asked.append(fc.asked)
            assert asked[0] == asked[1]
            wanted = (column,) + (more or (None,)) if len(extra) > 1 else (column,)
            assert asked[1] == [(DELEGATIONS[routine], len(wanted), wanted, {})]


@property_test(weight=0.5, column=columns(), name=st.one_of(st.none(), texts))
def test_delegations(column, name):
    for routine in DELEGATIONS:
        compare("FCplus." + routine, (column,))
        compare("FCplus." + routine, (column,), trace=Trace(["FC"]))
    for routine in ("is_column_longitude", "is_column_latitude"):
        compare("FCplus." + routine, (column, name))
        compare("FCplus." + routine, (column,), {"name": name})


def test_missing_name_is_a_name_error():
    shown = compare("FCplus.is_column_epoch", (1,), stand_ins={"FC": DELETED})
    assert shown["error"] == (NameError, "name 'FC' is not defined")
