"""Both routes of a conversion, a replacement and a compression have the same outcome."""

from __future__ import annotations

import numpy as np
from hypothesis import strategies as st

from helpers.arrays import objects
from helpers.column_strategies import TEXT_KINDS, flags, marked
from helpers.native_lookups import names_for
from helpers.property_tests import property_test
from helpers.recipes import Recipe
from helpers.route_columns import (
    NUMBER_KINDS,
    SHAPES,
    SHORT,
    long_columns,
    plain_markers,
    route_markers,
    spread,
    tables,
)
from helpers.routes import compare_routes

CONVERTED = TEXT_KINDS + NUMBER_KINDS + ["text and numbers"]
listed = st.lists(
    st.sampled_from(
        ["?", "", "1", None, np.nan, 0, 1, 2.5, True, False, 2**53, 1e30, 10**30, -0.0]
    ),
    max_size=5,
)


@property_test(
    weight=4, case=marked(long_columns(CONVERTED), listed), by=names_for("numpy_isintstr")
)
def test_what_is_listed_is_not_converted(case, by):
    compare_routes("numpy_isintstr", by, case)
    compare_routes("numpy_floatstr2float", by, case)


@property_test(
    weight=2,
    case=marked(
        st.one_of(long_columns(["booleans"]), long_columns(NUMBER_KINDS, SHORT)),
        st.one_of(st.none(), listed, route_markers),
    ),
    by=names_for("numpy_boolean2float"),
)
def test_conversion_of_flags(case, by):
    compare_routes("numpy_boolean2float", by, case)


@property_test(
    weight=6,
    X=st.one_of(long_columns(NUMBER_KINDS), long_columns()),
    fast=flags,
    by=names_for("numpy_column_float2str"),
)
def test_conversion_to_text(X, fast, by):
    compare_routes("numpy_column_float2str", by, (X, fast))
    compare_routes("numpy_column_float2str", by, (X, False))


patterns = st.integers(0, 2**64 - 1)
exact_decimals = st.builds(
    lambda digits, power: float("{}e{}".format(digits, power)),
    st.integers(-(10**17), 10**17),
    st.integers(-30, 25),
)


@property_test(
    weight=1,
    values=st.lists(
        st.one_of(
            patterns.map(lambda bits: float(np.uint64(bits).view(np.float64))),
            exact_decimals,
            st.integers(-1074, 1023).map(lambda power: 2.0**power),
            st.floats(),
        ),
        min_size=1,
        max_size=200,
    ),
    dtype=st.sampled_from([object, np.float64]),
)
def test_digits_of_floats(values, dtype):
    column = Recipe(repr(values), lambda inner: np.array(values, dtype=dtype))
    compare_routes("numpy_column_float2str", "pd", (column,))
    compare_routes("numpy_column_float2str", "pd", (column, False))
    texts = objects(*[repr(value) for value in values])
    compare_routes("numpy_floatstr2float", "isfloat", (texts,))
    more = objects(*["{:.{}e}".format(value, len(values) % 25) for value in values])
    compare_routes("numpy_floatstr2float", "isfloat", (more,))


fillings = st.sampled_from(
    ["?", "x", "", 0, -1.5, 10**30, None, True, float("nan"), np.nan, [], [1, 2], (None,),
     np.float64(1.5), np.str_("a"), np.array([1, "a"], dtype=object), np.array(2), {"a": 1}]
)  # fmt: skip


@st.composite
def masks_for(draw, X):
    """Mostly a mask of the shape of X, in any memory layout."""
    bits = draw(st.integers(0, 2**64 - 1))
    shape = draw(st.sampled_from(["plain", "strided", "reversed", "read only"]))
    kind = draw(st.sampled_from(["bool", "bool", "bool", "bool", "int", "list", "short", "none"]))

    def make(inner):
        size = np.size(inner(X))
        flat = np.array([bits >> (i % 64) & 1 for i in range(size)], dtype=bool)
        if kind == "short":
            return flat[1:]
        if kind == "none":
            return np.zeros(np.shape(inner(X)), dtype=bool)
        mask = SHAPES[shape](flat.astype(int) if kind == "int" else flat).reshape(
            np.shape(inner(X))
        )
        return mask.tolist() if kind == "list" else mask

    return Recipe("{} mask {:x}, {}".format(kind, bits, shape), make)


columns_and_tables = st.one_of(long_columns(), long_columns(CONVERTED), tables())


@property_test(
    weight=5,
    case=columns_and_tables.flatmap(lambda X: st.tuples(st.just(X), masks_for(X))),
    filling=fillings,
    by=names_for("numpy_putmask"),
)
def test_putmask(case, filling, by):
    compare_routes("numpy_putmask", by, (*case, filling))


list_for_each = st.lists(st.one_of(plain_markers, listed), min_size=1, max_size=5)


@property_test(
    weight=6,
    case=marked(columns_and_tables, st.one_of(listed, route_markers, list_for_each)),
    filling=fillings,
    invert=st.one_of(st.booleans(), flags),
    by=names_for("numpy_replace_values"),
)
def test_replacement(case, filling, invert, by):
    X, values = case
    compare_routes("numpy_replace_values", by, (X, filling, values))
    compare_routes("numpy_replace_values", by, (X, filling, values, invert))


spaced = st.text(alphabet="aB9 _-\t\x1c\x00\u00e9\u2003\u6f22\U0001d7d8\ud800", max_size=6)
labels = st.one_of(
    spaced, spaced, st.integers(0, 140).map(lambda size: "x y" * size), st.just("\u00e9" * 60)
)


@st.composite
def label_columns(draw):
    """Labels with and without white space, some with numbers and nulls among them."""
    cells = draw(st.lists(labels, min_size=1, max_size=12))
    if draw(st.booleans()):
        other = st.sampled_from([None, np.nan, 1.5, 7, True, "?", "nan", "None", 10**30])
        cells += draw(st.lists(other, max_size=4))
    cells = draw(st.permutations(cells)) * draw(st.sampled_from([1, 1, 2, 30]))
    return spread(cells, draw(st.sampled_from("OU")), draw(st.sampled_from(sorted(SHAPES))))


@property_test(
    weight=6,
    case=marked(st.one_of(label_columns(), label_columns(), long_columns()), route_markers),
    mode=st.sampled_from(["string", "hash", "string", "hash", "", "Hash", None, 0]),
    by=names_for("compress_str_column"),
)
def test_compression(case, mode, by):
    compare_routes("compress_str_column", by, case)
    compare_routes("compress_str_column", by, (*case, mode))
