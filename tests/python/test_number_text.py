"""Which texts are numbers: every short text over the characters of the grammar.

The expected answers are those of ``int()`` and ``float()``. All 5,220 texts of up to three
characters are tested, and 25 x QUORIN_CASES of the 83,521 texts of four: all of them from
QUORIN_CASES=3341 on.
"""

from __future__ import annotations

import itertools
import random

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.property_tests import CASES, SEED
from quorin_libs.utils.exportable_utils import isfloat, isint, numpy_whatis

# One character of each class of the grammar, and one outside of it.
ALPHABET = "09_+-.eE \t\x1cnaif\0x"

# Beyond ASCII: digits and white space, which are accepted, a letter and a fraction, which are not.
OTHER_SCRIPTS = "1._- \u0663\uff15\U0001d7d7\xa0\u2003\xe9\xbd\x85"


def texts(alphabet, length):
    return ["".join(characters) for characters in itertools.product(alphabet, repeat=length)]


def drawn(population, size):
    if size >= len(population):
        return population
    return random.Random(SEED).sample(population, size)


def accepts(built_in, text):
    try:
        built_in(text)
    except ValueError:
        return False
    return True


def kind_by_built_ins(text):
    """The kind of a column of this text: a float text without a dot is plain text."""
    if accepts(int, text):
        return "int_str"
    return "float_str" if "." in text and accepts(float, text) else "char_str"


def differences(population):
    """The texts for which a predicate or the classifier differs from the built-ins."""
    different = []
    for text in population:
        expected = accepts(int, text), accepts(float, text)
        if (isint(text), isfloat(text)) != expected:
            different.append(("str", text))
        if (isint(np.str_(text)), isfloat(np.str_(text))) != expected:
            different.append(("np.str_", text))
        kind = kind_by_built_ins(text)
        if numpy_whatis(objects(text), [])[1] != kind:
            different.append(("object column", text))
        # Fixed-width text drops trailing zeros.
        if not text.endswith("\0") and numpy_whatis(np.array([text]), [])[1] != kind:
            different.append(("fixed-width column", text))
    return different


@pytest.mark.parametrize("length", [0, 1, 2, 3])
def test_all_texts_of_up_to_three_characters(length):
    population = texts(ALPHABET, length)
    assert len(population) == 17**length
    assert differences(population) == []


def test_texts_of_four_characters():
    assert differences(drawn(texts(ALPHABET, 4), 25 * CASES)) == []


@pytest.mark.parametrize("length", [1, 2, 3])
def test_texts_with_characters_of_other_scripts(length):
    assert differences(texts(OTHER_SCRIPTS, length)) == []


def test_longer_texts():
    """Lengths around multiples of eight: kernels read eight characters at once."""
    draw = random.Random(SEED)
    population = []
    for _ in range(10 * CASES):
        text = [draw.choice("0123456789") for _ in range(draw.randint(5, 40))]
        for _ in range(draw.randint(0, 3)):
            text[draw.randrange(len(text))] = draw.choice(".-+_eE \tx\xe9\u0663")
        population.append("".join(text))
    kinds = {kind_by_built_ins(text) for text in population}
    assert kinds == {"int_str", "float_str", "char_str"}
    assert differences(population) == []
