"""Calls that the native route of each routine answers."""

from __future__ import annotations

from typing import Any, Callable, Dict, List, Tuple

import numpy as np
import pandas as pd

from .arrays import objects
from .native_lookups import DATASET_CHECKS

MARKERS = ["?", "", "-", np.nan]
TEXTS = objects("b", "?", "a", "", "b", "c")
NUMBER_TEXTS = objects("1", "-", "2.5", "1e3", "", "2")
OBJECTS = {
    "texts": TEXTS,
    "number texts": NUMBER_TEXTS,
    "integer texts": objects("1", "2", "10"),
    "texts and nulls": objects("a", None, "b", float("nan"), "?"),
    "texts of other alphabets": objects("\u00e9", "\u6f22", "\U0001d7d8", "\u0661", "\ud800"),
    "Python floats": objects(1.5, 2.0, 1.5, np.nan, 3.0),
    "Python integers": objects(1, 2, 2, 3),
    "Python booleans": objects(True, False, True),
    "Python numbers": objects(3, 2.5, True, 7),
    "integers and marker texts": objects(3, "?", 1, "", 3),
    "floats and nulls": objects(2.0, np.nan, 1.0, float("nan")),
    "numbers of numpy": objects(np.float64(2.5), np.float64(1.0), np.int64(7)),
}
# Columns that numpy can sort once the markers are removed.
OBJECT_NUMBERS = [
    "Python floats", "Python integers", "Python booleans", "Python numbers",
    "integers and marker texts", "floats and nulls", "numbers of numpy",
]  # fmt: skip
FIXED = {
    "fixed-width texts": np.array(["b", "?", "a", "", "b"]),
    "fixed-width number texts": np.array(["1", "2.5", "", "-3"]),
}
NUMBERS = {
    "floats": np.array([1.5, np.nan, 2.0, 1.5, -0.0]),
    "whole floats": np.array([1.0, 2.0, 2.0]),
    "short floats": np.array([1.5, np.nan, 2.0], dtype="f4"),
    "booleans": np.array([True, False, True]),
}
for _dtype in ("i1", "i2", "i4", "i8", "u1", "u2", "u4", "u8"):
    NUMBERS["integers " + _dtype] = np.array([3, 1, 2, 1], dtype=_dtype)
COLUMNS = dict(OBJECTS, **FIXED, **NUMBERS)
ALL_TEXT = {
    kind: column
    for kind, column in COLUMNS.items()
    if column.dtype.kind == "U" or all(type(cell) is str for cell in column.tolist())
}

SORTED = dict(ALL_TEXT, nulls=OBJECTS["texts and nulls"])
SORTED.update((kind, OBJECTS[kind]) for kind in OBJECT_NUMBERS)
NO_MARKERS_INSIDE = {
    kind: column for kind, column in COLUMNS.items() if kind != "integers and marker texts"
}
BESIDE_NUMBERS = {
    "texts and a number": objects("b", -999, "a", "?"),
    "number texts and a number": objects("1", -999.0, "2.5"),
    "numbers": objects(-999, 1.5, 2, None, "?"),
}

# A routine, the arguments after the column, and columns that the native route answers.
TAKEN = [
    ("numpy_whatis", (), NO_MARKERS_INSIDE),
    ("numpy_whatis", (MARKERS,), COLUMNS),
    ("numpy_isin", (["?", "a"],), COLUMNS),
    ("numpy_isin", (MARKERS,), COLUMNS),
    ("numpy_compute_missing_indicator", (MARKERS,), COLUMNS),
    ("numpy_compute_missing_indicator", (["none of them"],), COLUMNS),
    ("numpy_compute_missing_indicator", (MARKERS, True), COLUMNS),
    ("numpy_whatis", (["?"], True), dict(NUMBERS, **ALL_TEXT)),
    ("numpy_whatis", (MARKERS, True), dict(NUMBERS, **ALL_TEXT)),
    ("numpy_whatis", (MARKERS, False, False, False), dict(NUMBERS, **ALL_TEXT)),
    ("numpy_whatis", (None, False, False, False), NUMBERS),
    ("get_unique_values", (None, False, False, True), dict(NUMBERS, **ALL_TEXT)),
    ("get_unique_values", (MARKERS, False, False, True), dict(NUMBERS, **ALL_TEXT)),
    ("get_unique_values", ([1, 2.0], False, False, True), NUMBERS),
    ("get_unique_values", (), ALL_TEXT),
    ("get_unique_values", (MARKERS,), SORTED),
    ("numpy_whatis", (["?", -999, None],), BESIDE_NUMBERS),
    ("numpy_isin", (["?", -999],), BESIDE_NUMBERS),
    ("numpy_compute_missing_indicator", (["?", -999, None],), BESIDE_NUMBERS),
    ("FCplus.getClasses", (True, MARKERS), COLUMNS),
    ("FCplus.getClasses", (True, ["?", -999, None]), BESIDE_NUMBERS),
    ("FCplus.is_column_categorical", (MARKERS,), COLUMNS),
    ("FCplus.is_column_categorical_mult_cats", (MARKERS,), ALL_TEXT),
]
NUMBER_CELLS = {
    kind: COLUMNS[kind]
    for kind in ("Python floats", "Python integers", "Python booleans", "whole floats")
}
LISTED_NULLS = objects("1", "?", np.nan, "2.5", "", 3, 2.5, True, float("nan"))
NUMBER_COLUMNS = dict(
    NUMBER_CELLS,
    booleans=COLUMNS["booleans"],
    texts=objects("1", "2.5", "-", "1e3", "", "2"),
    nulls=LISTED_NULLS,
    integers=COLUMNS["integers i4"],
    fixed=np.array(["1", "2.5", "", "-3", "?"], dtype="U3"),
)
LABELS = {
    "labels": objects("a b", "?", "a b", "c", "d-e\t", None, 1.5, float("nan"), 3, True),
    "labels of other alphabets": objects("\u6f22 \u00e9", "\U0001d7d8", "x" * 70, "\u2003"),
    "fixed-width labels": np.array(["a b", "?", "a b", "c", "x" * 70, ""]),
}
THREE = {kind: column[:3] for kind, column in COLUMNS.items()}
TWO_COLUMNS = {kind: np.stack([column, column[::-1]], axis=1) for kind, column in COLUMNS.items()}
TAKEN += [
    ("numpy_replace_values", ("x", MARKERS), COLUMNS),
    ("numpy_replace_values", (None, ["a", np.nan], True), COLUMNS),
    ("numpy_replace_values", ("x", MARKERS), TWO_COLUMNS),
    ("numpy_replace_values", (-1, [["b"], MARKERS]), TWO_COLUMNS),
    ("numpy_putmask", (np.array([True, False, True]), "x"), THREE),
    ("numpy_column_float2str", (False,), NUMBER_CELLS),
    ("numpy_column_float2str", (False,), {"texts": TEXTS, "nulls": LISTED_NULLS}),
    ("compress_str_column", (MARKERS,), LABELS),
    ("compress_str_column", (MARKERS, "hash"), LABELS),
]

Arguments = Callable[[], Tuple[Any, ...]]
FRAME = pd.DataFrame({0: [62.0, 66.5, 71.0]})
# Kinds of columns for which the interpreter route takes different steps.
TYPICAL = ["texts", "number texts", "integer texts", "texts and nulls", "Python floats", "floats",
           "Python integers", "integers i8", "booleans", "fixed-width texts", "labels", "nulls",
           "numbers", "texts and a number"]  # fmt: skip


def _with_column(column: np.ndarray, more: Tuple[Any, ...]) -> Arguments:
    return lambda: (column.copy(), *more)


def _calls() -> Dict[str, List[Arguments]]:
    calls: Dict[str, List[Arguments]] = {}
    for name, more, columns in TAKEN:
        for kind, column in columns.items():
            if kind in TYPICAL:
                calls.setdefault(name, []).append(_with_column(column, more))
    # Tables of one column: the interpreter route removes a dimension.
    for name in ("numpy_whatis", "numpy_isin", "numpy_compute_missing_indicator"):
        for kind in ("texts", "floats", "integers i8", "booleans"):
            calls[name].append(_with_column(COLUMNS[kind].reshape(-1, 1), (MARKERS,)))
    for name in ("numpy_isintstr", "numpy_floatstr2float"):
        calls[name] = [_with_column(column, (MARKERS,)) for column in NUMBER_COLUMNS.values()]
    for references in (MARKERS, [False], [True, "?"], [np.nan]):
        calls.setdefault("numpy_boolean2float", []).append(
            _with_column(COLUMNS["booleans"], (references,))
        )
    calls["indicator_mask"] = [
        lambda column=column: ({"?", "a"}, column)
        for kind, column in COLUMNS.items()
        if kind in TYPICAL
    ]
    few = [COLUMNS[kind] for kind in ("integers i8", "whole floats", "booleans")]
    calls["FCplus.is_num_column_categorical"] = [_with_column(column, ()) for column in few]
    calls["FCplus.is_column_categorical"] += [_with_column(column, ()) for column in few]
    calls["FCplus.is_column_categorical_mult_cats"].append(_with_column(TEXTS, ()))
    calls["FCplus.getClasses"] += [_with_column(TEXTS, ()), _with_column(NUMBER_TEXTS, ())]
    calls["numpy_get_categories"] = [
        _with_column(column, ([0], references))
        for column in (objects("a b", "c", "?"), np.array(["a b", "c"]), TEXTS)
        for references in (["?"], ["none of them"], MARKERS, None)
    ]
    for check in DATASET_CHECKS:
        calls["FCplus." + check] = [
            _with_column(np.array([[1, 0, 1], [0, 1, 0]], dtype=dtype), more)
            for dtype in ("f8", "i8", "?")
            for more in ((MARKERS,), ())
        ]
    measured = [(FRAME, 66, 2.9, 0, 100.0, 3, [1, 2.54]), (FRAME, 66.5, 10, 1, 99, 4, [0.5])]
    calls["FCplus.check_statistics"] = [lambda given=given: given for given in measured]
    for name in ("is_column_height", "is_column_weight", "is_column_age"):
        calls["FCplus." + name] = [
            lambda dtype=dtype: (FRAME.astype(dtype),) for dtype in ("f8", "i8")
        ]
    calls["FCplus.is_column_sex"] = [
        lambda: (pd.DataFrame({0: objects("m", "f", "m")}, dtype=object),)
    ]
    return calls


# For each routine that has a native route: functions that return arguments.
NATIVE_CALLS = _calls()
