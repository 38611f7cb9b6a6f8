"""Model and module agree on reference values, masks and distinct values."""

from __future__ import annotations

from hypothesis import strategies as st

from helpers.column_strategies import array_layouts, cells, columns, flags, marked, markers
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.tracing import Trace

reference_sets = st.one_of(
    st.sets(st.sampled_from(["?", "", "-", "1", "a", 1, 2.5, True, None, b"1"]), max_size=4),
    st.sampled_from([frozenset([1]), frozenset(["?"]), ["?", 1], ("?",), {"?": 0}, "?1", None, 5]),
    st.sampled_from([{frozenset([1]), 2}, {float("nan")}, {(1, 2)}]),
)


@property_test(
    weight=1.5,
    l=st.one_of(columns(), columns(), cells),
    members=reference_sets,
    traced=st.booleans(),
)
def test_indicator_mask(l, members, traced):  # noqa: E741
    trace = Trace() if traced else None
    compare("indicator_mask", (members, l), trace=trace)
    compare("indicator_mask", (members,), {"l": l})


@property_test(weight=3, case=marked(markers=markers), debug=flags, traced=st.booleans())
def test_isin(case, debug, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_isin", (X, values), trace=trace)
    compare("numpy_isin", (X,), {"values_reference_list": values, "debug": debug}, trace)


@property_test(weight=2, case=marked(columns(array_layouts), markers))
def test_isin_in_every_array_layout(case):
    X, values = case
    compare("numpy_isin", (X, values))


@property_test(weight=1, X=columns(array_layouts), traced=st.booleans())
def test_isin_with_the_column_among_its_own_values(X, traced):
    trace = Trace() if traced else None
    compare("numpy_isin", (X, X), trace=trace)
    compare("numpy_isin", (X, [X]), trace=trace)


@property_test(
    weight=3, case=marked(markers=markers), stop=flags, debug=flags, traced=st.booleans()
)
def test_compute_missing_indicator(case, stop, debug, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_compute_missing_indicator", (X, values, stop), trace=trace)
    compare(
        "numpy_compute_missing_indicator",
        (X, values),
        {"stop_at_one_missing_value_flag": stop, "debug": debug},
        trace,
    )


@property_test(
    weight=3,
    case=marked(),
    index=flags,
    inverse=flags,
    counts=flags,
    fast=flags,
    traced=st.booleans(),
)
def test_unique_values(case, index, inverse, counts, fast, traced):
    y, exclusion_list = case
    trace = Trace() if traced else None
    compare("get_unique_values", (y,), {"return_counts": counts}, trace)
    compare("get_unique_values", (y, exclusion_list, index, inverse, counts, fast), trace=trace)
    compare("get_unique_values", (y, exclusion_list), {"fast_str_conversion_flag": fast})
