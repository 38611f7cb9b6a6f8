"""Both routes of a routine show the same on any column, whichever name forces the slow one."""

from __future__ import annotations

import numpy as np
from columns import flags, marked
from hypothesis import strategies as st
from properties import property_test
from recipes import Recipe
from routes import (
    SHAPES,
    SHORT,
    cases,
    compare_routes,
    frame_of,
    long_columns,
    names_for,
    objects,
    plain_markers,
    route_markers,
    spread,
    tables,
)

TEXT_KINDS = [
    "numbers as text",
    "numbers and lone signs",
    "numbers and words",
    "nearly numbers",
    "words",
    "any text",
    "text and missing",
]
NUMBER_KINDS = [
    "small integers",
    "integers",
    "floats",
    "whole floats",
    "numbers and missing",
    "numbers",
    "booleans",
    "booleans and missing",
]


@property_test(weight=6, case=cases(TEXT_KINDS), by=names_for("numpy_whatis"))
def test_kind_of_text(case, by):
    X, values = case
    compare_routes("numpy_whatis", by, (X, values))


@property_test(weight=6, case=cases(), by=names_for("numpy_whatis"))
def test_kind_of_any_column(case, by):
    X, values = case
    compare_routes("numpy_whatis", by, (X, values))
    compare_routes("numpy_whatis", by, (X,))


@property_test(
    weight=3,
    case=cases(lengths=SHORT),
    by=names_for("numpy_whatis"),
    stop=st.booleans(),
    debug=st.sampled_from([False, False, False, True]),
    counted=st.booleans(),
    stats=st.booleans(),
)
def test_kind_and_statistics(case, by, stop, debug, counted, stats):
    X, values = case
    kwargs = {
        "stop_at_one_missing_value_flag": stop,
        "use_dtype_str1_flag": counted,
        "return_stats_flag": stats,
    }
    if debug:
        kwargs["debug"] = True
    compare_routes("numpy_whatis", by, (X, values), kwargs)


@property_test(weight=1, case=cases(TEXT_KINDS), by=names_for("numpy_whatis"))
def test_statistics_of_text(case, by):
    X, values = case
    compare_routes("numpy_whatis", by, (X, values), {"return_stats_flag": True})


@property_test(weight=4, case=cases(), by=names_for("numpy_isin"), debug=flags)
def test_isin(case, by, debug):
    X, values = case
    compare_routes("numpy_isin", by, (X, values))
    if debug is True:
        compare_routes("numpy_isin", by, (X, values), {"debug": debug})


hashable = st.one_of(
    st.sampled_from(["?", "", "-", "1", "a", "1.5", "N/A", "\u00e9", "\ud800", "\x00", "a\x00"]),
    st.sampled_from([0, 1, 2, -1, 2.5, 1.0, -0.0, True, False, None, np.nan, 10**30, 2**63]),
    st.sampled_from([np.str_("1"), np.float64(1.5), np.int64(2), b"1", (1, 2), float("inf")]),
)
sets = st.one_of(st.sets(hashable, max_size=9), st.frozensets(hashable, max_size=3))


@property_test(
    weight=4,
    X=long_columns(),
    members=sets,
    own=st.integers(0, 3),
    by=names_for("indicator_mask"),
)
def test_membership(X, members, own, by):
    plain = (str, int, float, bool, type(None))
    more = [cell for cell in X.values[-own:] if own and type(cell) in plain]
    compare_routes("indicator_mask", by, (set(members) | set(more), X))
    compare_routes("indicator_mask", by, (members, X))


@property_test(
    weight=4, case=cases(), stop=st.booleans(), by=names_for("numpy_compute_missing_indicator")
)
def test_missing_indicator(case, stop, by):
    X, values = case
    compare_routes("numpy_compute_missing_indicator", by, (X, values, stop))


@property_test(
    weight=4,
    case=cases(),
    by=names_for("get_unique_values"),
    index=st.booleans(),
    inverse=st.booleans(),
    counts=st.booleans(),
)
def test_unique_values(case, by, index, inverse, counts):
    y, exclusion_list = case
    compare_routes("get_unique_values", by, (y, exclusion_list), {"return_counts": counts})
    compare_routes("get_unique_values", by, (y,), {"return_counts": True})
    compare_routes("get_unique_values", by, (y, exclusion_list, index, inverse, counts))


@property_test(weight=3, case=cases(TEXT_KINDS), by=names_for("numpy_isintstr"))
def test_integer_test_of_text(case, by):
    X, values = case
    compare_routes("numpy_isintstr", by, (X, values))


@property_test(weight=3, case=cases(), by=names_for("numpy_isintstr"))
def test_integer_test_of_any_column(case, by):
    X, values = case
    compare_routes("numpy_isintstr", by, (X, values))


@property_test(weight=3, case=cases(TEXT_KINDS), by=names_for("numpy_floatstr2float"))
def test_conversion_of_text(case, by):
    X, values = case
    compare_routes("numpy_floatstr2float", by, (X, values))


@property_test(weight=3, case=cases(), by=names_for("numpy_floatstr2float"))
def test_conversion_of_any_column(case, by):
    X, values = case
    compare_routes("numpy_floatstr2float", by, (X, values))


@property_test(
    weight=3,
    X=st.one_of(long_columns(NUMBER_KINDS), long_columns()),
    by=names_for("FCplus.is_num_column_categorical"),
    uni_max=st.sampled_from([0, 1, 2, 3, 5, 10, 100, 100, 2.5, True, float("nan"), np.int64(3)]),
    uni_ratio=st.sampled_from([0.0, 0.1, 0.5, 1, 2.0, float("nan"), np.float64(0.25)]),
)
def test_few_distinct_numbers(X, by, uni_max, uni_ratio):
    compare_routes("FCplus.is_num_column_categorical", by, (X,))
    compare_routes("FCplus.is_num_column_categorical", by, (X, uni_max, uni_ratio))


@property_test(weight=2, case=cases(), by=names_for("FCplus.is_column_categorical"))
def test_categorical_column(case, by):
    compare_routes("FCplus.is_column_categorical", by, case)


@property_test(weight=3, case=cases(), exclude=flags, by=names_for("FCplus.getClasses"))
def test_classes(case, exclude, by):
    y, values = case
    compare_routes("FCplus.getClasses", by, (y,))
    compare_routes("FCplus.getClasses", by, (y, exclude, values))


bounds = st.sampled_from([0, 1, 2.5, -1.0, 100, 10**30, float("inf"), float("nan"), np.float64(2)])
factors = st.lists(st.sampled_from([1, 2.54, 0.5, 0, -1, 10**30, float("inf")]), max_size=3)


@property_test(
    weight=3,
    X=st.one_of(long_columns(NUMBER_KINDS), long_columns(lengths=SHORT)),
    numbers=st.lists(bounds, min_size=5, max_size=5),
    units=factors,
    by=names_for("FCplus.check_statistics"),
)
def test_statistics_check(X, numbers, units, by):
    compare_routes("FCplus.check_statistics", by, (frame_of(X), *numbers, units))


@property_test(
    weight=2,
    X=st.one_of(long_columns(NUMBER_KINDS), long_columns(lengths=SHORT)),
    routine=st.sampled_from(["is_column_height", "is_column_weight", "is_column_age"]),
    by=st.sampled_from(["FCplus", "FCplus.check_statistics"]),
)
def test_measures(X, routine, by):
    compare_routes("FCplus." + routine, by, (frame_of(X),))


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
    """Mostly a mask of the shape of X, in memory in any way."""
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
    """Labels with and without white space, some of them beside numbers and nulls."""
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
