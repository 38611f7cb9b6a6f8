"""The names that the native route of each routine depends on."""

from __future__ import annotations

from typing import Any, Dict, List

from hypothesis import strategies as st

# What each routine looks up by name, in its own steps and in those of the routines it calls.
FLATTEN = ["numpy_flatten_column", "np"]
MASK = ["indicator_mask", "np", "np.vectorize"]
ISIN = FLATTEN + MASK + ["numpy_isin", "pd", "pd.isnull", "np.any", "np.asarray"]
INDICATOR = ISIN + ["numpy_compute_missing_indicator", "np.zeros"]
UNIQUE = ISIN + ["get_unique_values", "np.unique", "numpy_column_float2str"]
WHATIS = INDICATOR + UNIQUE + [
    "numpy_whatis", "isint", "isfloat", "six", "six.string_types", "numbers", "numbers.Integral",
    "np.nan", "FCplus", "FCplus.is_column_string_in_datetime_format", "FC",
    "FC.is_string_in_datetime_format",
]  # fmt: skip
LISTED = ["setValueOrDefault"]
LOOKED_UP: Dict[str, List[str]] = {
    "indicator_mask": MASK,
    "numpy_isin": ISIN,
    "numpy_compute_missing_indicator": INDICATOR,
    "get_unique_values": UNIQUE,
    "numpy_whatis": WHATIS,
    "numpy_isintstr": ["isint", "numpy_isintstr"],
    "numpy_floatstr2float": ["isfloat", "np", "np.nan", "numpy_floatstr2float"],
    "numpy_boolean2float": ISIN + ["np.nan", "numpy_boolean2float"],
    "numpy_column_float2str": ["pd", "pd.isnull", "np", "numpy_column_float2str"],
    "numpy_putmask": ["np", "np.putmask", "numpy_putmask"],
    "numpy_replace_values": ISIN
    + ["np.empty", "np.putmask", "numpy_putmask", "numpy_replace_values"],
    "compress_str_column": ["compress_string", "hashlib", "hashlib.md5", "pd", "pd.isnull", "np"],
    "FCplus.is_num_column_categorical": ["np", "np.unique"],
    "FCplus.is_column_categorical": WHATIS + LISTED + ["FCplus.is_num_column_categorical"],
    "FCplus.is_column_categorical_mult_cats": WHATIS
    + LISTED
    + ["FCplus.is_num_column_categorical", "FCplus.is_column_categorical"],
    "numpy_get_categories": WHATIS + ["compress_string", "numpy_get_categories"],
    "FCplus.getClasses": WHATIS + LISTED + ["Counter"],
    "FCplus.check_statistics": ["FCplus.check_statistics"],
    "FCplus.is_column_height": ["FCplus", "FCplus.check_statistics"],
    "FCplus.is_column_weight": ["FCplus", "FCplus.check_statistics"],
    "FCplus.is_column_age": WHATIS + LISTED + ["FCplus.check_statistics"],
    "FCplus.is_column_sex": ["pd", "pd.Series", "pd.Series.unique"],
}
DATASET_CHECKS = [
    "is_dataset_preprocessed",
    "is_dataset_missing",
    "get_dataset_missing_columns",
    "is_dataset_numeric",
    "get_dataset_non_numeric_columns",
]
for _check in DATASET_CHECKS:
    LOOKED_UP["FCplus." + _check] = WHATIS + LISTED


def names_for(routine: str) -> Any:
    return st.sampled_from(sorted(set(LOOKED_UP[routine])))
