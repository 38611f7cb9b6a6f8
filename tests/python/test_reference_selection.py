"""Model and module agree on choosing, permuting and flattening columns."""

from __future__ import annotations

from hypothesis import strategies as st

from helpers.cell_values import Anywhere
from helpers.column_strategies import array_layouts, cells, columns, flags, texts
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.recipes import TABLES
from helpers.tracing import Trace

indices = st.one_of(
    st.lists(st.integers(-3, 4), max_size=4),
    st.lists(st.sampled_from([0, 1, True, 1.0, 5, 10**30, None, "0", float("nan")]), max_size=3),
    st.lists(st.one_of(st.integers(0, 1), st.builds(Anywhere)), max_size=3),
    st.permutations([0, 1]),
    st.permutations([0, 1, 2]),
    st.sampled_from([None, (), (0, 1), {0}, "01", 0, [[0, 1]], [True, False], range(2)]),
)


tables = columns(st.sampled_from(TABLES))
lists = st.one_of(
    columns(st.just("list")), st.lists(cells, max_size=4), st.lists(texts, max_size=4)
)


@property_test(
    weight=2,
    X=st.one_of(columns(), tables, lists),
    columns_indices_list=indices,
    traced=st.booleans(),
)
def test_select_columns(X, columns_indices_list, traced):
    trace = Trace() if traced else None
    compare("numpy_select_columns", (X, columns_indices_list), trace=trace)
    compare("numpy_select_columns", (X,), {"columns_indices_list": columns_indices_list})


@property_test(weight=2, X=columns(), remove_second_dim=flags, traced=st.booleans())
def test_flatten_and_remove_second_dim(X, remove_second_dim, traced):
    trace = Trace() if traced else None
    compare("numpy_flatten_column", (X,), trace=trace)
    compare("numpy_flatten_column", (X,), {"remove_second_dim": remove_second_dim}, trace)
    compare("numpy_remove_second_dim", (X,), trace=trace)


@property_test(weight=0.5, parts=st.lists(columns(array_layouts), max_size=4))
def test_flatten_lists_of_arrays(parts):
    compare("numpy_flatten_column", (parts,))
    compare("numpy_flatten_column", (tuple(parts), False))


@property_test(
    weight=2,
    X=st.one_of(columns(), tables),
    permutation=indices,
    axis=st.sampled_from([None, 0, 1, 2, -1, True, 0.0, "0", [0]]),
    traced=st.booleans(),
)
def test_permute_array(X, permutation, axis, traced):
    trace = Trace() if traced else None
    compare("numpy_permute_array", (X, permutation, axis), trace=trace)
    compare("numpy_permute_array", (X,), {"axis": axis})
    compare("numpy_permute_array", (X,), {"permutation_indices": permutation})
