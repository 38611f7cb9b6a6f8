"""A signalling NaN raises the processor's invalid flag, for which numpy warns, on either route."""

from __future__ import annotations

import functools
import warnings
from typing import Any, Callable, Dict, List

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils import exportable_utils
from quorin_libs.utils.exportable_utils import FCplus

BITS = {
    ("f8", "quiet"): 0x7FF8000000000000,
    ("f8", "signalling"): 0x7FF0000000000001,
    ("f8", "negative signalling"): 0xFFF0000000000400,
    ("f4", "quiet"): 0x7FC00000,
    ("f4", "signalling"): 0x7F800001,
    ("f4", "negative signalling"): 0xFFBFFFFF,
}


def column_with(dtype: str, nan: str, rows: int, place: int, numbers: List[float]) -> np.ndarray:
    """A column of a few numbers with one NaN."""
    column = np.resize(np.array(numbers, dtype=dtype), rows)
    column.view("u" + dtype[1])[place] = BITS[dtype, nan]
    return column


LISTS = [["?", np.nan], ["?"], [np.nan], [1.0, np.nan], [1.0], []]


def with_lists(routine: Callable[..., Any], *more: Any) -> Callable[[np.ndarray], Any]:
    return lambda column: [routine(column, *more, given) for given in LISTS]


def as_table(routine: Callable[..., Any]) -> Callable[[np.ndarray], Any]:
    def call(column: np.ndarray) -> Any:
        table = np.stack([np.ones_like(column), column], axis=1)
        return [routine(made, given) for given in LISTS for made in (table, table[:, ::-1])]

    return call


def unique_values(column: np.ndarray) -> Any:
    return [
        exportable_utils.get_unique_values(column, given, False, False, True)
        for given in [*LISTS, None]
    ]


def framed(routine: Callable[..., Any]) -> Callable[[np.ndarray], Any]:
    return lambda column: routine(pd.DataFrame({0: column}))


CALLS: Dict[str, Callable[[np.ndarray], Any]] = {
    "numpy_isin": with_lists(exportable_utils.numpy_isin),
    "indicator_mask": lambda column: [
        exportable_utils.indicator_mask(members, column) for members in ({"?"}, {1.0}, set())
    ],
    "numpy_compute_missing_indicator": with_lists(exportable_utils.numpy_compute_missing_indicator),
    "get_unique_values": unique_values,
    "numpy_whatis": with_lists(exportable_utils.numpy_whatis),
    "numpy_whatis with statistics": lambda column: [
        exportable_utils.numpy_whatis(column, given, return_stats_flag=True)[:2] for given in LISTS
    ],
    "numpy_floatstr2float": with_lists(exportable_utils.numpy_floatstr2float),
    "numpy_isintstr": with_lists(exportable_utils.numpy_isintstr),
    "numpy_replace_values": with_lists(exportable_utils.numpy_replace_values, 0.0),
    "numpy_putmask": lambda column: exportable_utils.numpy_putmask(column, column == 2, 0.0),
    "numpy_column_float2str": lambda column: exportable_utils.numpy_column_float2str(column),
    "numpy_column_float2str, slow": lambda column: exportable_utils.numpy_column_float2str(
        column.copy(), False
    ),
    "is_num_column_categorical": FCplus.is_num_column_categorical,
    "is_column_categorical": with_lists(FCplus.is_column_categorical),
    "getClasses": with_lists(FCplus.getClasses, True),
    "is_dataset_preprocessed": as_table(FCplus.is_dataset_preprocessed),
    "is_dataset_missing": as_table(FCplus.is_dataset_missing),
    "get_dataset_missing_columns": as_table(FCplus.get_dataset_missing_columns),
    "is_dataset_numeric": as_table(FCplus.is_dataset_numeric),
    "get_dataset_non_numeric_columns": as_table(FCplus.get_dataset_non_numeric_columns),
    "is_column_height": framed(FCplus.is_column_height),
    "is_column_weight": framed(FCplus.is_column_weight),
    "is_column_age": framed(FCplus.is_column_age),
}


class PassThrough:
    """A replacement of `np` with numpy's attributes; it forces the interpreter route."""

    def __getattr__(self, name: str) -> Any:
        return getattr(np, name)


def warned(call: Callable[[np.ndarray], Any], column: np.ndarray) -> List[str]:
    """The RuntimeWarnings of a call, and its result or error as text.

    The text does not show the bits of a NaN. Warnings of deprecated names are ignored.
    """
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        try:
            result = call(column)
        except Exception as error:
            result = error
    runtime = [warning for warning in caught if issubclass(warning.category, RuntimeWarning)]
    return [str(warning.message) for warning in runtime] + [repr(result)]


def of_interpreter_route(
    monkeypatch: pytest.MonkeyPatch, call: Callable[[np.ndarray], Any], column: np.ndarray
) -> List[str]:
    with monkeypatch.context() as patch:
        patch.setattr(exportable_utils, "np", PassThrough())
        passed = staticmethod(functools.partial(FCplus.check_statistics))
        patch.setattr(FCplus, "check_statistics", passed)
        return warned(call, column)


@pytest.mark.parametrize("name", CALLS)
@pytest.mark.parametrize("nan", ["quiet", "signalling"])
@pytest.mark.parametrize(
    "dtype, held", [("f8", "array"), ("f4", "array"), ("f8", "strided"), ("f8", "objects")]
)
def test_both_routes_warn_alike(monkeypatch, name, nan, dtype, held):
    for rows, place, numbers in ((20, 0, [1.5, 2]), (20, 19, [1, 2, 3]), (21, 11, [1, 2.5])):
        column = column_with(dtype, nan, rows, place, numbers)
        if held == "objects":
            column = column.astype(object)
        elif held == "strided":
            column = np.repeat(column, 2)[::2]
        native = warned(CALLS[name], column)
        assert native == of_interpreter_route(monkeypatch, CALLS[name], column)


@pytest.mark.parametrize("nan", ["signalling", "negative signalling"])
@pytest.mark.parametrize("place", [0, 1024, 4097, 9999])
@pytest.mark.parametrize(
    "name", ["numpy_isin", "numpy_whatis", "numpy_replace_values", "is_dataset_missing"]
)
def test_one_signalling_nan_behind_many_quiet_ones(monkeypatch, name, place, nan):
    column = column_with("f8", nan, 10000, place, [1.5, np.nan, 2])
    native = warned(CALLS[name], column)
    assert "invalid value encountered" in native[0]
    assert native == of_interpreter_route(monkeypatch, CALLS[name], column)


def test_the_statistic_of_a_signalling_nan_raises_where_invalid_raises():
    frame = pd.DataFrame({0: column_with("f8", "signalling", 3, 2, [66.4])})
    with np.errstate(invalid="raise"), pytest.raises(FloatingPointError, match="invalid value"):
        FCplus.is_column_height(frame)
    quiet = pd.DataFrame({0: column_with("f8", "quiet", 3, 2, [66.4])})
    with np.errstate(invalid="raise"):
        assert FCplus.is_column_height(quiet) is True
