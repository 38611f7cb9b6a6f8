"""Names are looked up when a routine runs, so replacing one changes every routine that uses it."""

from __future__ import annotations

import functools
import types

import numpy as np
import pytest
import quorin_libs.utils.exportable_utils as eu

# numpy's own word on `np.float`, which the oldest numpy still has.
pytestmark = pytest.mark.filterwarnings("ignore:`np.float` is a deprecated alias")


class Looked(BaseException):
    """Raised by a replaced name; no ``except Exception`` of a routine may swallow it."""


class Recorder:
    """A function that notes its calls and answers as ``answer`` does."""

    def __init__(self, answer):
        self.answer = answer
        self.calls = []

    def __call__(self, *args, **kwargs):
        self.calls.append((args, kwargs))
        return self.answer(*args, **kwargs)


class Overlay:
    """Another object's attributes, some of them replaced; notes which are read."""

    def __init__(self, base, **replaced):
        self._base = base
        self._read = []
        self._replaced = replaced

    def __getattr__(self, name):
        self._read.append(name)
        if name in self._replaced:
            value = self._replaced[name]
            if value is Looked:
                raise Looked(name)
            return value
        return getattr(self._base, name)


def objects(*values):
    column = np.empty(len(values), dtype=object)
    column[:] = values
    return column


def failure():
    try:
        raise KeyError("k")
    except KeyError as error:
        return error


NESTED = np.array([[1], [2]])
MIXED = objects("a", 1.5, "b")
WORDS = objects("a", "?", "b")

# A call, made anew each time, and the names that it looks up.
CALLS = {
    "select one of one": (
        lambda: eu.numpy_select_columns(["a"], [0]),
        ["logger.warning"],
    ),
    "select from a list": (lambda: eu.numpy_select_columns(["a", "b"], [1]), ["np.array"]),
    "flatten": (
        lambda: eu.numpy_flatten_column(NESTED),
        ["np.ndarray", "np.concatenate", "numpy_remove_second_dim"],
    ),
    "permute": (lambda: eu.numpy_permute_array(np.eye(2), [1, 0], 0), ["np.argsort"]),
    "float text": (
        lambda: eu.numpy_floatstr2float(objects("1.5", "?"), ["?"]),
        ["isfloat", "np.nan"],
    ),
    "boolean": (
        lambda: eu.numpy_boolean2float(np.array([True, False]), [False]),
        ["numpy_isin", "np.nan"],
    ),
    "to text": (
        lambda: eu.numpy_column_float2str(objects(1.5, None), False),
        ["pd.isnull"],
    ),
    "isin": (
        lambda: eu.numpy_isin(WORDS, ["?", np.nan]),
        ["numpy_flatten_column", "pd.isnull", "np.any", "np.asarray", "indicator_mask"],
    ),
    "isin without null": (
        lambda: eu.numpy_isin(WORDS, ["?"]),
        ["numpy_flatten_column", "pd.isnull", "np.any", "indicator_mask"],
    ),
    "isin all null": (
        lambda: eu.numpy_isin(WORDS, [None]),
        ["numpy_flatten_column", "pd.isnull", "np.any", "np.asarray"],
    ),
    "isin talking": (lambda: eu.numpy_isin(WORDS, ["?"], True), ["time.time"]),
    "mask": (lambda: eu.indicator_mask({"?"}, WORDS), ["np.vectorize"]),
    "indicator": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, ["?"]),
        ["numpy_isin", "np.any"],
    ),
    "indicator of nothing": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, []),
        ["np.zeros"],
    ),
    "indicator talking": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, ["?"], False, True),
        ["time.time"],
    ),
    "unique": (
        lambda: eu.get_unique_values(WORDS, ["?"], return_counts=True),
        ["numpy_isin", "np.unique"],
    ),
    "unique mixed": (
        lambda: eu.get_unique_values(MIXED),
        ["np.unique", "logger.warning", "numpy_column_float2str"],
    ),
    "unique fails": (
        lambda: eu.get_unique_values(objects([], {})),
        ["np.unique", "QSR_raise_exception"],
    ),
    "whatis": (
        lambda: eu.numpy_whatis(WORDS, ["?"]),
        [
            "numpy_flatten_column",
            "numpy_compute_missing_indicator",
            "get_unique_values",
            "six.string_types",
            "isint",
            "isfloat",
            "FCplus.is_column_string_in_datetime_format",
        ],
    ),
    "whatis without list": (
        lambda: eu.numpy_whatis(objects("1", "2")),
        ["numpy_flatten_column", "np.nan", "get_unique_values", "isint", "isfloat"],
    ),
    "whatis of something else": (
        lambda: eu.numpy_whatis(objects(b"x")),
        ["six.string_types", "np.integer", "numbers.Integral", "np.bool_"],
    ),
    # What the routines that it calls look up in their turn.
    "whatis of a matrix": (
        lambda: eu.numpy_whatis(NESTED, [1]),
        ["np.ndarray", "np.concatenate", "numpy_remove_second_dim"],
    ),
    "whatis below": (
        lambda: eu.numpy_whatis(WORDS, ["?"]),
        [
            "numpy_isin",
            "indicator_mask",
            "pd.isnull",
            "np.any",
            "np.vectorize",
            "np.unique",
            "FC.is_string_in_datetime_format",
        ],
    ),
    "whatis without list below": (
        lambda: eu.numpy_whatis(WORDS),
        ["numpy_isin", "pd.isnull", "np.any", "np.asarray", "np.unique"],
    ),
    "whatis of nothing missing": (lambda: eu.numpy_whatis(WORDS, ["z"]), ["np.zeros"]),
    "whatis mixed": (
        lambda: eu.numpy_whatis(MIXED),
        ["logger.warning", "numpy_column_float2str"],
    ),
    "indicator below": (
        lambda: eu.numpy_compute_missing_indicator(WORDS, ["?", np.nan]),
        ["numpy_flatten_column", "indicator_mask", "pd.isnull", "np.asarray", "np.vectorize"],
    ),
    "unique below": (
        lambda: eu.get_unique_values(WORDS, ["?"]),
        ["numpy_flatten_column", "indicator_mask", "pd.isnull", "np.any", "np.vectorize"],
    ),
    "boolean below": (
        lambda: eu.numpy_boolean2float(np.array([True, False]), [False]),
        ["numpy_flatten_column", "indicator_mask", "pd.isnull", "np.vectorize"],
    ),
    "whatis talking": (lambda: eu.numpy_whatis(WORDS, ["?"], debug=True), ["time.time"]),
    "raise": (lambda: eu.QSR_raise_exception("m", "ValueError"), ["logger.error"]),
    "raise with trace": (
        lambda: eu.QSR_raise_exception("m", "ValueError", failure(), True),
        ["traceback.format_exception", "logger.error"],
    ),
    "constant": (lambda: eu.FCplus.is_column_constant([1]), ["FC.is_constant"]),
    "date text": (
        lambda: eu.FCplus.is_column_string_in_datetime_format(["x"]),
        ["FC.is_string_in_datetime_format"],
    ),
    "epoch": (lambda: eu.FCplus.is_column_epoch([1]), ["FC.is_epoch"]),
    "longitude": (lambda: eu.FCplus.is_column_longitude([1]), ["FC.is_longitude"]),
    "latitude": (lambda: eu.FCplus.is_column_latitude([1]), ["FC.is_latitude"]),
    "distance": (lambda: eu.FCplus.is_column_distance([1]), ["FC.is_distance"]),
}
LOOK_UPS = [(case, name) for case, (_, names) in CALLS.items() for name in names]
GLOBALS = sorted({(case, name.partition(".")[0]) for case, name in LOOK_UPS})
# Looked up inside the guarded step, so the failure is reported as any other of that step.
GUARDED = [("unique mixed", "np"), ("unique fails", "np")]
# Functions of other modules that a test may replace where they live.
ELSEWHERE = [
    (case, name)
    for case, name in LOOK_UPS
    if "." in name and name.partition(".")[0] in ("np", "pd", "time", "traceback", "logger", "FC")
    if name not in ("np.ndarray", "np.nan", "np.integer", "np.bool_")
]


def plain(value):
    if isinstance(value, tuple):
        return tuple(map(plain, value))
    if isinstance(value, np.ndarray):
        return (value.dtype, value.tolist())
    if isinstance(value, list):
        return list(map(plain, value))
    return value


def result_of(case):
    """The result of the call, or the class and the first line of the exception, as a text."""
    try:
        return repr(plain(CALLS[case][0]()))
    except Exception as error:
        return repr((type(error), str(error).splitlines()[:1]))


def replace(monkeypatch, name, **how):
    """Put a stand-in under ``name``: a recorder for a routine, an overlay for a module."""
    owner, _, attribute = name.partition(".")
    original = getattr(eu, owner)
    if attribute:
        stand_in = Overlay(original, **{attribute: how["by"]} if how else {})
    else:
        stand_in = how.get("by") or Recorder(original)
    monkeypatch.setattr(eu, owner, stand_in)
    return stand_in


def look(*args, **kwargs):
    raise Looked


@pytest.mark.parametrize("case, name", LOOK_UPS)
def test_replaced_name_is_used(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        stand_in = replace(patch, name)
        assert result_of(case) == expected
        attribute = name.partition(".")[2]
        if attribute:
            assert attribute in stand_in._read
        else:
            assert stand_in.calls
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", LOOK_UPS)
def test_failure_of_a_replaced_name_propagates(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        replace(patch, name, by=Looked if "." in name else look)
        with pytest.raises(Looked):
            CALLS[case][0]()
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", GLOBALS)
def test_deleted_name(monkeypatch, case, name):
    expected = result_of(case)
    with monkeypatch.context() as patch:
        patch.delattr(eu, name)
        with pytest.raises(Exception) as caught:
            CALLS[case][0]()
        text = "name '{}' is not defined".format(name)
        if (case, name) in GUARDED:
            assert type(caught.value) is Exception
            assert "\nNameError: {}\n\nExiting ...".format(text) in str(caught.value)
        else:
            assert type(caught.value) is NameError
            assert str(caught.value) == text
    assert result_of(case) == expected


@pytest.mark.parametrize("case, name", ELSEWHERE)
def test_function_replaced_where_it_lives(monkeypatch, case, name):
    expected = result_of(case)
    owner, _, attribute = name.partition(".")
    owner = getattr(eu, owner)
    recorder = Recorder(getattr(owner, attribute))
    with monkeypatch.context() as patch:
        patch.setattr(owner, attribute, recorder)
        result = result_of(case)
    assert result == expected
    assert recorder.calls


# How the routines are called: by position or by keyword, with which objects.


def calls_of(monkeypatch, name, answer, call):
    recorder = Recorder(answer)
    owner, _, attribute = name.rpartition(".")
    if owner == "FCplus":
        monkeypatch.setattr(eu.FCplus, attribute, staticmethod(recorder))
    elif owner:
        monkeypatch.setattr(eu, owner, Overlay(getattr(eu, owner), **{attribute: recorder}))
    else:
        monkeypatch.setattr(eu, attribute, recorder)
    call()
    return recorder.calls


X = objects("a", "?", np.nan)
MARKERS = ["?", np.nan]
MASK = np.array([False, True, False])


@pytest.mark.parametrize(
    "name, answer, call, args, kwargs",
    [
        ("numpy_flatten_column", lambda x: x, lambda: eu.numpy_isin(X, MARKERS), (X,), {}),
        (
            "numpy_isin",
            lambda x, markers: MASK,
            lambda: eu.numpy_compute_missing_indicator(X, ["?"], True, True),
            (X, ["?"]),
            {},
        ),
        (
            "numpy_isin",
            lambda x, markers: MASK,
            lambda: eu.get_unique_values(X, MARKERS),
            (X, MARKERS),
            {},
        ),
        (
            "numpy_isin",
            lambda x, markers: np.array([True]),
            lambda: eu.numpy_boolean2float(np.array([True]), MARKERS),
            (np.array([True]), MARKERS),
            {},
        ),
        (
            "np.unique",
            lambda *args: 1,
            lambda: eu.get_unique_values(X, None, 1, 2, 3, 4),
            (X, 1, 2, 3),
            {},
        ),
        (
            "numpy_column_float2str",
            lambda **kwargs: np.array(["a"]),
            lambda: eu.get_unique_values(MIXED, fast_str_conversion_flag=7),
            (),
            {"X": MIXED, "fast_conversion_flag": 7},
        ),
        (
            "numpy_flatten_column",
            lambda x: x,
            lambda: eu.numpy_whatis(WORDS),
            (WORDS,),
            {},
        ),
        (
            "numpy_compute_missing_indicator",
            lambda x, *args, **kwargs: (np.zeros(3, bool), [], []),
            lambda: eu.numpy_whatis(WORDS, ["?"], 5, 0),
            (WORDS, ["?"]),
            {"stop_at_one_missing_value_flag": 5, "debug": 0},
        ),
        (
            "FCplus.is_column_string_in_datetime_format",
            lambda column: False,
            lambda: eu.numpy_whatis(objects("a", "b")),
            (objects("a", "b"),),
            {},
        ),
    ],
)
def test_arguments(monkeypatch, name, answer, call, args, kwargs):
    seen, keywords = calls_of(monkeypatch, name, answer, call)[0]
    assert repr(plain(seen)) == repr(plain(args))
    assert repr(sorted(keywords.items())) == repr(sorted(kwargs.items()))


def test_arguments_that_are_the_very_objects(monkeypatch):
    calls = calls_of(
        monkeypatch, "pd.isnull", np.vectorize(lambda v: v != v), lambda: eu.numpy_isin(X, MARKERS)
    )
    assert calls[0][0][0] is MARKERS
    assert calls[1][0][0] is X


def test_arguments_of_the_unique_values_of_whatis(monkeypatch):
    column = objects("a", "b")
    answer = (column, np.array([1, 1]))
    calls = calls_of(
        monkeypatch,
        "get_unique_values",
        lambda *args, **kwargs: answer,
        lambda: eu.numpy_whatis(column),
    )
    (((y, excluded), keywords),) = calls
    assert y is column
    assert type(excluded) is list and len(excluded) == 1 and excluded[0] is np.nan
    assert keywords == {"return_counts": True}


def test_arguments_of_the_report_of_a_failure(monkeypatch):
    calls = calls_of(
        monkeypatch,
        "QSR_raise_exception",
        lambda **kwargs: None,
        lambda: pytest.raises(UnboundLocalError, eu.get_unique_values, objects([], {})),
    )
    ((args, kwargs),) = calls
    assert args == ()
    assert list(kwargs) == ["exception_obj", "exception_trace_flag"]
    assert isinstance(kwargs["exception_obj"], TypeError)
    assert kwargs["exception_trace_flag"] is True


# What is answered in place of a routine is believed.


def test_answer_of_a_replaced_routine_is_used(monkeypatch):
    monkeypatch.setattr(eu, "numpy_isin", lambda x, markers: np.array([True, False, True]))
    assert eu.numpy_compute_missing_indicator(WORDS, ["z"])[0].tolist() == [True, False, True]
    assert eu.get_unique_values(WORDS, ["z"]).tolist() == ["?"]
    assert eu.numpy_whatis(objects("1", "x", "2"), ["z"]) == (["z"], "char_str")


@pytest.mark.parametrize("shape", ["partial", "class", "object"])
def test_any_callable_may_stand_in(monkeypatch, shape):
    def isint(value):
        return value == "x"

    class Instance:
        __call__ = staticmethod(isint)

    class Class:
        def __new__(cls, value):
            return isint(value)

    stand_ins = {"partial": functools.partial(isint), "class": Class, "object": Instance()}
    monkeypatch.setattr(eu, "isint", stand_ins[shape])
    assert eu.numpy_whatis(objects("x", "x")) == ([], "int_str")


def test_one_routine_may_stand_in_for_another(monkeypatch):
    monkeypatch.setattr(eu, "isint", eu.isfloat)
    assert eu.numpy_whatis(objects("nan", "nan")) == ([], "int_str")


def test_stand_in_that_is_not_callable(monkeypatch):
    monkeypatch.setattr(eu, "numpy_flatten_column", 5)
    with pytest.raises(TypeError, match="^'int' object is not callable$"):
        eu.numpy_isin(WORDS, ["?"])


def test_date_test_replaced_on_the_class(monkeypatch):
    for answer, expected in [(True, True), (False, False), ("", ""), ([1], True)]:
        stub = staticmethod(lambda column, answer=answer: answer)
        monkeypatch.setattr(eu.FCplus, "is_column_string_in_datetime_format", stub)
        statistics = eu.numpy_whatis(WORDS, ["?"], return_stats_flag=True)[2]
        assert statistics["datetime_column_flag"] == expected
        assert type(statistics["datetime_column_flag"]) is type(expected)


def test_date_test_missing_on_the_class(monkeypatch):
    monkeypatch.delattr(eu.FCplus, "is_column_string_in_datetime_format")
    with pytest.raises(AttributeError) as caught:
        eu.numpy_whatis(WORDS)
    text = "type object 'FCplus' has no attribute 'is_column_string_in_datetime_format'"
    assert str(caught.value) == text


def test_class_of_tests_replaced(monkeypatch):
    stub = types.SimpleNamespace(is_column_string_in_datetime_format=lambda column: 0)
    monkeypatch.setattr(eu, "FCplus", stub)
    assert eu.numpy_whatis(WORDS, ["?"], return_stats_flag=True)[2]["datetime_column_flag"] == 0


class Thing:
    """A value of no known kind, sortable by chance of being alone."""

    def is_integer(self):
        return False


@pytest.mark.parametrize(
    "name, attribute, kind",
    [
        ("numbers", "Integral", "int_num"),
        ("np", "integer", "int_num"),
        ("np", "bool_", "boolean"),
        ("np", "float", "float_num"),
        ("six", "string_types", "char_str"),
    ],
)
def test_kinds_follow_the_replaced_types(monkeypatch, name, attribute, kind):
    column = objects(b"x") if kind == "char_str" else objects(Thing())
    with pytest.raises(UnboundLocalError):
        eu.numpy_whatis(column)
    replaced = (bytes,) if kind == "char_str" else Thing
    monkeypatch.setattr(eu, name, Overlay(getattr(eu, name), **{attribute: replaced}))
    if kind == "char_str":
        monkeypatch.setattr(eu, "isint", lambda value: False)
        monkeypatch.setattr(eu, "isfloat", lambda value: False)
    assert eu.numpy_whatis(column) == ([], kind)


def test_time_replaced(monkeypatch, capsys):
    ticks = iter([10.0, 12.5])
    monkeypatch.setattr(eu, "time", types.SimpleNamespace(time=lambda: next(ticks)))
    eu.numpy_isin(objects("a"), ["a"], debug=True)
    assert capsys.readouterr().out == (
        "Starting numpy_isin(): Starting\n X column: ['a']\n\n"
        "Ending numpy_isin(): Ending, elapsed time (s)2.5\n"
    )


def test_logger_replaced(monkeypatch):
    log = types.SimpleNamespace(warning=Recorder(len))
    monkeypatch.setattr(eu, "logger", log)
    eu.numpy_select_columns(["a"], [0])
    text = (
        "numpy_select_columns(): Input array has only one column. No column selection will occur."
    )
    assert log.warning.calls == [((text,), {})]
