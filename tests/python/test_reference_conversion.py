"""Model and module agree on conversions between text, booleans and floats."""

from __future__ import annotations

from hypothesis import strategies as st

from helpers.column_strategies import FLAT, array_layouts, columns, flags, marked, optional_markers
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.tracing import Trace

text_kinds = [
    "numbers as text",
    "numbers and lone signs",
    "nearly numbers",
    "any text",
    "text and missing",
    "text and numbers",
]
boolean_kinds = ["booleans", "booleans", "booleans and missing"]


@property_test(
    weight=2,
    case=marked(st.one_of(columns(), columns(array_layouts, text_kinds))),
    traced=st.booleans(),
)
def test_floatstr2float(case, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_floatstr2float", (X, values), trace=trace)
    compare("numpy_floatstr2float", (X,), {"missing_values_reference_list": values})


@property_test(
    weight=2,
    X=st.one_of(columns(), columns(st.sampled_from(FLAT), boolean_kinds)),
    values=st.one_of(optional_markers, st.lists(st.sampled_from([True, False, 1, 0.0, "True"]))),
    traced=st.booleans(),
)
def test_boolean2float(X, values, traced):
    trace = Trace() if traced else None
    compare("numpy_boolean2float", (X, values), trace=trace)
    compare("numpy_boolean2float", (X,), {"missing_values_reference_list": values})


@property_test(weight=1, X=columns(), force=flags)
def test_convert_float32(X, force):
    compare("convert_float32", (X,))
    compare("convert_float32", (X, force))
    compare("convert_float32", (X,), {"force_flag": force})


@property_test(weight=2, X=columns(), fast=flags, traced=st.booleans())
def test_column_float2str(X, fast, traced):
    trace = Trace() if traced else None
    compare("numpy_column_float2str", (X, fast), trace=trace)
    compare("numpy_column_float2str", (X,), {"fast_conversion_flag": False}, trace)
