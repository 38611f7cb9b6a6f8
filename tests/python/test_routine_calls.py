"""Calls of a routine: every way of passing arguments, and every wrong one."""

from __future__ import annotations

import functools
import textwrap

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.fresh_interpreter import run_fresh
from helpers.interface_table import MODULE, PRESENT, routine, row_id

every_routine = pytest.mark.parametrize("row", PRESENT, ids=row_id)


# Calls that succeed: every way of writing the arguments reaches the same parameters.


class Text(str):
    pass


def spelled(name):
    """An equal text with another identity: keywords are compared by identity first."""
    return "".join(list(name))


@pytest.mark.parametrize(
    "args, kwargs, expected",
    [
        ((1,), {}, 1),
        ((1, 2), {}, 1),
        ((None, 2), {}, 2),
        ((None,), {}, None),
        ((None,), {"def_value": 2}, 2),
        ((), {"variable": None, "def_value": 2}, 2),
        ((), {"def_value": 2, "variable": None}, 2),
        ((), {"variable": 1}, 1),
        ((None,), {spelled("def_value"): 2}, 2),
        ((None,), {Text("def_value"): 2}, 2),
    ],
)
def test_positional_or_keyword(args, kwargs, expected):
    call = eu.setValueOrDefault
    assert call(*args, **kwargs) == expected
    assert call.__call__(*args, **kwargs) == expected
    assert functools.partial(call, *args)(**kwargs) == expected
    assert functools.partial(call, **kwargs)(*args) == expected


def test_written_calls():
    call = eu.setValueOrDefault
    assert call(None, 2) == 2
    assert call(None, def_value=2) == 2
    assert call(variable=None, def_value=2) == 2
    assert call(def_value=2, variable=None) == 2
    assert call(*[None], def_value=2) == 2
    assert call(None, **{"def_value": 2}) == 2


def test_calls_from_c():
    assert list(map(eu.isint, ["1", "x", 2.5])) == [True, False, True]
    assert list(map(eu.setValueOrDefault, [None, 1], [2, 3])) == [2, 1]
    assert list(filter(eu.isfloat, ["1.5", "x"])) == ["1.5"]
    assert sorted(["x", "1"], key=eu.isint) == ["x", "1"]
    assert np.vectorize(eu.isint)(["1", "x"]).tolist() == [True, False]


ENDLESS = {
    "through a slot": """
        class Endless: __int__ = eu.isint
        call = lambda: eu.isint(Endless())
        """,
    "through a float slot": """
        class Endless: __float__ = eu.isfloat
        call = lambda: eu.isfloat(Endless())
        """,
    "through a partial": """
        eu.numpy_flatten_column = functools.partial(eu.numpy_isin, values_reference_list=[1])
        call = lambda: eu.numpy_isin([1], [1])
        """,
    "through the class": """
        eu.FC = eu.FCplus
        eu.FCplus.is_epoch = staticmethod(eu.FCplus.is_column_epoch)
        call = lambda: eu.FCplus.is_column_epoch(1)
        """,
    "from routine to routine": """
        eu.numpy_isin = eu.numpy_compute_missing_indicator
        call = lambda: eu.numpy_compute_missing_indicator(eu.np.array(["a"]), ["?"])
        """,
    "from method to method": """
        eu.FCplus.is_column_categorical = staticmethod(eu.FCplus.find_categorical_columns)
        call = lambda: eu.FCplus.find_categorical_columns(eu.np.array([[1, 2]]))
        """,
}


@pytest.mark.parametrize("how", sorted(ENDLESS))
def test_endless_recursion_is_an_error(tmp_path, how):
    head = "import functools\nimport {} as eu\n".format(MODULE)
    tail = """
    try:
        call()
    except RecursionError as error:
        answer(str(error))
    """
    code = head + textwrap.dedent(ENDLESS[how]) + textwrap.dedent(tail)
    assert run_fresh(code, tmp_path).startswith("maximum recursion depth exceeded")


def test_six_parameters_in_any_spelling(monkeypatch):
    seen = []
    monkeypatch.setattr(eu.np, "unique", lambda *args: seen.append(args))
    y = np.array([1])
    eu.get_unique_values(y, None, 1, 2, 3, True)
    eu.get_unique_values(return_counts=3, return_inverse=2, return_index=1, y=y)
    eu.get_unique_values(y, [], 1, return_counts=3, return_inverse=2)
    assert seen == [(y, 1, 2, 3)] * 3


@every_routine
def test_arguments_are_not_kept(row):
    """A call that raises does not change its keyword dictionary."""
    kwargs = {"unexpected": 1}
    with pytest.raises(TypeError):
        routine(eu, row)(*[0] * row.required, **kwargs)
    assert kwargs == {"unexpected": 1}


# Wrong calls.


def count_text(row, given):
    if given < row.required:
        expected, word = row.required, "at least"
    else:
        expected, word = len(row.parameters), "at most"
    if row.required == len(row.parameters):
        word = "exactly"
    return "{}() takes {} {} positional argument{} ({} given)".format(
        row.name, word, expected, "" if expected == 1 else "s", given
    )


def wrong_calls_of_one_parameter(row):
    yield (), {}, row.name + "() takes exactly one argument (0 given)"
    yield (1, 2), {}, row.name + "() takes exactly one argument (2 given)"
    yield (1, 2, 3), {}, row.name + "() takes exactly one argument (3 given)"
    yield (), {row.names[0]: 1}, row.name + "() takes no keyword arguments"
    yield (1,), {row.names[0]: 1}, row.name + "() takes no keyword arguments"
    yield (1,), {"unexpected": 1}, row.name + "() takes no keyword arguments"


def wrong_calls_of_more(row):
    names, size, required = row.names, len(row.parameters), row.required
    for given in range(required):
        yield (0,) * given, {}, count_text(row, given)
        yield (0,) * given, {"unexpected": 1}, count_text(row, given)
        optional = {name: 0 for name in names[required:]}
        yield (0,) * given, optional, count_text(row, given)
        for missing in range(given, required):
            others = names[given:missing] + names[missing + 1 :]
            yield (0,) * given, {name: 0 for name in others}, count_text(row, missing)
            others = names[given:missing] + ["unexpected"]
            yield (0,) * given, {name: 0 for name in others}, count_text(row, missing)
    for given in (size + 1, size + 3):
        yield (0,) * given, {}, count_text(row, given)
        yield (0,) * given, {names[0]: 0}, count_text(row, given)
    for keyword in ("unexpected", names[0] + "_", names[-1].upper() + "x", "\u00e4\u20ac", ""):
        text = "{}() got an unexpected keyword argument '{}'".format(row.name, keyword)
        yield (0,) * required, {keyword: 1}, text
        yield (0,) * size, {keyword: 1}, text
        every = {name: 0 for name in names}
        every[keyword] = 1
        yield (), every, text
    for index, name in enumerate(names):
        text = "{}() got multiple values for keyword argument '{}'".format(row.name, name)
        yield (0,) * max(required, index + 1), {name: 1}, text
        yield (0,) * size, {spelled(name): 1}, text


WRONG_CALLS = [
    (row, args, kwargs, text)
    for row in PRESENT
    for args, kwargs, text in (
        wrong_calls_of_one_parameter(row) if row.one else wrong_calls_of_more(row)
    )
]


def written(call, args, kwargs):
    """Call with the keywords written in source code."""
    if not all(name.isidentifier() for name in kwargs):
        return call(*args, **kwargs)
    words = ["a[{}]".format(i) for i in range(len(args))]
    words += ["{0}=k[{0!r}]".format(name) for name in kwargs]
    return eval("call({})".format(", ".join(words)), {"call": call, "a": args, "k": kwargs})


SHAPES = {
    "unpacked": lambda call, args, kwargs: call(*args, **kwargs),
    "written": written,
    "partial": lambda call, args, kwargs: functools.partial(call, *args, **kwargs)(),
    "partial keywords": lambda call, args, kwargs: functools.partial(call, **kwargs)(*args),
    "slot": lambda call, args, kwargs: call.__call__(*args, **kwargs),
}


@pytest.mark.parametrize("shape", sorted(SHAPES))
@every_routine
def test_wrong_calls(row, shape):
    calls = [wrong for wrong in WRONG_CALLS if wrong[0] is row]
    assert calls
    for _, args, kwargs, text in calls:
        with pytest.raises(TypeError) as caught:
            SHAPES[shape](routine(eu, row), args, kwargs)
        assert str(caught.value) == text, (args, kwargs)


@pytest.mark.parametrize(
    "call, text",
    [
        (
            lambda: eu.numpy_select_columns(),
            "numpy_select_columns() takes exactly 2 positional arguments (0 given)",
        ),
        (
            lambda: eu.numpy_select_columns(columns_indices_list=[0]),
            "numpy_select_columns() takes exactly 2 positional arguments (0 given)",
        ),
        (
            lambda: eu.numpy_select_columns(X=[0], other=1),
            "numpy_select_columns() takes exactly 2 positional arguments (1 given)",
        ),
        (
            lambda: eu.setValueOrDefault(),
            "setValueOrDefault() takes at least 1 positional argument (0 given)",
        ),
        (
            lambda: eu.setValueOrDefault(1, 2, 3),
            "setValueOrDefault() takes at most 2 positional arguments (3 given)",
        ),
        (
            lambda: eu.numpy_whatis(debug=True),
            "numpy_whatis() takes at least 1 positional argument (0 given)",
        ),
        (
            lambda: eu.QSR_raise_exception(1, 2, 3, 4, 5, 6),
            "QSR_raise_exception() takes at most 5 positional arguments (6 given)",
        ),
        (
            lambda: eu.FCplus.is_column_longitude(name="x"),
            "is_column_longitude() takes at least 1 positional argument (0 given)",
        ),
        (
            lambda: eu.FCplus.is_column_epoch(column=[]),
            "is_column_epoch() takes no keyword arguments",
        ),
    ],
)
def test_wrong_calls_spelled_out(call, text):
    with pytest.raises(TypeError) as caught:
        call()
    assert str(caught.value) == text


@pytest.mark.parametrize("row", [r for r in PRESENT if not r.one], ids=row_id)
@pytest.mark.parametrize("key", [1, None, b"X", ("X",)])
@pytest.mark.parametrize("shape", ["unpacked", "slot"])
def test_keywords_must_be_texts(row, key, shape):
    with pytest.raises(TypeError) as caught:
        SHAPES[shape](routine(eu, row), (0,) * row.required, {key: 2})
    assert str(caught.value) == "keywords must be strings"
