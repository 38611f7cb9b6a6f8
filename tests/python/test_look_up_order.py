"""What is called is looked up before the arguments of the call are made."""

from __future__ import annotations

import sys
import types

import numpy as np
import pandas as pd
import pytest

import quorin_libs.utils.exportable_utils as eu
from helpers.arrays import objects


class Turned:
    """A column that replaces the test while it is brought into the test's shape."""

    ndim = 1

    def __init__(self, name):
        self.name = name

    def reshape(self, *shape):
        setattr(eu.FCplus, self.name, staticmethod(lambda *args, **kwargs: False))
        return np.array([1])


@pytest.mark.parametrize("finder, test", [("find_categorical_columns", "is_column_categorical"),
                                          ("find_numerical_columns", "is_numerical")])  # fmt: skip
def test_finders_look_their_test_up_first(monkeypatch, finder, test):
    monkeypatch.setattr(eu.FCplus, test, staticmethod(lambda *args, **kwargs: True))
    assert getattr(eu.FCplus, finder)(Turned(test)) == [0]
    assert getattr(eu.FCplus, finder)(Turned(test)) == []


@pytest.mark.parametrize("name", ["is_dataset_preprocessed", "is_dataset_missing",
                                  "get_dataset_missing_columns", "is_dataset_numeric",
                                  "get_dataset_non_numeric_columns", "is_column_age"])  # fmt: skip
def test_the_classifier_is_missed_before_the_column(monkeypatch, name):
    monkeypatch.delattr(eu, "numpy_whatis")
    table = 5 if name == "is_column_age" else pd.DataFrame({"a": [1]})
    with pytest.raises(NameError, match="name 'numpy_whatis' is not defined") as caught:
        getattr(eu.FCplus, name)(table)
    if sys.version_info >= (3, 10):
        assert caught.value.name == "numpy_whatis"


def test_the_formatter_is_missed_before_the_traceback(monkeypatch):
    monkeypatch.setattr(eu, "traceback", types.SimpleNamespace())
    with pytest.raises(AttributeError, match="format_exception"):
        eu.QSR_raise_exception("text", "Exception", object(), True, False)


class Shapeless:
    """A column of which only the number of rows can go wrong."""

    ndim = 1
    dtype = np.dtype(object)

    @property
    def shape(self):
        raise RuntimeError("no shape")


def test_zeros_are_missed_before_the_number_of_rows(monkeypatch):
    monkeypatch.setattr(eu, "np", types.SimpleNamespace())
    with pytest.raises(AttributeError, match="zeros"):
        eu.numpy_compute_missing_indicator(Shapeless(), [])


def test_the_date_test_is_missed_before_the_sample(monkeypatch):
    monkeypatch.delattr(eu.FCplus, "is_column_string_in_datetime_format")
    monkeypatch.setattr(
        eu, "get_unique_values", lambda *args, **kwargs: (Sliceless(["a"]), np.array([1]))
    )
    with pytest.raises(AttributeError, match="is_column_string_in_datetime_format"):
        eu.numpy_whatis(objects("a"), ["?"])


class Sliceless(list):
    """Distinct values that cannot be cut short."""

    shape = (1,)

    def __getitem__(self, index):
        if isinstance(index, slice):
            raise RuntimeError("no slices")
        return list.__getitem__(self, index)


def test_a_result_that_is_not_there_is_no_consequence_of_the_failure(monkeypatch):
    """The failure was handled, by a replacement that raises nothing."""
    monkeypatch.setattr(eu, "QSR_raise_exception", lambda **kwargs: None)
    with pytest.raises(UnboundLocalError) as caught:
        eu.get_unique_values(objects(None, None))
    assert caught.value.__context__ is None
