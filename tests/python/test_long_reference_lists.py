"""Lists of up to 64 references take the native route; longer ones the interpreter route."""

from __future__ import annotations

import numpy as np
import pytest

from helpers.arrays import objects
from helpers.comparison import module
from helpers.routes import events_of

MOST = 64


def references(size):
    """A list of `size` references, of which the first, the last and two between them occur."""
    names = ["?", "", np.nan, -999] + ["reference {}".format(i) for i in range(size)]
    return names[: size - 1] + ["the last"]


COLUMNS = {
    "texts": objects("a", "?", "the last", "", "b", "reference 3", "the last"),
    "mixed": objects("a", None, -999, "the last", 1.5, -999.0, "?"),
    "fixed-width texts": np.array(["a", "?", "the last", "", "reference 3"]),
    "floats": np.array([1.0, np.nan, -999.0]),
    "integers": np.array([1, -999, 3]),
}


@pytest.mark.parametrize("size", [16, 17, 20, MOST])
@pytest.mark.parametrize("kind", sorted(COLUMNS))
@pytest.mark.parametrize("name, more", [
    ("numpy_isin", ()),
    ("numpy_compute_missing_indicator", ()),
    ("numpy_compute_missing_indicator", (True,)),
])  # fmt: skip
def test_native_up_to_64(name, more, kind, size):
    column = COLUMNS[kind]
    if name == "numpy_isin":
        # numpy.asarray() would turn the number into a text.
        listed = [value for value in references(size + 1) if value != -999]
    else:
        listed = references(size)
    assert len(listed) == size
    assert events_of(name, (column, listed) + more, by="numpy_isin")
    assert events_of(name, (column, listed) + more) == []


def test_one_more_takes_the_interpreter_route():
    assert events_of("numpy_isin", (COLUMNS["texts"], references(MOST + 1)))


def test_distinct_values_without_64_references():
    listed = [value for value in references(MOST + 1) if value != -999]
    arguments = (COLUMNS["texts"], listed, False, False, True)
    assert events_of("get_unique_values", arguments) == []
    values, counts = module.get_unique_values(*arguments)
    assert values.tolist() == ["a", "b"]
    assert counts.tolist() == [1, 1]


@pytest.mark.parametrize("size", [4, 16, 20, MOST])
@pytest.mark.parametrize("kind", sorted(COLUMNS))
def test_masks_of_each_reference(kind, size):
    column = COLUMNS[kind]
    listed = references(size)
    mask, masks, found = module.numpy_compute_missing_indicator(column, listed)
    each = [(value, module.numpy_isin(column, [value])) for value in listed]
    expected = [(value, rows) for value, rows in each if rows.any()]
    assert len(found) == len(expected)
    assert all(one is other for one, (other, _) in zip(found, expected))
    any_row = np.zeros(len(column), dtype=bool)
    for (_, rows), other in zip(expected, masks):
        np.testing.assert_array_equal(rows, other)
        any_row |= rows
    np.testing.assert_array_equal(mask, any_row)


@pytest.mark.parametrize("kind", sorted(COLUMNS))
def test_equal_references_have_a_mask_each(kind):
    column = COLUMNS[kind]
    doubled = ["none", 7, "?", "?", -999, -999.0, None, np.nan]
    mask, masks, found = module.numpy_compute_missing_indicator(column, doubled)
    assert len(masks) == len(found) > 0 and len({id(other) for other in masks}) == len(masks)
    for reference, other in zip(found, masks):
        np.testing.assert_array_equal(other, module.numpy_isin(column, [reference]))
    np.testing.assert_array_equal(mask, np.logical_or.reduce(masks))
    first, only, one = module.numpy_compute_missing_indicator(column, doubled, True)
    assert only[0] is first and one == found[:1]
    np.testing.assert_array_equal(first, masks[0])


@pytest.mark.parametrize("kind", sorted(COLUMNS))
def test_references_that_do_not_occur(kind):
    column = COLUMNS[kind]
    mask, rows, found = module.numpy_compute_missing_indicator(column, ["none", 7])
    assert found == [] and rows == list(mask) == [np.False_] * len(column)
    assert all(type(row) is np.bool_ for row in rows)
    assert not module.numpy_isin(column, []).any()
