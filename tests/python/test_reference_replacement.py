"""Model and module agree on replacing values and compressing text."""

from __future__ import annotations

from hypothesis import strategies as st

from helpers.column_strategies import (
    FLAT,
    array_layouts,
    cells,
    columns,
    flags,
    marked,
    markers,
    optional_markers,
    texts,
)
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.tracing import Trace

fillings = st.one_of(st.sampled_from(["?", 0, -1.5, None, float("nan"), True, [], [1, 2]]), cells)
masks = st.one_of(
    st.lists(st.booleans(), max_size=6),
    columns(array_layouts, ["booleans"]),
    st.sampled_from([True, False, None, [[True]], "x"]),
)
one_column = st.one_of(markers, st.sampled_from([["?"], [1], (1,), ("?", 2), {1}, "?"]))
per_column = st.lists(one_column, min_size=1, max_size=3)
kinds_of_compression = st.sampled_from(["string", "hash", "string", "hash", "", None, "Hash", 0])
text_kinds = ["words", "any text", "numbers as text", "text and missing", "nearly numbers"]


@property_test(weight=1, X=columns(), mask=masks, filling=fillings)
def test_putmask(X, mask, filling):
    compare("numpy_putmask", (X, mask, filling))
    compare("numpy_putmask", (X,), {"filling_value": filling, "replace_values_mask": mask})


@property_test(
    weight=3,
    case=marked(
        st.one_of(columns(), columns(array_layouts)), st.one_of(optional_markers, per_column)
    ),
    filling=fillings,
    invert=flags,
    traced=st.booleans(),
)
def test_replace_values(case, filling, invert, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_replace_values", (X, filling, values), trace=trace)
    compare("numpy_replace_values", (X, filling, values, invert), trace=trace)
    compare("numpy_replace_values", (X, filling, [("?", 1), "1"]))
    compare("numpy_replace_values", (X, filling), {"reference_values_list": ["?", "1", 1]})


@property_test(weight=1, s=st.one_of(texts, texts, cells), kind=kinds_of_compression)
def test_compress_string(s, kind):
    compare("compress_string", (s,))
    compare("compress_string", (s, kind))
    compare("compress_string", (s,), {"compress_type": kind})


@property_test(
    weight=2,
    case=marked(st.one_of(columns(), columns(st.sampled_from(FLAT + ("list",)), text_kinds))),
    kind=kinds_of_compression,
    traced=st.booleans(),
)
def test_compress_str_column(case, kind, traced):
    X, misslist = case
    trace = Trace() if traced else None
    compare("compress_str_column", (X, misslist), trace=trace)
    compare("compress_str_column", (X, misslist, kind), trace=trace)
    compare("compress_str_column", (X,), {"misslist": ["?", ""], "compress_type": kind})
