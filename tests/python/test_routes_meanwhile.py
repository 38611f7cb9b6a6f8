"""Foreign code that runs during a native route removes the objects that the route was given."""

from __future__ import annotations

import gc
import sys
import types

import numpy as np
import pandas as pd
import pytest

from helpers.arrays import objects
from helpers.comparison import find_routine, module


def fresh(*words):
    """Texts without another reference."""
    return ["".join([word[:1], word[1:]]) for word in words]


def test_the_logger_removes_the_markers(monkeypatch):
    """A column of texts and numbers is logged, and the logger can be replaced."""
    markers = fresh("missing", "unknown")
    logger = types.SimpleNamespace(warning=lambda text: markers.clear(), error=len)
    monkeypatch.setattr(module, "logger", logger)
    misslist, _ = module.numpy_whatis(objects("word", 1, "missing", "unknown"), markers)
    assert misslist[:2] == ["missing", "unknown"]
    assert markers == []


def call_and_collect(routine, arguments, act):
    """The routine's result, and whether a garbage collection inside the call ran `act`.

    The free lists of lists and tuples are emptied first, so that the call allocates.
    """
    ran = []

    def once(phase, info):
        if not ran:
            ran.append(phase)
            act()

    first, second, third = arguments
    gc.disable()
    spare = [[] for _ in range(200)], [(i,) for i in range(3000)]
    gc.callbacks.append(once)
    try:
        gc.enable()
        result = routine(first, second, third)
        gc.disable()
    finally:
        gc.callbacks.remove(once)
        gc.enable()
    del spare
    return result, bool(ran)


COLUMNS = {
    "words": ["one", "two", "missing", "one"],
    "numbers and a lone text": ["10", "22", "~~lone", "missing"],
    "numbers and texts below": ["10", "22", "..lone", "missing", "..lone"],
    "numbers and markers": ["unknown", 1.5, "missing", 2.5],
}
# With several markers and stop_at_one, the classifier has no native route.
CALLS = [
    (name, kind, first_only)
    for name in ("numpy_whatis", "numpy_compute_missing_indicator")
    for kind in sorted(COLUMNS)
    for first_only in (False, True)
    if not (first_only and name == "numpy_whatis" and kind != "words")
]


# From 3.12 on, garbage is collected between bytecode instructions, never inside a C call.
@pytest.mark.skipif(sys.version_info >= (3, 12), reason="a call is not interrupted")
@pytest.mark.parametrize("dtype", ["O", "U"])
@pytest.mark.parametrize("name, kind, first_only", CALLS)
def test_garbage_collection_removes_everything(name, kind, first_only, dtype):
    routine = find_routine(module, name)

    def column_and_markers():
        cells = [fresh(cell)[0] if type(cell) is str else cell for cell in COLUMNS[kind]]
        column = objects(*cells)
        return column if dtype == "O" else column.astype("U"), fresh("missing", "unknown")

    expected = repr(routine(*column_and_markers(), first_only))
    column, markers = column_and_markers()

    def take_away():
        markers.clear()
        column[...] = "gone"

    result, ran = call_and_collect(routine, (column, markers, first_only), take_away)
    assert repr(result) == expected
    assert ran and markers == []


def test_more_memory_than_there_is():
    """The interpreter route raises, with the message of numpy."""
    endless = np.broadcast_to(np.int8(1), (1, 2**58))
    with pytest.raises(MemoryError, match="Unable to allocate"):
        module.numpy_replace_values(endless, 0, [1])


# pandas 2 warns if the option is read.
NO_OPTION = int(pd.__version__.partition(".")[0]) >= 3


@pytest.mark.skipif(NO_OPTION, reason="pandas has no such option")
@pytest.mark.filterwarnings("ignore:use_inf_as_na")
def test_infinite_numbers_are_null_where_pandas_says_so():
    column = np.array([1.5, np.inf, np.nan])
    before = (
        module.numpy_whatis(column, ["?", np.nan]),
        module.numpy_isin(column, [np.nan]).tolist(),
    )
    with pd.option_context("mode.use_inf_as_na", True):
        assert module.numpy_isin(column, [np.nan]).tolist() == [False, True, True]
        assert module.numpy_isin(column, [np.inf]).tolist() == [False, True, True]
        assert module.get_unique_values(column, [np.nan]).tolist() == [1.5]
    after = module.numpy_whatis(column, ["?", np.nan]), module.numpy_isin(column, [np.nan]).tolist()
    assert repr(after) == repr(before)
    assert after[1] == [False, False, True]
