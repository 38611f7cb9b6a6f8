"""``QSR_raise_exception``: the text, the log record and the class of what it raises."""

from __future__ import annotations

import logging
import operator
import sys
import traceback
import types

import pytest

import quorin_libs.utils.exportable_utils as eu

raise_exception = eu.QSR_raise_exception
UNSET = "Exception raised!\n"


def raised_by(*args, **kwargs):
    with pytest.raises(BaseException) as caught:
        raise_exception(*args, **kwargs)
    return caught.value


def caught_failure(text="inner"):
    try:
        raise KeyError(text)
    except KeyError as error:
        return error


def formatted(error):
    return "".join(traceback.format_exception(type(error), error, error.__traceback__))


class Truth:
    """A truth value that counts the calls of its `__bool__`."""

    def __init__(self, value):
        self.value = value
        self.taken = 0

    def __bool__(self):
        self.taken += 1
        if isinstance(self.value, BaseException):
            raise self.value
        return self.value


class Log:
    def __init__(self, failure=None):
        self.calls = []
        self.failure = failure

    def error(self, *args, **kwargs):
        self.calls.append((args, kwargs))
        if self.failure:
            raise self.failure


@pytest.fixture
def log(monkeypatch):
    log = Log()
    monkeypatch.setattr(eu, "logger", log)
    return log


# The class.


@pytest.mark.parametrize(
    "exception_type, kind",
    [
        ("FileNotFoundError", FileNotFoundError),
        ("ValueError", ValueError),
        ("TypeError", TypeError),
        ("Exception", Exception),
        ("valueerror", Exception),
        ("VALUEERROR", Exception),
        (" ValueError", Exception),
        ("ValueError ", Exception),
        ("ValueErro", Exception),
        ("KeyError", Exception),
        ("OSError", Exception),
        ("BaseException", Exception),
        ("KeyboardInterrupt", Exception),
        ("", Exception),
        (None, Exception),
        (5, Exception),
        (ValueError, Exception),
        (["ValueError"], Exception),
        ("".join(["Value", "Error"]), ValueError),
        (type("Text", (str,), {})("TypeError"), TypeError),
    ],
)
def test_class(exception_type, kind):
    error = raised_by("bad", exception_type=exception_type, logger_error_flag=False)
    assert type(error) is kind
    assert error.args == ("bad",)
    assert str(error) == "bad"


def test_file_not_found_has_no_error_number():
    error = raised_by("bad", "FileNotFoundError", None, False, False)
    assert (error.errno, error.strerror, error.filename) == (None, None, None)


@pytest.mark.parametrize(
    "equal, asked, kind",
    [
        ("FileNotFoundError", ["FileNotFoundError"], FileNotFoundError),
        ("ValueError", ["FileNotFoundError", "ValueError"], ValueError),
        ("TypeError", ["FileNotFoundError", "ValueError", "TypeError"], TypeError),
        ("x", ["FileNotFoundError", "ValueError", "TypeError"], Exception),
    ],
)
def test_equality_is_compared_in_order(equal, asked, kind, log):
    class Chosen:
        seen = []

        def __eq__(self, other):
            self.seen.append(other)
            return other == equal

    assert type(raised_by("bad", Chosen())) is kind
    assert Chosen.seen == asked


def test_failing_comparison_propagates_after_the_log(log):
    class Chosen:
        def __eq__(self, other):
            raise LookupError("eq")

    assert str(raised_by("bad", Chosen())) == "eq"
    assert log.calls == [(("bad",), {})]


# The message.


@pytest.mark.parametrize("args", [(), (None,)])
def test_no_message(args, log):
    error = raised_by(*args)
    assert type(error) is Exception
    assert error.args == (UNSET,)
    assert log.calls == [((UNSET,), {})]


@pytest.mark.parametrize("message", ["", "bad", "100%s", 0, False, b"x", ("a", 1), [1], {}, 5.5])
def test_message_is_passed_on_as_it_is(message, log):
    error = raised_by(message, "ValueError")
    assert len(error.args) == 1
    assert error.args[0] is message
    assert log.calls[0][0][0] is message


def test_all_parameters_by_keyword(log):
    failure = caught_failure()
    error = raised_by(
        logger_error_flag=True,
        exception_trace_flag=True,
        exception_obj=failure,
        exception_type="TypeError",
        error_message="m",
    )
    assert type(error) is TypeError
    assert error.args == ("m" + formatted(failure) + "\nExiting ...",)


# The traceback.


@pytest.mark.parametrize("message", ["bad", "", None])
def test_traceback_is_appended(message, log):
    failure = caught_failure()
    error = raised_by(message, exception_obj=failure, exception_trace_flag=True)
    text = (UNSET if message is None else message) + formatted(failure) + "\nExiting ..."
    assert error.args == (text,)
    assert log.calls == [((text,), {})]
    assert "KeyError: 'inner'\n\nExiting ..." in text


@pytest.mark.parametrize(
    "failure, flag",
    [(caught_failure(), False), (caught_failure(), 0), (caught_failure(), []), (None, True)],
)
def test_traceback_is_not_appended(failure, flag, log):
    error = raised_by("bad", "ValueError", failure, flag)
    assert error.args == ("bad",)
    assert log.calls == [(("bad",), {})]


def test_flag_is_read_only_if_an_object_is_given(log):
    flag = Truth(LookupError("flag"))
    assert raised_by("bad", exception_trace_flag=flag).args == ("bad",)
    assert flag.taken == 0
    assert raised_by("bad", "x", ValueError(), flag) is flag.value
    assert flag.taken == 1
    assert len(log.calls) == 1


def test_object_is_compared_with_none_by_identity(log):
    class Empty(Exception):
        def __bool__(self):
            return False

        def __eq__(self, other):
            return True

    failure = Empty("e")
    error = raised_by("bad", exception_obj=failure, exception_trace_flag=True)
    assert error.args == ("bad" + formatted(failure) + "\nExiting ...",)


def test_how_the_traceback_is_formatted(monkeypatch, log):
    calls = []

    def format_exception(*args, **kwargs):
        calls.append((args, kwargs))
        return iter(["a", "", "b\n"])

    monkeypatch.setattr(eu, "traceback", types.SimpleNamespace(format_exception=format_exception))
    failure = caught_failure()
    error = raised_by("m:", exception_obj=failure, exception_trace_flag=Truth(True))
    assert error.args == ("m:ab\n\nExiting ...",)
    if sys.version_info >= (3, 10):
        assert calls == [((KeyError,), {"value": failure, "tb": failure.__traceback__})]
    else:
        keywords = {"etype": KeyError, "value": failure, "tb": failure.__traceback__}
        assert calls == [((), keywords)]


def test_lines_that_are_no_texts(monkeypatch, log):
    stub = types.SimpleNamespace(format_exception=lambda *args, **kwargs: ["a", 5])
    monkeypatch.setattr(eu, "traceback", stub)
    error = raised_by("m", exception_obj=ValueError(), exception_trace_flag=True)
    assert type(error) is TypeError
    assert str(error) == "sequence item 1: expected str instance, int found"
    assert log.calls == []


@pytest.mark.parametrize("thing", [5, "text", [], object()])
def test_object_without_traceback(thing, log):
    error = raised_by("bad", exception_obj=thing, exception_trace_flag=True)
    assert type(error) is AttributeError
    text = "'{}' object has no attribute '__traceback__'".format(type(thing).__name__)
    assert str(error) == text
    assert log.calls == []


@pytest.mark.parametrize("message", [5, [], b"m", ("a",), 2.5])
def test_message_that_cannot_be_extended(message, log):
    with pytest.raises(TypeError) as expected:
        operator.add(message, "text")
    error = raised_by(message, "ValueError", caught_failure(), True)
    assert type(error) is TypeError
    assert str(error) == str(expected.value)
    assert log.calls == []


def test_message_with_its_own_addition(log):
    class Message(str):
        added = []

        def __add__(self, other):
            self.added.append(other)
            return Message(str(self) + "+")

    failure = caught_failure()
    error = raised_by(Message("m"), exception_obj=failure, exception_trace_flag=True)
    assert Message.added == [formatted(failure), "\nExiting ..."]
    assert error.args == ("m++",)


# The log.


@pytest.mark.parametrize("flag, logged", [(True, 1), (1, 1), ("x", 1), (False, 0), (None, 0)])
def test_log_flag(flag, logged, log):
    raised_by("bad", logger_error_flag=flag)
    assert log.calls == [(("bad",), {})] * logged


def test_log_flag_that_fails(log):
    flag = Truth(LookupError("flag"))
    assert raised_by("bad", "ValueError", None, False, flag) is flag.value
    assert flag.taken == 1
    assert log.calls == []


def test_log_that_fails(monkeypatch):
    failure = LookupError("log")
    monkeypatch.setattr(eu, "logger", Log(failure))
    assert raised_by("bad", "ValueError") is failure


def test_record_of_the_root_logger(caplog):
    caplog.set_level(logging.DEBUG)
    raised_by("100% %s bad", "ValueError")
    ((name, level, text),) = caplog.record_tuples
    assert (name, level, text) == ("root", logging.ERROR, "100% %s bad")


def test_nothing_is_logged_without_the_flag(caplog):
    caplog.set_level(logging.DEBUG)
    raised_by("bad", exception_type="ValueError", logger_error_flag=False)
    assert caplog.records == []


def test_nothing_is_printed(log, capsys):
    raised_by("bad", exception_obj=caught_failure(), exception_trace_flag=True)
    assert capsys.readouterr() == ("", "")


def test_handled_exception_is_the_context(log):
    try:
        raise KeyError("handled")
    except KeyError as handled:
        error = raised_by("bad", "ValueError", handled)
        assert error.__context__ is handled
    assert error.__cause__ is None
    assert error.__suppress_context__ is False
