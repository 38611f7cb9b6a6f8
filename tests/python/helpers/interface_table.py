"""The interface of every routine as data: name, owner, parameters, defaults, annotations.

The rows are in the order in which start-up defines them. ``family`` is the C++ source of the
routine below ``SOURCES``, without its suffix; a traceback entry names a file of the same folder.
"""

from __future__ import annotations

from typing import Any, Dict, List, NamedTuple, Tuple

import numpy as np

MODULE = "quorin_libs.utils.exportable_utils"
SOURCES = "src/exportable_utils/"


class _Required:
    def __repr__(self) -> str:
        return "REQUIRED"


REQUIRED = _Required()


class Row(NamedTuple):
    number: int
    name: str
    owner: str
    family: str
    parameters: Tuple[Tuple[str, Any], ...]
    annotations: Dict[str, Any]
    static: bool
    replaced: bool

    @property
    def qualname(self) -> str:
        return self.name if self.owner == "module" else self.owner + "." + self.name

    @property
    def folder(self) -> str:
        return SOURCES + self.family.rpartition("/")[0] + "/"

    @property
    def names(self) -> List[str]:
        return [name for name, _ in self.parameters]

    @property
    def required(self) -> int:
        return sum(default is REQUIRED for _, default in self.parameters)

    @property
    def one(self) -> bool:
        return len(self.parameters) == 1

    @property
    def defaults(self) -> Any:
        values = tuple(default for _, default in self.parameters if default is not REQUIRED)
        return values or None


def _row(
    number: int,
    qualname: str,
    family: str,
    parameters: str,
    annotations: Any = None,
    replaced: bool = False,
    **defaults: Any,
) -> Row:
    owner, _, name = qualname.rpartition(".")
    pairs = tuple((p, defaults.pop(p, REQUIRED)) for p in parameters.split())
    assert not defaults, defaults
    static = owner == "FCplus" or name == "GetTargetType"
    return Row(number, name, owner or "module", family, pairs, annotations or {}, static, replaced)


_MISSING = {"missing_values_reference_list": None}
_CATEGORIES = "X cat_indices missing_values_list categories_list2"
_X = {"X": np.ndarray}
_X_BOOL = {"X": np.ndarray, "return": bool}
_Y_BOOL = {"y": np.ndarray, "return": bool}
_XY_BOOL = {"y": np.ndarray, "X": np.ndarray, "return": bool}
_BOOL = {"return": bool}
_WITH_MARKERS = " missing_values_reference_list"

ROWS = [
    _row(1, "numpy_select_columns", "transform/selection", "X columns_indices_list"),
    _row(
        2,
        "numpy_flatten_column",
        "transform/selection",
        "X remove_second_dim",
        remove_second_dim=True,
    ),
    _row(
        3,
        "numpy_replace_values",
        "transform/replacement",
        "X filling_value reference_values_list invert_flag",
        invert_flag=False,
    ),
    _row(
        4,
        "numpy_permute_array",
        "transform/selection",
        "X permutation_indices axis",
        permutation_indices=None,
        axis=None,
    ),
    _row(5, "numpy_floatstr2float", "transform/conversion", "X" + _WITH_MARKERS, **_MISSING),
    _row(
        6, "setValueOrDefault", "services/scalar_predicates", "variable def_value", def_value=None
    ),
    _row(7, "numpy_boolean2float", "transform/conversion", "X" + _WITH_MARKERS, **_MISSING),
    _row(
        8,
        "compress_string",
        "transform/compression",
        "s compress_type",
        compress_type="string",
    ),
    _row(
        9,
        "compress_str_column",
        "transform/compression",
        "X misslist compress_type",
        compress_type="string",
    ),
    _row(10, "convert_float32", "transform/conversion", "X force_flag", force_flag=False),
    _row(11, "numpy_get_categories", "classify/categories", _CATEGORIES, replaced=True),
    _row(
        12,
        "numpy_whatis",
        "classify/whatis",
        "X missing_values_reference_list stop_at_one_missing_value_flag debug"
        " use_dtype_str1_flag return_stats_flag",
        _X,
        missing_values_reference_list=None,
        stop_at_one_missing_value_flag=False,
        debug=False,
        use_dtype_str1_flag=True,
        return_stats_flag=False,
    ),
    _row(13, "numpy_get_categories", "classify/categories", _CATEGORIES, categories_list2=None),
    _row(14, "numpy_remove_second_dim", "transform/selection", "X"),
    _row(15, "isint", "services/scalar_predicates", "value"),
    _row(16, "numpy_is_column_monotonic_increasing", "classify/order", "column"),
    _row(17, "numpy_is_column_monotonic_decreasing", "classify/order", "column"),
    _row(18, "numpy_isintstr", "classify/number_check", "X" + _WITH_MARKERS, **_MISSING),
    _row(
        19,
        "numpy_compute_missing_indicator",
        "missing/indicator",
        "X missing_values_list stop_at_one_missing_value_flag debug",
        stop_at_one_missing_value_flag=False,
        debug=False,
    ),
    _row(20, "numpy_isin", "missing/matching", "X values_reference_list debug", debug=False),
    _row(21, "indicator_mask", "missing/matching", "reference_set l", {"reference_set": "set"}),
    _row(
        22,
        "get_unique_values",
        "missing/unique_values",
        "y exclusion_list return_index return_inverse return_counts fast_str_conversion_flag",
        {"y": np.ndarray},
        exclusion_list=None,
        return_index=False,
        return_inverse=False,
        return_counts=False,
        fast_str_conversion_flag=True,
    ),
    _row(23, "isfloat", "services/scalar_predicates", "value"),
    _row(
        24,
        "numpy_column_float2str",
        "transform/conversion",
        "X fast_conversion_flag",
        fast_conversion_flag=True,
    ),
    _row(
        25,
        "QSR_raise_exception",
        "services/raise_exception",
        "error_message exception_type exception_obj exception_trace_flag logger_error_flag",
        error_message=None,
        exception_type="Exception",
        exception_obj=None,
        exception_trace_flag=False,
        logger_error_flag=True,
    ),
    _row(26, "numpy_putmask", "transform/replacement", "X replace_values_mask filling_value"),
    _row(27, "FCplus.is_column_datetime", "features/predicates", "column"),
    _row(
        28,
        "FCplus.is_num_column_categorical",
        "features/categorical",
        "dfc uni_max uni_ratio",
        uni_max=100,
        uni_ratio=0.1,
    ),
    _row(
        29,
        "FCplus.is_column_categorical",
        "features/categorical",
        "y" + _WITH_MARKERS,
        _Y_BOOL,
        **_MISSING,
    ),
    _row(
        30,
        "FCplus.find_categorical_columns",
        "features/categorical",
        "X" + _WITH_MARKERS,
        _X,
        **_MISSING,
    ),
    _row(
        31, "FCplus.is_numerical", "features/categorical", "y" + _WITH_MARKERS, _Y_BOOL, **_MISSING
    ),
    _row(
        32,
        "FCplus.find_numerical_columns",
        "features/categorical",
        "X" + _WITH_MARKERS,
        _X,
        **_MISSING,
    ),
    _row(
        33,
        "FCplus.is_dataset_for_classification",
        "features/dataset_checks",
        "y X" + _WITH_MARKERS,
        _XY_BOOL,
        X=None,
        **_MISSING,
    ),
    _row(
        34,
        "FCplus.is_dataset_preprocessed",
        "features/dataset_checks",
        "X" + _WITH_MARKERS,
        _X_BOOL,
        **_MISSING,
    ),
    _row(
        35,
        "FCplus.is_dataset_missing",
        "features/dataset_checks",
        "X" + _WITH_MARKERS,
        _X_BOOL,
        **_MISSING,
    ),
    _row(
        36,
        "FCplus.get_dataset_missing_columns",
        "features/dataset_checks",
        "X" + _WITH_MARKERS,
        _X,
        **_MISSING,
    ),
    _row(
        37,
        "FCplus.is_dataset_numeric",
        "features/dataset_checks",
        "X" + _WITH_MARKERS,
        _X_BOOL,
        **_MISSING,
    ),
    _row(
        38,
        "FCplus.get_dataset_non_numeric_columns",
        "features/dataset_checks",
        "X" + _WITH_MARKERS,
        _X,
        **_MISSING,
    ),
    _row(
        39,
        "FCplus.check_statistics",
        "features/statistics",
        "dfc mean_value std_value min_value max_value num_stds unit_factors_list",
    ),
    _row(
        40,
        "FCplus.is_column_missing",
        "features/predicates",
        "column" + _WITH_MARKERS,
        _BOOL,
        **_MISSING,
    ),
    _row(41, "FCplus.is_column_sex", "features/statistics", "dfc"),
    _row(42, "FCplus.is_column_height", "features/statistics", "dfc"),
    _row(43, "FCplus.is_column_weight", "features/statistics", "dfc"),
    _row(44, "FCplus.is_column_age", "features/statistics", "dfc" + _WITH_MARKERS, **_MISSING),
    _row(45, "FCplus.is_column_timestamp", "features/predicates", "series"),
    _row(46, "FCplus.is_column_positive", "features/predicates", "dfc", _BOOL),
    _row(47, "FCplus.is_column_non_negative", "features/predicates", "dfc"),
    _row(48, "FCplus.is_column_not_all_non_negative", "features/predicates", "dfc"),
    _row(49, "FCplus.is_column_lt80pc_unique_int", "features/predicates", "dfc"),
    _row(50, "FCplus.is_column_constant", "features/delegation", "dfc"),
    _row(
        51,
        "FCplus.is_column_categorical_mult_cats",
        "features/predicates",
        "dfc" + _WITH_MARKERS,
        **_MISSING,
    ),
    _row(
        52,
        "FCplus.is_column_not_categorical",
        "features/predicates",
        "dfc" + _WITH_MARKERS,
        **_MISSING,
    ),
    _row(
        53, "FCplus.is_column_string", "features/predicates", "column" + _WITH_MARKERS, **_MISSING
    ),
    _row(54, "FCplus.is_column_string_in_datetime_format", "features/delegation", "column"),
    _row(55, "FCplus.is_column_epoch", "features/delegation", "column"),
    _row(56, "FCplus.is_column_longitude", "features/delegation", "column name", name=None),
    _row(57, "FCplus.is_column_latitude", "features/delegation", "column name", name=None),
    _row(58, "FCplus.is_column_distance", "features/delegation", "column"),
    _row(
        59,
        "FCplus.getClasses",
        "features/classes",
        "y exclude_missing_class_flag missing_values_reference_list",
        {"y": np.ndarray},
        exclude_missing_class_flag=True,
        missing_values_reference_list=None,
    ),
    _row(60, "numpy_is_column_datetime", "classify/order", "column"),
    _row(61, "DatasetS.__init__", "dataset/dataset", "self csvfname", replaced=True),
    _row(62, "DatasetS.__init__", "dataset/dataset", "self dataframe"),
    _row(63, "DatasetS.AddNewColumns", "dataset/dataset", "self fun"),
    _row(64, "DatasetS.GetTargetType", "dataset/dataset", "y"),
]

# The rows that a user can reach: a later definition replaces two earlier ones of the same name.
PRESENT = [row for row in ROWS if not row.replaced]


def stored(module: Any, row: Row) -> Any:
    """Return what the namespace of the owner holds, a ``staticmethod`` left wrapped."""
    owner = module if row.owner == "module" else getattr(module, row.owner)
    return vars(owner)[row.name]


def routine(module: Any, row: Row) -> Any:
    """Return the routine object of ``row``."""
    held = stored(module, row)
    return held.__func__ if isinstance(held, staticmethod) else held


def row_id(row: Row) -> str:
    return row.qualname
