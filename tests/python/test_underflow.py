"""A product too small for a float follows numpy's underflow setting."""

from __future__ import annotations

import warnings

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils.exportable_utils import FCplus

NUMPY_2 = int(np.__version__.split(".")[0]) >= 2
TINY = {"f8": [5e-324, -5e-324, 1e-310, 2.1e-308], "f4": [1e-40, -1e-45, 1.1e-38]}
CASES = [(dtype, cell) for dtype, cells in TINY.items() for cell in cells]
DETECTORS = [FCplus.is_column_height, FCplus.is_column_weight]


def frame(dtype, *cells):
    return pd.DataFrame({0: np.array(cells, dtype=dtype)})


# Until numpy 2 the product of a float32 and a Python number is a float64, which does not underflow.
def underflows(dtype, detect, cell):
    factor = 2.54 if detect is FCplus.is_column_height else 0.453592
    with np.errstate(under="raise"):
        try:
            factor * np.array([cell], dtype=dtype)[0]
        except FloatingPointError:
            return True
    return False


@pytest.mark.parametrize("dtype, cell", CASES)
@pytest.mark.parametrize("detect", DETECTORS)
def test_raises_where_underflow_raises(detect, dtype, cell):
    for cells in ([cell], [0.0, cell, 66.4], [np.nan, cell]):
        with np.errstate(under="raise"):
            if underflows(dtype, detect, cell):
                with pytest.raises(FloatingPointError, match="underflow"):
                    detect(frame(dtype, *cells))
            else:
                assert detect(frame(dtype, *cells)) is False


@pytest.mark.parametrize("dtype, cell", CASES)
@pytest.mark.parametrize("detect", DETECTORS)
def test_warns_where_underflow_warns(detect, dtype, cell):
    with np.errstate(under="warn"), warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        assert detect(frame(dtype, cell)) is False
    expected = 1 if underflows(dtype, detect, cell) else 0
    assert len(caught) == expected
    assert all("underflow" in str(warning.message) for warning in caught)


def test_the_cases_underflow():
    found = [underflows(dtype, detect, cell) for detect in DETECTORS for dtype, cell in CASES[:3]]
    assert all(found)
    assert underflows("f4", FCplus.is_column_height, 1e-40) == NUMPY_2


@pytest.mark.parametrize("dtype", ["f8", "f4"])
@pytest.mark.parametrize("detect", DETECTORS)
def test_ordinary_columns_do_not_underflow(detect, dtype):
    good = 66.4 if detect is FCplus.is_column_height else 177.9
    with np.errstate(all="raise"):
        assert detect(frame(dtype, good, np.nan, good)) is True
        assert detect(frame(dtype, 0.0, -0.0, good, 1e-20)) is False


@pytest.mark.parametrize("factor, cell", [(1e-310, 3.0), (1e-300, 1e-10), (-1e-323, 0.5)])
def test_a_factor_may_be_tiny(factor, cell):
    for dtype in ("f8", "i8", "?"):
        cells = np.array([cell]).astype(dtype)
        with np.errstate(under="raise"):
            try:
                factor * cells[0]
                raises = False
            except FloatingPointError:
                raises = True
            if raises:
                with pytest.raises(FloatingPointError, match="underflow"):
                    FCplus.check_statistics(pd.DataFrame({0: cells}), 0, 1, -1, 1, 1, [factor])
            else:
                column = pd.DataFrame({0: cells})
                assert FCplus.check_statistics(column, 0, 1, -1, 1, 1, [factor]) is True


def test_where_underflow_is_ignored_nothing_warns():
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert FCplus.is_column_weight(frame("f8", 5e-324)) is False
        assert FCplus.check_statistics(frame("f8", 5e-324), 0, 1, -1, 1, 1, [0.3]) is True
