"""``isint``, ``isfloat`` and ``setValueOrDefault``, compared with the built-ins."""

from __future__ import annotations

import array
import itertools
import sys
import warnings
from decimal import Decimal
from fractions import Fraction

import numpy as np
import pytest

import quorin_libs.utils.exportable_utils as eu


def outcome(function, value):
    """The result of a call, or class and text of its exception; and its warnings."""
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        try:
            result = function(value)
        except BaseException as error:
            result = (type(error), str(error))
    return result, [(warning.category, str(warning.message)) for warning in caught]


def accepted_by(built_in):
    def test(value):
        try:
            built_in(value)
        except ValueError:
            return False
        return True

    return test


def check(value, float_too=True):
    assert outcome(eu.isint, value) == outcome(accepted_by(int), value), repr(value)[:80]
    if float_too:
        assert outcome(eu.isfloat, value) == outcome(accepted_by(float), value), repr(value)[:80]


# Texts.

CORES = [
    "", "0", "7", "12", "007", "1_000", "1__0", "_1", "1_", "1_.5", "1._5", "1.", ".5", ".", "1.5",
    "1.5.5", "1,5", "1 2", "e5", "1e", "1e5", "1E-3", "1e+3", "1e+", "1e1_0", "1e400", "1e-400",
    "inf", "Infinity", "iNf", "infin", "infinityx", "nan", "NaN", "nanx", "nan(1)", "0x1f",
    "0x1p3", "0b1", "0o7", "1L", "1l", "1j", "True", "None", "a", "?", "-", "+", "*", "$5", "5%",
    "\u0663", "\u0661\u0662", "\u0967.\u0968", "\uff11\uff12", "\U0001d7d8", "\u00b2", "\u00bd",
    "\u2160", "\u4e00", "\u221e", "\u22121", "1\u066b5", "1\x005", "\x00", "1\x00", "\ud800",
    "1\ud8005", "\udc31", "\U0001f600", "9" * 30, "9" * 400, "0." + "3" * 400, "1" + "0" * 308,
    "1" + "0" * 309, "2" * 4299, "2" * 4300, "2" * 4301, "0" * 5000, "1_" * 4300 + "1",
    "9" * 4301 + "x", "3." + "1" * 5000,
]  # fmt: skip
SIGNS = ["", "+", "-", "--", "+-", "- ", "\u2212"]
SPACES = [
    "", " ", "  ", "\t", "\n", "\r\n", "\x0b", "\x0c", "\x1c", "\x1d", "\x1e", "\x1f", "\x85",
    "\xa0", "\u1680", "\u2003", "\u2028", "\u202f", "\u3000", "\u200b", "\ufeff", "\u180e", "\x00",
]  # fmt: skip


@pytest.mark.parametrize("core", CORES, ids=lambda core: ascii(core)[:20])
def test_texts(core):
    for sign, space in itertools.product(SIGNS, SPACES):
        for text in (sign + core, space + sign + core, sign + core + space):
            check(text)
            check(space + text + space)


def test_short_texts_of_number_letters():
    for size in range(1, 5):
        for letters in itertools.product("0+-._e ", repeat=size):
            check("".join(letters))


def test_every_character_alone_and_beside_a_digit():
    for point in itertools.chain(range(0x3100), range(0xD7F0, 0xE010), range(0xFF00, 0x11100)):
        check(chr(point))
        check("1" + chr(point))


@pytest.mark.parametrize("core", CORES, ids=lambda core: ascii(core)[:20])
@pytest.mark.parametrize("kind", [bytes, bytearray, memoryview, np.bytes_, type("B", (bytes,), {})])
def test_bytes(core, kind):
    data = core.encode("utf-8", "surrogatepass")
    for padded in (data, b" " + data, data + b"\n", b"-" + data, data + b"\xa0"):
        check(kind(padded))


@pytest.mark.parametrize("core", CORES, ids=lambda core: ascii(core)[:20])
@pytest.mark.parametrize("kind", [np.str_, type("Text", (str,), {})])
def test_kinds_of_text(core, kind):
    for text in (core, " " + core, "-" + core + "\t"):
        check(kind(text))


@pytest.mark.skipif(not hasattr(sys, "set_int_max_str_digits"), reason="no limit of digits")
@pytest.mark.parametrize("limit", [0, 640, 5000])
def test_limit_of_digits_is_the_one_in_force(limit):
    before = sys.get_int_max_str_digits()
    sys.set_int_max_str_digits(limit)
    try:
        for digits in (639, 640, 641, 4300, 4301, 5000, 5001):
            check("8" * digits)
            check("-" + "8" * digits + " ")
            check(b"8" * digits)
        assert eu.isint("8" * 641) is (limit != 640)
        assert eu.isfloat("8" * 641) is True
    finally:
        sys.set_int_max_str_digits(before)


# Numbers and other objects.

NUMBERS = [
    0, 1, -1, 10**30, 10**400, -(10**400), True, False, 0.0, -0.0, 3.7, 1e308, float("nan"),
    float("inf"), float("-inf"), 1j, complex(1, 0), Decimal("1.5"), Decimal("NaN"),
    Decimal("sNaN"), Decimal("Infinity"), Decimal("1e500"), Fraction(1, 3), Fraction(10**400, 3),
    np.int8(5), np.uint64(2**64 - 1), np.bool_(True), np.float16(1.5), np.float32("nan"),
    np.float64("inf"), np.float64(3.7), np.longdouble("1.5"), np.complex128(1),
    np.datetime64("2020-01-01"), np.datetime64("2020-01-01", "ns"), np.datetime64("NaT", "s"),
    np.timedelta64(5, "s"), np.void(b"1"), np.array(5), np.array("5"), np.array([5]),
    np.array(["5"]), np.array([1, 2]), np.array([]), np.array("x"), np.array(None),
]  # fmt: skip
OTHERS = [
    None, Ellipsis, NotImplemented, [], [1], ["1"], (), (1,), {}, {1}, range(3), object(), object,
    int, float, len, slice(1), array.array("b", b"12"), array.array("i", [1]), memoryview(b"1x"),
    bytearray(b"12"), bytearray(b"x"), bytearray(b"1.5"), b"", bytearray(),
]  # fmt: skip


@pytest.mark.parametrize("value", NUMBERS + OTHERS, ids=lambda value: type(value).__name__)
def test_objects(value):
    check(value)


class Wrong(ValueError):
    pass


RETURNED = [5, -1, 2.5, True, "5", b"5", None, Decimal(5), np.int64(5), np.float64(5), 10**400]
RAISED = [
    ValueError("v"), Wrong("w"), UnicodeDecodeError("ascii", b"", 0, 1, "u"), TypeError("t"),
    OverflowError("o"), KeyError("k"), AttributeError("a"), StopIteration(1), Exception("e"),
    KeyboardInterrupt("i"), GeneratorExit("g"), SystemExit(3),
]  # fmt: skip
SLOTS = ["__int__", "__float__", "__index__", "__trunc__"]
BASES = [
    (object, ()),
    (str, ("12",)),
    (str, ("x",)),
    (int, (3,)),
    (float, (3.5,)),
    (bytes, (b"x",)),
]


def odd(base, args, slot, give):
    return type("Odd", (base,), {slot: lambda self: give()})(*args)


@pytest.mark.parametrize("slot", SLOTS)
@pytest.mark.parametrize("base, args", BASES)
def test_special_methods_that_return(slot, base, args):
    for result in RETURNED:
        value = odd(base, args, slot, lambda result=result: result)
        # Wrong results of __float__ have their own messages, tested below.
        plain = slot != "__float__" or base in (str, bytes) or type(result) is float
        check(value, float_too=plain)


@pytest.mark.parametrize("slot", SLOTS)
@pytest.mark.parametrize("base, args", BASES)
def test_special_methods_that_raise(slot, base, args):
    for error in RAISED:

        def give(error=error):
            raise error

        check(odd(base, args, slot, give))


@pytest.mark.parametrize("base, args", [pair for pair in BASES if pair[0] not in (str, bytes)])
@pytest.mark.parametrize(
    "result", [r for r in RETURNED if not isinstance(r, float)], ids=lambda r: type(r).__name__
)
def test_float_method_that_returns_no_float(base, args, result):
    value = odd(base, args, "__float__", lambda: result)
    with pytest.raises(TypeError) as built_in:
        float(value)
    with pytest.raises(TypeError) as caught:
        eu.isfloat(value)
    # The message of the built-in starts with the name of the class.
    assert "Odd." + str(caught.value) == str(built_in.value)
    assert str(caught.value).startswith("__float__ returned non-float (type ")


def test_long_name_of_the_wrong_type_is_cut():
    long = type("L" * 300, (), {})
    with pytest.raises(TypeError) as caught:
        eu.isfloat(odd(object, (), "__float__", long))
    assert str(caught.value) == "__float__ returned non-float (type {})".format("L" * 200)


def test_float_method_that_returns_a_kind_of_float():
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        assert eu.isfloat(odd(object, (), "__float__", lambda: np.float64(2.5))) is True


@pytest.mark.parametrize("error", RAISED, ids=lambda error: type(error).__name__)
@pytest.mark.parametrize("predicate, slot", [(eu.isint, "__int__"), (eu.isfloat, "__float__")])
def test_only_value_errors_are_caught(predicate, slot, error):
    def give():
        raise error

    value = odd(object, (), slot, give)
    if isinstance(error, ValueError):
        assert predicate(value) is False
        return
    with pytest.raises(type(error)) as caught:
        predicate(value)
    assert caught.value is error


def test_method_found_on_the_type_only():
    class Plain:
        pass

    value = Plain()
    value.__int__ = value.__float__ = lambda: 1
    check(value)


# Exact results.


@pytest.mark.parametrize("value", ["12", 12.9, True, False, " 12 ", 3.7, 0, -1, "1_0", b"7"])
def test_is_int(value):
    assert eu.isint(value) is True


@pytest.mark.parametrize("value", ["12.0", "", "?", float("nan"), "3.5", "1e5", "nan", "1 2", "-"])
def test_is_not_int(value):
    assert eu.isint(value) is False


@pytest.mark.parametrize(
    "value",
    ["nan", "1e-3", b"2.5", "inf", "-Infinity", "1e5", "3.5", " 12 ", True, float("nan"), 7, 1.5],
)
def test_is_float(value):
    assert eu.isfloat(value) is True


@pytest.mark.parametrize("value", ["", "-", "1,5", "?", "abc", b"", "0x10", "1 2", "1e"])
def test_is_not_float(value):
    assert eu.isfloat(value) is False


@pytest.mark.parametrize(
    "call, kind",
    [
        (lambda: eu.isint(None), TypeError),
        (lambda: eu.isint([1]), TypeError),
        (lambda: eu.isint(float("inf")), OverflowError),
        (lambda: eu.isfloat(None), TypeError),
        (lambda: eu.isfloat([1]), TypeError),
        (lambda: eu.isfloat(10**400), OverflowError),
    ],
)
def test_other_failures_propagate(call, kind):
    with pytest.raises(kind) as caught:
        call()
    assert type(caught.value) is kind


# setValueOrDefault.


class Hostile:
    """An object whose `bool()` and `==` raise."""

    def __bool__(self):
        raise AssertionError("truth value taken")

    def __eq__(self, other):
        raise AssertionError("compared")

    __hash__ = None  # type: ignore[assignment]


VALUES = [0, False, "", [], {}, 0.0, float("nan"), np.array([]), np.array([1, 2]), Hostile(), len]


@pytest.mark.parametrize("value", VALUES, ids=lambda value: type(value).__name__)
def test_value_is_returned_itself(value):
    assert eu.setValueOrDefault(value) is value
    assert eu.setValueOrDefault(value, 5) is value
    assert eu.setValueOrDefault(variable=value, def_value=None) is value


@pytest.mark.parametrize("value", VALUES + [None], ids=lambda value: type(value).__name__)
def test_default_is_returned_itself(value):
    assert eu.setValueOrDefault(None, value) is value
    assert eu.setValueOrDefault(None, def_value=value) is value


def test_no_default():
    assert eu.setValueOrDefault(None) is None
