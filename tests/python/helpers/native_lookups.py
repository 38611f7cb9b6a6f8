"""The names that the native route of each routine depends on."""

from __future__ import annotations

from typing import Any, Dict, List

from hypothesis import strategies as st

from .comparison import find_owner, find_routine, module

# The look-ups of each interpreter route and of the routines that it calls. A fallback for callables
# without the attribute `_native_lookups`.
FLATTEN = ["numpy_flatten_column", "np", "np.ndarray", "np.concatenate", "numpy_remove_second_dim"]
MASK = ["indicator_mask", "np", "np.vectorize"]
ISIN = FLATTEN + MASK + ["numpy_isin", "pd", "pd.isnull", "np.any", "np.asarray"]
INDICATOR = ISIN + ["numpy_compute_missing_indicator", "np.zeros"]
UNIQUE = ISIN + ["get_unique_values", "np.unique", "numpy_column_float2str"]
WHATIS = INDICATOR + UNIQUE + [
    "numpy_whatis", "isint", "isfloat", "six", "six.string_types", "numbers", "numbers.Integral",
    "np.nan", "np.float", "np.integer", "np.bool_", "FCplus",
    "FCplus.is_column_string_in_datetime_format", "FC", "FC.is_string_in_datetime_format",
]  # fmt: skip
DEFAULT = ["setValueOrDefault", "global_missing_values_reference_list"]
FEW_DISTINCT = ["np", "np.unique"]
CATEGORICAL = WHATIS + DEFAULT + FEW_DISTINCT + ["FCplus.is_num_column_categorical"]
LOOKED_UP: Dict[str, List[str]] = {
    "indicator_mask": MASK,
    "numpy_isin": ISIN,
    "numpy_compute_missing_indicator": INDICATOR,
    "get_unique_values": UNIQUE,
    "numpy_whatis": WHATIS,
    "numpy_isintstr": ["isint", "numpy_isintstr"],
    "numpy_floatstr2float": ["isfloat", "np", "np.nan", "numpy_floatstr2float"],
    "numpy_boolean2float": ISIN + ["np.nan", "numpy_boolean2float"],
    "numpy_column_float2str": [
        "pd", "pd.isnull", "np", "np.float", "np.int", "numpy_column_float2str",
    ],
    "numpy_putmask": ["np", "np.putmask", "numpy_putmask"],
    "numpy_replace_values": ISIN
    + ["np.empty", "np.putmask", "numpy_putmask", "numpy_replace_values"],
    "compress_str_column": [
        "compress_string", "hashlib", "hashlib.md5", "pd", "pd.isnull", "np", "np.nan",
    ],
    "FCplus.is_num_column_categorical": FEW_DISTINCT,
    "FCplus.is_column_categorical": CATEGORICAL,
    "FCplus.is_column_categorical_mult_cats": CATEGORICAL + ["FCplus.is_column_categorical"],
    "numpy_get_categories": WHATIS + ["compress_string", "numpy_get_categories"],
    "FCplus.getClasses": WHATIS + DEFAULT + ["Counter"],
    "FCplus.check_statistics": ["FCplus.check_statistics"],
    "FCplus.is_column_height": ["FCplus", "FCplus.check_statistics"],
    "FCplus.is_column_weight": ["FCplus", "FCplus.check_statistics"],
    "FCplus.is_column_age": WHATIS + DEFAULT + ["FCplus.check_statistics"],
    "FCplus.is_column_sex": ["pd", "pd.Series", "pd.Series.unique"],
}  # fmt: skip
DATASET_CHECKS = [
    "is_dataset_preprocessed",
    "is_dataset_missing",
    "get_dataset_missing_columns",
    "is_dataset_numeric",
    "get_dataset_non_numeric_columns",
]
for _check in DATASET_CHECKS:
    LOOKED_UP["FCplus." + _check] = WHATIS + DEFAULT


def declared(routine: str) -> List[str]:
    """The names that the native route of a routine depends on, those of its callees included."""
    names = getattr(find_routine(module, routine), "_native_lookups", None)
    if names is None:
        names = LOOKED_UP.get(routine, ())
    return list(dict.fromkeys(names))


def is_bound(dotted: str) -> bool:
    """Whether the name is bound in its namespace; recent versions of numpy have no `np.float`."""
    owner, name = find_owner(module, dotted)
    return name in vars(owner)


def with_owners(names: List[str]) -> List[str]:
    """The names, and for each dotted one its global."""
    return sorted({*names, *(name.partition(".")[0] for name in names)})


# numpy and pandas use it internally to compare dtypes: another object changes their results.
NOT_NEUTRAL = ["np.bool_"]


def names_for(routine: str) -> Any:
    """Strategy: a name that forces the interpreter route of the routine, and changes no result."""
    names = [name for name in with_owners(declared(routine)) if is_bound(name)]
    return st.sampled_from([name for name in names if name not in NOT_NEUTRAL] or [routine])
