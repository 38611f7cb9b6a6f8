"""The names that each routine looks up when it runs, in the order of their first look-ups.

The names that called routines look up are included. A dotted name means two look-ups: of the
global, if that has not been looked up before, and of its attribute.
"""

from __future__ import annotations

from typing import Any, Callable, List, NamedTuple, Tuple

import numpy as np
import pandas as pd

from quorin_libs.utils.exportable_utils import DatasetS

from .arrays import objects


class Row(NamedTuple):
    routine: str
    case: str
    arguments: Callable[[], Tuple[Any, ...]]
    look_ups: Tuple[str, ...]
    # What becomes of a NameError: "" if it is raised, otherwise the name of the rule that the tests
    # apply to `hidden`, the global whose look-up stands inside a `try`.
    guard: str = ""
    hidden: str = ""

    @property
    def globals(self) -> List[str]:
        return list(dict.fromkeys(name.partition(".")[0] for name in self.look_ups))


def row_id(row: Row) -> str:
    return "{}, {}".format(row.routine, row.case) if row.case else row.routine


def in_order(*parts: str) -> Tuple[str, ...]:
    """Return the names of all parts without repetition, in the order of their first occurrence."""
    return tuple(dict.fromkeys(" ".join(parts).split()))


def failure() -> BaseException:
    try:
        raise KeyError("k")
    except KeyError as error:
        return error


class EmptyTable:
    """A table without columns."""

    columns = ()


MATRIX = np.array([[1], [2]])
MIXED = objects("a", 1.5, "b")
WORDS = objects("a", "?", "b")
INTEGERS = np.array([1, 2, 2, 1])
TABLE = np.array([["a", 1], ["?", 2]], dtype=object)
NUMBER_FRAME = pd.DataFrame({0: [30, 31]})
SEX_FRAME = pd.DataFrame({0: ["m", "f"]})
DATES = ["2020-01-01", "2020-01-02"]

# What a call of each of these routines looks up, its own name first.
FLATTEN = "numpy_flatten_column np.ndarray"
FLATTEN_MATRIX = FLATTEN + " np.concatenate numpy_remove_second_dim"
MASK = "indicator_mask np.vectorize"
ISIN = " ".join(["numpy_isin", FLATTEN, "pd.isnull np.any", MASK])
ISIN_NULL = " ".join(["numpy_isin", FLATTEN, "pd.isnull np.any np.asarray"])
INDICATOR = "numpy_compute_missing_indicator " + ISIN
# The default references end with NaN: the last one needs np.asarray.
INDICATOR_DEFAULT = INDICATOR + " np.asarray"
UNIQUE = "get_unique_values np.unique"
DATE_TEST = "FCplus.is_column_string_in_datetime_format FC.is_string_in_datetime_format"
TEXTS = "six.string_types isint isfloat"
INTEGER_TYPES = "six.string_types np.float np.integer np.bool_"
DEFAULT = "setValueOrDefault global_missing_values_reference_list"
# Without a list NaN is left out of the distinct values.
UNIQUE_WITHOUT_NULL = " ".join(["get_unique_values np.nan", ISIN_NULL, "np.unique"])
WHATIS_WORDS = " ".join(["numpy_whatis", FLATTEN, INDICATOR_DEFAULT, UNIQUE, TEXTS, DATE_TEST])
WHATIS_WORDS_ALONE = " ".join(
    ["numpy_whatis", FLATTEN, INDICATOR_DEFAULT, "np.zeros", UNIQUE, TEXTS, DATE_TEST]
)
WHATIS_INTEGERS = " ".join(
    ["numpy_whatis", FLATTEN, INDICATOR_DEFAULT, "np.zeros", UNIQUE, INTEGER_TYPES, DATE_TEST]
)
WHATIS_INTEGER_MATRIX = " ".join(
    ["numpy_whatis", FLATTEN_MATRIX, INDICATOR_DEFAULT, "np.zeros", UNIQUE, INTEGER_TYPES]
    + [DATE_TEST]
)
CATEGORICAL = "FCplus.is_column_categorical " + DEFAULT
FEW_DISTINCT = "FCplus.is_num_column_categorical np.unique"
CATEGORICAL_TABLE = " ".join(
    [CATEGORICAL, WHATIS_WORDS, "np.zeros np.float np.bool_", FEW_DISTINCT]
)


def row(routine: str, case: str, arguments: Any, *look_ups: str, **guard: str) -> Row:
    return Row(routine, case, arguments, in_order(*look_ups), **guard)


ROWS = [
    row("setValueOrDefault", "", lambda: (None, 1)),
    row("isint", "", lambda: ("1",)),
    row("isfloat", "", lambda: ("1.5",)),
    row("convert_float32", "", lambda: (np.array([1.5]),)),
    row("numpy_remove_second_dim", "", lambda: (MATRIX,)),
    # --- columns and arrays
    row("numpy_select_columns", "a single column", lambda: (["a"], [0]), "logger.warning"),
    row("numpy_select_columns", "a list", lambda: (["a", "b"], [1]), "np.array"),
    row("numpy_flatten_column", "one dimension", lambda: (WORDS,), "np.ndarray"),
    row(
        "numpy_flatten_column",
        "two dimensions",
        lambda: (MATRIX,),
        "np.ndarray np.concatenate numpy_remove_second_dim",
    ),
    row("numpy_permute_array", "", lambda: (np.eye(2), [1, 0], 0), "np.argsort"),
    row("numpy_floatstr2float", "", lambda: (objects("1.5", "?"), ["?"]), "isfloat np.nan"),
    row("numpy_boolean2float", "", lambda: (np.array([True, False]), [False]), ISIN, "np.nan"),
    row("numpy_column_float2str", "", lambda: (objects(1.5, None), False), "pd.isnull np.float"),
    row(
        "numpy_replace_values",
        "a table",
        lambda: (np.array([[1, 2]]), 0, [1]),
        "np.empty",
        ISIN,
        "numpy_putmask np.putmask",
    ),
    row("numpy_replace_values", "no references", lambda: (INTEGERS.copy(), 0, [])),
    row(
        "numpy_replace_values",
        "nothing found",
        lambda: (INTEGERS.copy(), 0, [7]),
        "np.empty",
        ISIN,
    ),
    row("numpy_putmask", "", lambda: (INTEGERS.copy(), INTEGERS == 1, 0), "np.putmask"),
    row("compress_string", "without a digest", lambda: ("a",)),
    row("compress_string", "a digest", lambda: ("a", "hash"), "hashlib.md5"),
    row("compress_str_column", "numbers", lambda: (INTEGERS.copy(), [])),
    row("compress_str_column", "nothing to compress", lambda: (objects("a"), []), "pd.isnull"),
    row(
        "compress_str_column",
        "a list",
        lambda: (["a b", "c"], []),
        "np.asarray pd.isnull compress_string",
    ),
    row(
        "compress_str_column",
        "digests",
        lambda: (objects("a", "?"), ["?"], "hash"),
        "pd.isnull compress_string hashlib.md5 np.nan",
    ),
    # --- references and distinct values
    row("indicator_mask", "", lambda: ({"?"}, WORDS), "np.vectorize"),
    row("numpy_isin", "words", lambda: (WORDS, ["?"]), ISIN.partition(" ")[2]),
    row(
        "numpy_isin",
        "a word and null",
        lambda: (WORDS, ["?", np.nan]),
        ISIN_NULL.partition(" ")[2],
        MASK,
    ),
    row("numpy_isin", "null", lambda: (WORDS, [None]), ISIN_NULL.partition(" ")[2]),
    row(
        "numpy_isin",
        "two dimensions",
        lambda: (MATRIX, [1]),
        FLATTEN_MATRIX,
        ISIN.partition(" ")[2],
    ),
    row("numpy_isin", "debug", lambda: (WORDS, ["?"], True), "time.time", ISIN.partition(" ")[2]),
    row("numpy_compute_missing_indicator", "a word", lambda: (WORDS, ["?"]), ISIN),
    row(
        "numpy_compute_missing_indicator",
        "a word and null",
        lambda: (WORDS, ["?", np.nan]),
        ISIN,
        "np.asarray",
    ),
    row("numpy_compute_missing_indicator", "no references", lambda: (WORDS, []), "np.zeros"),
    row(
        "numpy_compute_missing_indicator",
        "nothing found",
        lambda: (WORDS, ["z"]),
        ISIN,
        "np.zeros",
    ),
    row(
        "numpy_compute_missing_indicator",
        "debug",
        lambda: (WORDS, ["?"], False, True),
        "time.time",
        ISIN,
    ),
    row(
        "get_unique_values",
        "words",
        lambda: (WORDS, ["?"], False, False, True),
        ISIN,
        "np.unique",
    ),
    row(
        "get_unique_values",
        "texts and numbers",
        lambda: (MIXED,),
        "np.unique logger.warning numpy_column_float2str",
        guard="reported",
        hidden="np",
    ),
    row(
        "get_unique_values",
        "unsortable",
        lambda: (objects([], {}),),
        "np.unique QSR_raise_exception traceback.format_exception logger.error",
        guard="reported",
        hidden="np",
    ),
    # --- the classifier
    row(
        "numpy_whatis",
        "words",
        lambda: (WORDS, ["?"]),
        FLATTEN,
        INDICATOR,
        UNIQUE,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "nothing missing",
        lambda: (WORDS, ["z"]),
        FLATTEN,
        INDICATOR,
        "np.zeros",
        UNIQUE,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "debug",
        lambda: (WORDS, ["?"], False, True),
        "time.time",
        FLATTEN,
        INDICATOR,
        UNIQUE,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "two dimensions",
        lambda: (MATRIX, [1]),
        FLATTEN_MATRIX,
        INDICATOR,
        UNIQUE,
        INTEGER_TYPES,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "an empty list",
        lambda: (objects("1"), []),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "number texts without a list",
        lambda: (objects("1", "2"),),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "words without a list",
        lambda: (WORDS,),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "debug without a list",
        lambda: (objects("1"), None, False, True),
        "time.time",
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "texts and numbers",
        lambda: (MIXED,),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        "logger.warning numpy_column_float2str",
        TEXTS,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "bytes",
        lambda: (objects(b"x"),),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        "six.string_types np.float np.integer numbers.Integral np.bool_",
    ),
    row(
        "numpy_whatis",
        "integers",
        lambda: (np.array([1]),),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        INTEGER_TYPES,
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "floats",
        lambda: (np.array([1.5]),),
        FLATTEN,
        UNIQUE_WITHOUT_NULL,
        "six.string_types np.integer numbers.Integral np.bool_",
        DATE_TEST,
    ),
    row(
        "numpy_whatis",
        "booleans",
        lambda: (np.array([True]), ["?"]),
        FLATTEN,
        INDICATOR,
        "np.zeros",
        UNIQUE,
        "six.string_types np.float np.integer numbers.Integral",
        DATE_TEST,
    ),
    row(
        "numpy_get_categories",
        "",
        lambda: (objects("a b", "c"), [0], ["?"]),
        "numpy_whatis",
        FLATTEN,
        INDICATOR,
        "np.zeros",
        UNIQUE,
        TEXTS,
        DATE_TEST,
        "compress_string",
    ),
    row("numpy_isintstr", "", lambda: (objects("1", "x"),), "isint"),
    row("numpy_isintstr", "no rows", lambda: (objects(),)),
    # --- messages
    row("QSR_raise_exception", "", lambda: ("m", "ValueError"), "logger.error"),
    row(
        "QSR_raise_exception",
        "with the traceback",
        lambda: ("m", "ValueError", failure(), True),
        "traceback.format_exception logger.error",
    ),
    # --- one column
    row("FCplus.is_column_sex", "", lambda: (SEX_FRAME,)),
    row("FCplus.check_statistics", "", lambda: (NUMBER_FRAME, 1, 1, 1, 1, 1, [1])),
    row("FCplus.is_column_height", "texts", lambda: (SEX_FRAME,)),
    row("FCplus.is_column_weight", "texts", lambda: (SEX_FRAME,)),
    row("FCplus.is_column_timestamp", "texts", lambda: (SEX_FRAME,)),
    row("FCplus.is_column_timestamp", "numbers", lambda: (NUMBER_FRAME,), "pd.core"),
    row(
        "FCplus.is_num_column_categorical",
        "",
        lambda: (INTEGERS,),
        "np.unique",
        guard="printed",
        hidden="np",
    ),
    row(
        "FCplus.is_column_age",
        "",
        lambda: (NUMBER_FRAME,),
        DEFAULT,
        WHATIS_INTEGERS,
        "FCplus.check_statistics",
    ),
    row("FCplus.is_column_missing", "", lambda: (WORDS,), DEFAULT, WHATIS_WORDS),
    row("FCplus.is_column_string", "", lambda: (WORDS,), DEFAULT, WHATIS_WORDS),
    row("FCplus.getClasses", "", lambda: (WORDS,), DEFAULT, WHATIS_WORDS, "Counter"),
    row(
        "FCplus.is_column_categorical",
        "integers",
        lambda: (INTEGERS,),
        DEFAULT,
        WHATIS_INTEGERS,
        FEW_DISTINCT,
    ),
    row(
        "FCplus.is_column_categorical",
        "integers and a marker",
        lambda: (objects(1, "?", 2),),
        DEFAULT,
        "numpy_whatis",
        FLATTEN,
        INDICATOR_DEFAULT,
        UNIQUE,
        "six.string_types np.float np.bool_",
        DATE_TEST,
        FEW_DISTINCT,
    ),
    row(
        "FCplus.is_column_categorical_mult_cats",
        "",
        lambda: (objects("a", "b"),),
        CATEGORICAL,
        WHATIS_WORDS_ALONE,
    ),
    # --- whole tables
    row("FCplus.find_categorical_columns", "no columns", lambda: (np.empty((1, 0)),)),
    row("FCplus.find_categorical_columns", "a table", lambda: (TABLE,), CATEGORICAL_TABLE),
    row(
        "FCplus.find_categorical_columns",
        "one column",
        lambda: (INTEGERS,),
        CATEGORICAL,
        WHATIS_INTEGER_MATRIX,
        FEW_DISTINCT,
    ),
    row(
        "FCplus.find_numerical_columns",
        "a table",
        lambda: (TABLE,),
        "FCplus.is_numerical",
        CATEGORICAL_TABLE,
    ),
    row(
        "FCplus.find_numerical_columns",
        "one column",
        lambda: (INTEGERS,),
        "FCplus.is_numerical",
        CATEGORICAL,
        WHATIS_INTEGER_MATRIX,
        FEW_DISTINCT,
    ),
    row("DatasetS.__init__", "", lambda: (object.__new__(DatasetS), EmptyTable())),
    row("DatasetS.AddNewColumns", "", lambda: (DatasetS(EmptyTable()), None)),
    row("DatasetS.GetTargetType", "", lambda: ([1.5],), "FC.is_not_categorical"),
]
for _name in ("is_numerical", "is_column_not_categorical", "is_dataset_for_classification"):
    ROWS.append(
        row("FCplus." + _name, "", lambda: (INTEGERS,), CATEGORICAL, WHATIS_INTEGERS, FEW_DISTINCT)
    )
for _name in (
    "numpy_is_column_monotonic_increasing",
    "numpy_is_column_monotonic_decreasing",
    "numpy_is_column_datetime",
):
    ROWS.append(row(_name, "", lambda: (DATES,), "pd.to_datetime", guard="false", hidden="pd"))
ROWS.append(
    row(
        "FCplus.is_column_datetime",
        "",
        lambda: (DATES,),
        "numpy_is_column_datetime pd.to_datetime",
        guard="false",
        hidden="pd",
    )
)
for _name in ("is_column_height", "is_column_weight"):
    ROWS.append(row("FCplus." + _name, "", lambda: (NUMBER_FRAME,), "FCplus.check_statistics"))
# Routines that pass the column to the test of FC of the same name; some test the first cell before.
for _name in ("constant", "string_in_datetime_format", "epoch", "longitude", "latitude",
              "distance"):  # fmt: skip
    ROWS.append(row("FCplus.is_column_" + _name, "", lambda: ([1],), "FC.is_" + _name))
for _name in ("positive", "non_negative", "not_all_non_negative", "lt80pc_unique_int"):
    ROWS += [
        row("FCplus.is_column_" + _name, "numbers", lambda: (NUMBER_FRAME,), "FC.is_" + _name),
        row("FCplus.is_column_" + _name, "texts", lambda: (SEX_FRAME,)),
    ]
for _name in (
    "is_dataset_preprocessed",
    "is_dataset_missing",
    "get_dataset_missing_columns",
    "is_dataset_numeric",
    "get_dataset_non_numeric_columns",
):
    # The two get_ routines read every column, the others stop at the first that decides.
    _last = "np.zeros np.float np.bool_" if _name.startswith("get_") else ""
    ROWS += [
        row("FCplus." + _name, "a column", lambda: (WORDS,), DEFAULT, WHATIS_WORDS),
        row("FCplus." + _name, "a table", lambda: (TABLE,), DEFAULT, WHATIS_WORDS, _last),
    ]
