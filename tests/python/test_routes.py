"""Both routes of a routine have the same outcome, whichever name forces the interpreter route."""

from __future__ import annotations

import numpy as np
from hypothesis import strategies as st

from helpers.column_strategies import TEXT_KINDS, flags
from helpers.comparison import module, replaced
from helpers.native_lookups import DATASET_CHECKS, names_for
from helpers.property_tests import property_test
from helpers.recipes import Recipe
from helpers.route_columns import (
    NUMBER_KINDS,
    SHAPES,
    SHORT,
    cases,
    frame_of,
    framed,
    long_columns,
    number_tables,
    route_markers,
    spread,
)
from helpers.routes import compare_routes, pass_through


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


@property_test(
    weight=3,
    case=cases(NUMBER_KINDS),
    by=names_for("numpy_whatis"),
    stop=st.booleans(),
    counted=st.booleans(),
)
def test_statistics_of_numbers(case, by, stop, counted):
    X, values = case
    kwargs = {"stop_at_one_missing_value_flag": stop, "use_dtype_str1_flag": counted}
    compare_routes("numpy_whatis", by, (X, values), dict(kwargs, return_stats_flag=True))
    compare_routes("numpy_whatis", by, (X, values), kwargs)
    compare_routes("numpy_whatis", by, (X,), kwargs)


def _bits(dtype, patterns):
    return np.array(patterns, dtype="u{}".format(dtype[1])).view(dtype)


# Zeros of both signs and NaNs of several bit patterns: the sort decides which of them is kept.
UNLIKE = {
    "f8": _bits(
        "f8", [0, 1 << 63, 0x7FF8 << 48, 0xFFF8 << 48, (0x7FF8 << 48) + 5, 1, 0x3FF0 << 48]
    ),
    "f4": _bits(
        "f4", [0, 1 << 31, 0x7FC0 << 16, 0xFFC0 << 16, (0x7FC0 << 16) + 5, 1, 0x3F80 << 16]
    ),
}


NATIVE_SHAPES = set(SHAPES) - {"byte-swapped"}


@st.composite
def unlike_equals(draw):
    dtype = draw(st.sampled_from(sorted(UNLIKE)))
    kinds = draw(st.lists(st.sampled_from(range(7)), min_size=1, max_size=5))
    rows = draw(st.sampled_from([1, 2, 3, 15, 16, 17, 40, 64, 65, 130, 300, 1000]))
    seed, shape = draw(st.integers(0, 10**6)), draw(st.sampled_from(sorted(NATIVE_SHAPES)))

    def make(inner):
        numbers = np.random.RandomState(seed).choice(kinds, rows)
        return SHAPES[shape](UNLIKE[dtype][numbers])

    return Recipe("{} {} rows of {} {} seed {}".format(shape, rows, dtype, kinds, seed), make)


def bits_of(result):
    """The bits of the arrays of a result."""
    arrays = [part for part in result if isinstance(part, np.ndarray)]
    return [(array.dtype, array.tobytes()) for array in arrays]


@property_test(
    weight=3,
    X=unlike_equals(),
    markers=st.sampled_from([None, [], ["?"], ["?", np.nan], [1.0, None], [0.0]]),
    by=names_for("get_unique_values"),
    counts=st.booleans(),
)
def test_zeros_and_nulls_to_the_bit(X, markers, by, counts):
    column = X.make(None)
    with replaced(module, {by: pass_through(by)}):
        forced = module.get_unique_values(column, markers, return_counts=counts)
        whatis = markers and module.numpy_whatis(column, markers, return_stats_flag=True)[2]
    plain = module.get_unique_values(column, markers, return_counts=counts)
    as_tuple = (lambda result: result) if counts else (lambda result: (result,))
    assert bits_of(as_tuple(plain)) == bits_of(as_tuple(forced))
    if markers:
        stats = module.numpy_whatis(column, markers, return_stats_flag=True)[2]
        assert bits_of(stats.values()) == bits_of(whatis.values())


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


@property_test(
    weight=4, case=cases(NUMBER_KINDS), by=names_for("FCplus.getClasses"), stats=st.booleans()
)
def test_numbers_as_objects(case, by, stats):
    X, values = case
    compare_routes("numpy_whatis", by, (X, values), {"return_stats_flag": stats})
    compare_routes("get_unique_values", by, (X, values), {"return_counts": stats})
    compare_routes("numpy_compute_missing_indicator", by, (X, values or []))
    compare_routes("FCplus.getClasses", by, (X, stats, values))
    compare_routes("FCplus.is_column_categorical", by, (X, values))


@property_test(weight=2, case=cases(), by=names_for("FCplus.is_column_categorical_mult_cats"))
def test_several_categories(case, by):
    compare_routes("FCplus.is_column_categorical_mult_cats", by, case)


@property_test(weight=3, case=cases(), by=names_for("numpy_get_categories"))
def test_categories(case, by):
    X, values = case
    compare_routes("numpy_get_categories", by, (X, [0], values))


@property_test(weight=2, case=cases(TEXT_KINDS), by=names_for("numpy_get_categories"))
def test_categories_of_text(case, by):
    X, values = case
    compare_routes("numpy_get_categories", by, (X, [0], values or ["?"]))


@property_test(weight=3, case=cases(), exclude=flags, by=names_for("FCplus.getClasses"))
def test_classes(case, exclude, by):
    y, values = case
    compare_routes("FCplus.getClasses", by, (y,))
    compare_routes("FCplus.getClasses", by, (y, exclude, values))


bounds = st.sampled_from([0, 1, 2.5, -1.0, 100, 10**30, float("inf"), float("nan"), np.float64(2)])
factors = st.lists(st.sampled_from([1, 2.54, 0.5, 0, -1, 10**30, float("inf")]), max_size=3)


@property_test(
    weight=3,
    frame=framed(st.one_of(long_columns(NUMBER_KINDS), long_columns(lengths=SHORT))),
    numbers=st.lists(bounds, min_size=5, max_size=5),
    units=factors,
    by=names_for("FCplus.check_statistics"),
)
def test_statistics_check(frame, numbers, units, by):
    compare_routes("FCplus.check_statistics", by, (frame, *numbers, units))


@property_test(
    weight=2,
    frame=framed(st.one_of(long_columns(NUMBER_KINDS), long_columns(lengths=SHORT))),
    routine=st.sampled_from(["is_column_height", "is_column_weight", "is_column_age"]),
    by=st.sampled_from(["FCplus", "FCplus.check_statistics"]),
)
def test_measures(frame, routine, by):
    compare_routes("FCplus." + routine, by, (frame,))


# Columns of numbers that all pass, or all but a few.
near = st.lists(st.sampled_from([62, 66, 66.5, 70, 75, 58, 78, 130, 200, 0, 1]), max_size=6)
AROUND = {"f8": 66.0, "f4": 66.0, "i8": 66, "i4": 66, "u8": 66, "i1": 66, "?": True, "O": 66.0}


@property_test(
    weight=2,
    odd=near,
    dtype=st.sampled_from(sorted(AROUND)),
    rows=st.sampled_from([1, 2, 31, 513, 1030]),
    shape=st.sampled_from(sorted(SHAPES)),
    routine=st.sampled_from(["is_column_height", "is_column_weight", "is_column_age"]),
    by=st.sampled_from(["FCplus", "FCplus.check_statistics"]),
)
def test_measures_that_nearly_fit(odd, dtype, rows, shape, routine, by):
    X = spread(([AROUND[dtype]] * rows + odd)[-rows:], dtype, shape)
    compare_routes("FCplus." + routine, by, (frame_of(X),))
    compare_routes("FCplus.check_statistics", by, (frame_of(X), 66, 2.9, 0, 100.0, 3, [1, 2.54]))
    compare_routes("FCplus.check_statistics", by, (frame_of(X), 66.5, 10, 1, 99, 4, [0.5, 1.0]))


sexes = st.sampled_from([["male", "female"], ["m", "f"], ["female"], ["m", "female"], ["f", "f"]])
no_sexes = st.sampled_from(
    ["M", "mal", "females", "", None, np.nan, "m\x00", "\u00e9", 1, [1], "\ud800"]
)


@property_test(
    weight=3,
    words=sexes,
    rows=st.sampled_from([1, 2, 3, 70, 200]),
    odd=st.lists(no_sexes, max_size=2),
    place=st.integers(0, 199),
    twins=st.booleans(),
    by=names_for("FCplus.is_column_sex"),
)
def test_sexes(words, rows, odd, place, twins, by):
    values = [words[i * i % 3 % len(words)] for i in range(rows)]
    for value in odd:
        values[place % rows] = value
    compare_routes("FCplus.is_column_sex", by, (frame_of(spread(values, "O", "plain", twins)),))


@property_test(
    weight=4,
    X=number_tables(),
    markers=st.one_of(st.none(), route_markers, st.just([1.0, np.nan]), st.just([np.nan, None])),
    routine=st.sampled_from(DATASET_CHECKS),
    by=names_for("FCplus.is_dataset_missing"),
)
def test_tables_of_numbers(X, markers, routine, by):
    compare_routes("FCplus." + routine, by, (X, markers))
