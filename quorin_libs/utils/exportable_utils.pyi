# ruff: noqa: E501 -- the docstrings come from C++ sources, whose lines are longer.
#
# The docstrings in this file are generated: scripts/stub_docstrings.py copies them from the built
# module, and `make lint-stub` fails if they differ. Change a docstring in the C++ source of its
# routine. Everything else is written by hand. Two leading underscores mark a positional-only
# parameter: type checkers that run on CPython 3.7 cannot read "/".

import logging
from typing import (
    Any,
    Callable,
    Container,
    Iterable,
    Literal,
    NoReturn,
    Sequence,
    TypedDict,
    TypeVar,
    overload,
)

import numpy as np
import numpy.typing as npt
import pandas as pd
from typing_extensions import TypeAlias

from quorin_libs.utils.fc_methods import FC as FC

_S = TypeVar("_S", bound=np.generic)
_T = TypeVar("_T")
_Default = TypeVar("_Default")
_Table = TypeVar("_Table", bound=npt.NDArray[Any] | pd.Series[Any])

_Mask: TypeAlias = npt.NDArray[np.bool_]
_Column: TypeAlias = npt.NDArray[Any] | pd.Series[Any]
_Markers: TypeAlias = list[Any] | None

_Kind: TypeAlias = Literal[
    "missing",
    "char_str",
    "int_str",
    "float_str",
    "float_num",
    "float_int_num",
    "int_num",
    "boolean",
    "Unknown",
]
# Counted, but never the answer.
_CountedKind: TypeAlias = _Kind | Literal["date_str"]

class _Statistics(TypedDict):
    dtype_str: _Kind
    missing_values: list[Any]
    unique_values: npt.NDArray[Any]
    unique_values_counts: npt.NDArray[np.intp]
    missing_mask: _Mask
    dtypes_cnt: dict[_CountedKind, int]
    dtypes_weighted_cnt_dict: dict[_CountedKind, int | np.intp]
    weird_new_missing_values_list: list[str]
    unique_values_column_flag: bool
    constant_column_flag: bool
    datetime_column_flag: bool
    monotonic_column_flag: Literal[False]
    contiguous_column_flag: Literal[False]

global_missing_values_reference_list: list[Any]
logger: logging.Logger

@overload
def numpy_select_columns(
    X: npt.NDArray[_S], columns_indices_list: list[int] | None
) -> tuple[npt.NDArray[_S], bool]:
    """Picks columns out of a data matrix.

    Parameters
    ----------
    X : numpy.ndarray of shape (n, m), or list
        A list is selected from along its only axis; one of a single element counts as a single column.
    columns_indices_list : list of int
        Columns in the order wanted; repeats and negative indices as numpy takes them. Anything but a non-empty list
        selects nothing.

    Returns
    -------
    Y : numpy.ndarray, list or `X` itself
        The selection, or `X` where none takes place.
    columns_selected_flag : bool
        Whether one took place.

    Raises
    ------
    IndexError
        For an index out of range and for a one-dimensional array.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_select_columns
    >>> numpy_select_columns(np.arange(6).reshape(2, 3), [2, 0])
    (array([[2, 0],
           [5, 3]]), True)
    """

@overload
def numpy_select_columns(
    X: list[_T], columns_indices_list: list[int] | None
) -> tuple[list[Any], bool]: ...
@overload
def numpy_flatten_column(X: npt.NDArray[_S], remove_second_dim: bool = True) -> npt.NDArray[_S]:
    """Brings a column of one-element arrays down to one dimension.

    Parameters
    ----------
    X : numpy.ndarray of shape (n, 1) or (n,), or list of arrays
    remove_second_dim : bool
        Pass the flattened array through `numpy_remove_second_dim`.

    Returns
    -------
    numpy.ndarray of shape (n,), or `X` itself
        `X` itself unless its first element is an array whose first dimension is 1.

    Raises
    ------
    IndexError
        For an empty `X`.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_flatten_column
    >>> numpy_flatten_column(np.array([[1], [2]]))
    array([1, 2])
    """

@overload
def numpy_flatten_column(
    X: list[npt.NDArray[_S]], remove_second_dim: bool = True
) -> npt.NDArray[_S] | list[npt.NDArray[_S]]: ...
def numpy_replace_values(
    X: npt.NDArray[Any],
    filling_value: Any,
    reference_values_list: list[Any] | None,
    invert_flag: bool = False,
) -> npt.NDArray[Any]:
    """Puts a value in place of the entries that match reference values.

    :param X: Input matrix
    :param reference_values_list: reference list of lists of known values for each column. if it is a 1-dimensional list, then
    it is applicable to each column
    :param filling_value: special value assigned array entries that match the reference values
    :param invert_flag: If True replace the values NOT in the reference values list. Default False

    Parameters
    ----------
    X : numpy.ndarray of shape (n, m) or (n,)
        Never written into.
    filling_value : object
    reference_values_list : list
        One list for all columns, or, where its first element is a list, one for each.
    invert_flag : bool

    Returns
    -------
    numpy.ndarray of object, shape (n, m) or (n,), or `X` itself
        `X` itself for an empty list, and for one dimension without a match.

    Raises
    ------
    IndexError
        For fewer lists than columns, and for one dimension without rows.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_replace_values
    >>> numpy_replace_values(np.array([[1, 2], [3, 1]]), -1, [1])
    array([[-1, 2],
           [3, -1]], dtype=object)
    """

def numpy_permute_array(
    X: npt.NDArray[_S], permutation_indices: Sequence[int] | None = None, axis: int | None = None
) -> npt.NDArray[_S]:
    """Performs a permultation on rows or columns of an nparray based on a list of permuted
    indices.

    :param permutation_indices: the list of permutation indices. If empty no permutation is performed. Default empty.
    :param axis: if 0 permute columns, if 1 permute columns. Default value is 0

    Axis 0 permutes columns and axis 1 permutes rows; the inverse of the permutation is applied, so that [2, 0, 1]
    takes the columns in the order [1, 2, 0].

    Parameters
    ----------
    X : numpy.ndarray of shape (n, m)
    permutation_indices : list of int, optional
    axis : int, optional
        Any value but 0 and 1 permutes nothing.

    Returns
    -------
    numpy.ndarray of shape (n, m)
        Always a copy.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_permute_array
    >>> numpy_permute_array(np.array([[10, 11, 12]]), [2, 0, 1])
    array([[11, 12, 10]])
    """

def numpy_floatstr2float(
    X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
) -> npt.NDArray[np.float64]:
    """Converts a 1-D numpy array of strings that represent floats to floats
    and replaces missing values with np.nan. Also changes type of array from 'object' to 'float'

    :param X: 1-d numpy array of strings
    :param missing_values_reference_list: list of values that should be considered as missing
    :return: 1-D numpy array of floats and np.nan as missing values

    A text that is neither missing nor a number becomes NaN too; what was wrong with it is printed.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,)
    missing_values_reference_list : list, optional

    Returns
    -------
    numpy.ndarray of float64, shape (n,)
        A new array.

    Raises
    ------
    TypeError
        For an element that has no conversion to a float, such as None.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_floatstr2float
    >>> numpy_floatstr2float(np.array(["1.5", "?", "1e3"], dtype=object), ["?"])
    array([   1.5,    nan, 1000. ])
    """

@overload
def setValueOrDefault(variable: None, def_value: None = None) -> None:
    """Gives a variable, or a default where the variable is None.

    Parameters
    ----------
    variable : object
        Only None itself counts as unset; 0, False and empty texts or lists do not.
    def_value : object
        What stands in for None.

    Returns
    -------
    object
        One of the two objects, never a copy.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import setValueOrDefault
    >>> setValueOrDefault(None, 5), setValueOrDefault(0, 5)
    (5, 0)
    """

@overload
def setValueOrDefault(variable: None, def_value: _Default) -> _Default: ...
@overload
def setValueOrDefault(variable: _T, def_value: None = None) -> _T: ...
@overload
def setValueOrDefault(variable: _T | None, def_value: _Default) -> _T | _Default: ...
@overload
def numpy_boolean2float(
    X: npt.NDArray[np.bool_], missing_values_reference_list: _Markers = None
) -> npt.NDArray[np.float64]:
    """Converts a 1-D numpy array of strings that represent floats to floats
    and replaces missing values with np.nan. Also changes type of array from 'object' to 'float'

    :param X: 1-d numpy array of booleans
    :param missing_values_reference_list: list of values that should be considered as missing
    :return: 1-D numpy array of floats and np.nan as missing values

    The array stays boolean while the missing values are marked, so NaN is stored as True: they come out as 1.0, and the
    caller's array holds True in their place.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,)
    missing_values_reference_list : list, optional

    Returns
    -------
    numpy.ndarray of float64, shape (n,), or `X` itself
        `X` itself where its dtype is not bool.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_boolean2float
    >>> numpy_boolean2float(np.array([True, False]))
    array([1., 0.])
    """

@overload
def numpy_boolean2float(
    X: npt.NDArray[_S], missing_values_reference_list: _Markers = None
) -> npt.NDArray[_S]: ...
@overload
def compress_string(s: str, compress_type: Literal["string"] = "string") -> str:
    """Compresses a string to either a string without spaces or a int hash

    :param s: input string
    :param compress_type: 'string' or 'hash'
    :return: compressed string or int hash

    Parameters
    ----------
    s : str
    compress_type : str
        "string" removes all white space; anything else gives the MD5 digest of the text's UTF-8 bytes.

    Returns
    -------
    str or int
        The number is not negative and has at most 128 bits.

    Raises
    ------
    AttributeError
        For anything but a text.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import compress_string
    >>> compress_string(" New  York ")
    'NewYork'
    >>> compress_string("a", compress_type="hash")
    16955237001963240173058271559858726497
    """

@overload
def compress_string(s: str, compress_type: Literal["hash"]) -> int: ...
@overload
def compress_string(s: str, compress_type: str = "string") -> str | int: ...
@overload
def compress_str_column(
    X: list[Any], misslist: Container[Any], compress_type: str = "string"
) -> npt.NDArray[Any]:
    """Compresses a column of strings to a column of strings without whitespaces or a column of int hashes

    :param Xcol:
    :param compress_type: 'string' or 'hash'
    :return: Compressed column

    Parameters
    ----------
    X : numpy.ndarray of shape (n,), pandas.Series or list
        Written into, unless it is a list. An array of fixed-width text keeps its width: digests are cut to it.
    misslist : list
        Labels that stand for missing.
    compress_type : str
        "string" takes the white space out of labels that are not alphanumeric; "hash" turns every label into its digest
        and every missing one into NaN.

    Returns
    -------
    numpy.ndarray or pandas.Series of shape (n,)
        `X` itself, or the array made of the list. A column that holds no text comes back as it is.

    Raises
    ------
    TypeError
        For a `misslist` that does not support `in`.
    AttributeError
        For an array of two dimensions.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import compress_str_column
    >>> compress_str_column(np.array(["New York", "Oslo", "?"], dtype=object), ["?"])
    array(['NewYork', 'Oslo', '?'], dtype=object)
    """

@overload
def compress_str_column(
    X: _Table, misslist: Container[Any], compress_type: str = "string"
) -> _Table: ...
@overload
def convert_float32(
    X: npt.NDArray[np.float64], force_flag: bool = False
) -> npt.NDArray[np.float32]:
    """Converts 64-bit floats to 32-bit floats.

    Parameters
    ----------
    X : numpy.ndarray
    force_flag : bool
        Convert an array of any other dtype as well.

    Returns
    -------
    numpy.ndarray of float32, or `X` itself

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import convert_float32
    >>> convert_float32(np.array([1.5, 2.5])).dtype
    dtype('float32')
    """

@overload
def convert_float32(X: npt.NDArray[Any], force_flag: Literal[True]) -> npt.NDArray[np.float32]: ...
@overload
def convert_float32(X: npt.NDArray[_S], force_flag: Literal[False] = False) -> npt.NDArray[_S]: ...
@overload
def convert_float32(
    X: npt.NDArray[_S], force_flag: bool = False
) -> npt.NDArray[_S] | npt.NDArray[np.float32]: ...
def numpy_get_categories(
    X: npt.NDArray[Any],
    cat_indices: Container[int],
    missing_values_list: list[Any],
    categories_list2: list[list[Any]] | None = None,
) -> list[list[Any]]:
    """Lists the category labels of the selected columns of a table.

    Labels of a text column that are not missing and not alphanumeric are replaced by what `compress_string` makes of them.

    Parameters
    ----------
    X : numpy.ndarray of shape (n, m) or (n,)
    cat_indices : container of int
        The columns wanted; indices beyond the last column are ignored.
    missing_values_list : list
        Values that count as missing.
    categories_list2 : list, optional
        List to append to; a new one by default.

    Returns
    -------
    list of list
        `categories_list2`, with the ascending distinct values of each selected column appended.

    Raises
    ------
    UnboundLocalError
        Where `missing_values_list` is None or empty: the classifier has no statistics then.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_get_categories
    >>> X = np.array([["a b", 1], ["c", 2], ["?", 2]], dtype=object)
    >>> numpy_get_categories(X, [0, 1], ["?"])
    [['ab', 'c'], [1, 2]]
    """

@overload
def numpy_whatis(
    X: npt.NDArray[Any],
    missing_values_reference_list: _Markers = None,
    stop_at_one_missing_value_flag: bool = False,
    debug: bool = False,
    use_dtype_str1_flag: bool = True,
    return_stats_flag: Literal[False] = False,
) -> tuple[list[Any], _Kind]:
    """Classifies a 1-d numpy array as array of alphanumeric strings, int strings, float strings, ints or floats.

    For string arrays it also discovers the values that stand for "missing": those of a reference list that occur, the
    texts that number texts leave no other reading for, and single characters that are neither letters nor digits.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,) or (n, 1)
        One column.
    missing_values_reference_list : list, optional
        Values that count as missing.
    stop_at_one_missing_value_flag : bool
        Look for no further marker of the reference list once one was found.
    debug : bool
        Print progress and elapsed seconds.
    use_dtype_str1_flag : bool
        Decide by the counts of the kinds; otherwise the kind of the last distinct value decides.
    return_stats_flag : bool
        Return the statistics too. Needs a reference list.

    Returns
    -------
    new_missing_values_list : list
        The markers that occur in the column, the discovered ones last.
    dtype_str_final : str
        "missing", "char_str" (text), "int_str" and "float_str" (numbers as text), "float_num" (fractions),
        "float_int_num" (whole-valued floats), "int_num", "boolean" or "Unknown".
    stats_dict : dict
        Only with `return_stats_flag`: the two results above, the distinct values and their counts, the mask of the
        missing rows, the counts of the kinds by distinct value and by occurrence, and what holds for the column.

    Raises
    ------
    UnboundLocalError
        For a least distinct value of no known kind, such as None, and for statistics without a reference list or with an
        empty one.
    IndexError
        For an empty column.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_whatis
    >>> numpy_whatis(np.array(["1", "2", "*", "", "30"], dtype=object), ["?", "", "-", np.nan])
    (['', '*'], 'int_str')
    """

@overload
def numpy_whatis(
    X: npt.NDArray[Any],
    missing_values_reference_list: list[Any],
    stop_at_one_missing_value_flag: bool = False,
    debug: bool = False,
    use_dtype_str1_flag: bool = True,
    *,
    return_stats_flag: Literal[True],
) -> tuple[list[Any], _Kind, _Statistics]: ...
@overload
def numpy_whatis(
    X: npt.NDArray[Any],
    missing_values_reference_list: list[Any],
    stop_at_one_missing_value_flag: bool,
    debug: bool,
    use_dtype_str1_flag: bool,
    return_stats_flag: Literal[True],
) -> tuple[list[Any], _Kind, _Statistics]: ...
@overload
def numpy_whatis(
    X: npt.NDArray[Any],
    missing_values_reference_list: list[Any],
    stop_at_one_missing_value_flag: bool = False,
    debug: bool = False,
    use_dtype_str1_flag: bool = True,
    return_stats_flag: bool = False,
) -> tuple[list[Any], _Kind] | tuple[list[Any], _Kind, _Statistics]: ...
def numpy_remove_second_dim(__X: npt.NDArray[_S]) -> npt.NDArray[_S]:
    """Flattens a single-column matrix.

    Parameters
    ----------
    X : numpy.ndarray
        Positional only.

    Returns
    -------
    numpy.ndarray
        `X.reshape(-1)` where `X` has more than one dimension and its second one is 1; `X` itself otherwise.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_remove_second_dim
    >>> numpy_remove_second_dim(np.zeros((4, 1))).shape
    (4,)
    """

def isint(__value: object) -> bool:
    """Says whether the built-in int() accepts a value.

    Parameters
    ----------
    value : object
        Positional only.

    Returns
    -------
    bool
        False where int() raises ValueError.

    Raises
    ------
    TypeError, OverflowError
        Whatever else int() raises: for None or a list, for an infinite float.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import isint
    >>> isint(" 12 "), isint("12.0"), isint(12.9), isint("?")
    (True, False, True, False)
    """

def numpy_is_column_monotonic_increasing(__column: _Column | Sequence[Any]) -> bool:
    """Says whether a column, read as dates by pandas, never decreases.

    Parameters
    ----------
    column : numpy.ndarray, pandas.Series or list
        Positional only.

    Returns
    -------
    bool
        Also False where the column cannot be read as dates.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import numpy_is_column_monotonic_increasing
    >>> numpy_is_column_monotonic_increasing(["2024-01-31", "2024-02-29"])
    True
    """

def numpy_is_column_monotonic_decreasing(__column: _Column | Sequence[Any]) -> bool:
    """Says whether a column, read as dates by pandas, never increases.

    Parameters
    ----------
    column : numpy.ndarray, pandas.Series or list
        Positional only.

    Returns
    -------
    bool
        Also False where the column cannot be read as dates.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import numpy_is_column_monotonic_decreasing
    >>> numpy_is_column_monotonic_decreasing(["2024-01-31", "2024-02-29"])
    False
    """

def numpy_isintstr(X: npt.NDArray[Any], missing_values_reference_list: _Markers = None) -> bool:
    """Returns true if a 1-d numpy array consists of ints/floats or strings that represent ints/floats,
    excluding the missing values.

    :param X: 1-d numpy array of strings or ints/floats
    :param missing_values_reference_list: list of missing values
    :return: true or false

    What counts as a number is `isint`'s to say. Every row is looked at, also behind the first that is none.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,)
    missing_values_reference_list : list, optional
        Values to pass over, matched by equality; none by default.

    Returns
    -------
    bool

    Raises
    ------
    TypeError, OverflowError
        Whatever `isint` raises: for None, for an infinite float.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_isintstr
    >>> numpy_isintstr(np.array(["1", "?", "30"], dtype=object), ["?"])
    True
    """

def numpy_compute_missing_indicator(
    X: npt.NDArray[Any],
    missing_values_list: Iterable[Any],
    stop_at_one_missing_value_flag: bool = False,
    debug: bool = False,
) -> tuple[_Mask, list[_Mask] | list[np.bool_], list[Any]]:
    """Tests a column against candidate missing-value markers, one by one.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,) or (n, 1)
    missing_values_list : list
        Candidate markers, in the order in which they are tried.
    stop_at_one_missing_value_flag : bool
        Stop at the first marker that occurs.
    debug : bool
        Print progress and elapsed seconds.

    Returns
    -------
    cum_missing_mask_arr : numpy.ndarray of bool, shape (n,)
        True where a cell holds a marker that was found.
    missing_masks_list : list
        The mask of each marker found; where none was found, the n false values of the first result one by one.
    missing_reference_values_exist_list : list
        The markers found, in the order of `missing_values_list`.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_compute_missing_indicator
    >>> mask, masks, markers = numpy_compute_missing_indicator(
    ...     np.array(["a", "?", ""], dtype=object), ["?", "", "-", np.nan])
    >>> mask, markers
    (array([False,  True,  True]), ['?', ''])
    """

def numpy_isin(X: npt.NDArray[Any], values_reference_list: list[Any], debug: bool = False) -> _Mask:
    """Marks the elements of a column that equal one of a list of reference values.

    A null among the reference values (None, NaN, NaT) marks every null of the column, as pandas defines null; the other
    values are matched by `indicator_mask`.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,) or (n, 1)
    values_reference_list : list
    debug : bool
        Print the first 50 rows and the elapsed seconds.

    Returns
    -------
    numpy.ndarray of bool, shape (n,)

    Raises
    ------
    TypeError
        For a reference value that cannot be hashed.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_isin
    >>> numpy_isin(np.array([None, "?", "x"], dtype=object), ["?", np.nan])
    array([ True,  True, False])
    """

def indicator_mask(reference_set: set[Any], l: npt.ArrayLike) -> _Mask:
    """Marks the elements that are members of a set.

    Membership is Python's: hashing, then equality. 1, 1.0 and True match one another, the text "1" matches none of
    them, and NaN matches nothing but the same NaN object.

    Parameters
    ----------
    reference_set : set
    l : array_like
        Of any shape.

    Returns
    -------
    numpy.ndarray of bool
        Of the shape of `l`.

    Raises
    ------
    TypeError
        For an element that cannot be hashed.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import indicator_mask
    >>> indicator_mask({"?", 1}, ["a", "?"])
    array([False,  True])
    """

@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    return_index: Literal[False] = False,
    return_inverse: Literal[False] = False,
    return_counts: Literal[False] = False,
    fast_str_conversion_flag: bool = True,
) -> npt.NDArray[Any]:
    """Distinct values of a column, with exclusions.

    `numpy.unique` after the values of `exclusion_list` are taken out. A column that cannot be sorted because texts are
    mixed with other values is converted to text, with a warning in the log, and tried once more.

    Parameters
    ----------
    y : numpy.ndarray of shape (n,)
    exclusion_list : list, optional
        Values to leave out, matched by `numpy_isin`.
    return_index, return_inverse, return_counts : bool
        As of `numpy.unique`; they refer to the column after exclusion.
    fast_str_conversion_flag : bool
        `fast_conversion_flag` of `numpy_column_float2str`, should the column have to become text.

    Returns
    -------
    numpy.ndarray, or tuple of numpy.ndarray
        What `numpy.unique` gives.

    Raises
    ------
    Exception
        For any other failure of `numpy.unique`, with its traceback in the text.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import get_unique_values
    >>> get_unique_values(np.array(["b", "?", "a", "b"], dtype=object), ["?"])
    array(['a', 'b'], dtype=object)
    """

@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[True],
    return_inverse: Literal[False] = False,
    return_counts: Literal[False] = False,
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[False] = False,
    return_inverse: Literal[True],
    return_counts: Literal[False] = False,
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[False] = False,
    return_inverse: Literal[False] = False,
    return_counts: Literal[True],
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[True],
    return_inverse: Literal[True],
    return_counts: Literal[False] = False,
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[True],
    return_inverse: Literal[False] = False,
    return_counts: Literal[True],
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[False] = False,
    return_inverse: Literal[True],
    return_counts: Literal[True],
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    *,
    return_index: Literal[True],
    return_inverse: Literal[True],
    return_counts: Literal[True],
    fast_str_conversion_flag: bool = True,
) -> tuple[npt.NDArray[Any], npt.NDArray[np.intp], npt.NDArray[np.intp], npt.NDArray[np.intp]]: ...
@overload
def get_unique_values(
    y: npt.NDArray[Any],
    exclusion_list: list[Any] | None = None,
    return_index: bool = False,
    return_inverse: bool = False,
    return_counts: bool = False,
    fast_str_conversion_flag: bool = True,
) -> npt.NDArray[Any] | tuple[npt.NDArray[Any], ...]: ...
def isfloat(__value: object) -> bool:
    """Says whether the built-in float() accepts a value.

    Parameters
    ----------
    value : object
        Positional only.

    Returns
    -------
    bool
        False where float() raises ValueError.

    Raises
    ------
    TypeError
        For a value that has no conversion to a float, such as None or a list.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import isfloat
    >>> isfloat("1e-3"), isfloat("nan"), isfloat("1,5"), isfloat(True)
    (True, True, False, True)
    """

@overload
def numpy_column_float2str(
    X: npt.NDArray[Any], fast_conversion_flag: Literal[True] = True
) -> npt.NDArray[np.str_]:
    """Converts a column of floats to text.

    Parameters
    ----------
    X : numpy.ndarray of shape (n,)
        The slow way writes into it.
    fast_conversion_flag : bool
        Convert as numpy does. Otherwise go through the elements one by one: nulls become "?", whole floats lose their
        fraction (3.0 becomes "3"), everything else becomes its str().

    Returns
    -------
    numpy.ndarray of text, shape (n,), or `X` itself
        `X` itself, rewritten, the slow way.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_column_float2str
    >>> numpy_column_float2str(np.array([1.0, 2.5, np.nan], dtype=object), False)
    array(['1', '2.5', '?'], dtype=object)
    """

@overload
def numpy_column_float2str(
    X: npt.NDArray[_S], fast_conversion_flag: Literal[False]
) -> npt.NDArray[_S]: ...
@overload
def numpy_column_float2str(
    X: npt.NDArray[_S], fast_conversion_flag: bool = True
) -> npt.NDArray[_S] | npt.NDArray[np.str_]: ...
def QSR_raise_exception(
    error_message: str | None = None,
    exception_type: str = "Exception",
    exception_obj: BaseException | None = None,
    exception_trace_flag: bool = False,
    logger_error_flag: bool = True,
) -> NoReturn:
    r"""Logs an error and raises an exception chosen by name.

    Every call ends in an exception.

    Parameters
    ----------
    error_message : str or None
        Text of the error. None stands for ``"Exception raised!\n"``.
    exception_type : str
        "FileNotFoundError", "ValueError" or "TypeError", compared exactly; any other value means Exception.
    exception_obj : BaseException or None
        A caught exception whose formatted traceback is to be appended to the text.
    exception_trace_flag : bool
        Append the traceback of `exception_obj`, followed by ``"\nExiting ..."``.
    logger_error_flag : bool
        Log the text at level error before raising.

    Raises
    ------
    FileNotFoundError, ValueError, TypeError, Exception
        With the text as the only argument.

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import QSR_raise_exception
    >>> QSR_raise_exception("bad column", exception_type="ValueError", logger_error_flag=False)
    Traceback (most recent call last):
        ...
    ValueError: bad column
    """

def numpy_putmask(
    X: npt.NDArray[Any], replace_values_mask: npt.ArrayLike, filling_value: Any
) -> npt.NDArray[np.object_]:
    """Copies an array into an object array, with a value put where a mask is true.

    Parameters
    ----------
    X : numpy.ndarray
    replace_values_mask : array_like of bool
    filling_value : object
        A sequence is used element by element, as `numpy.putmask` does.

    Returns
    -------
    numpy.ndarray of object
        Always new.

    Examples
    --------
    >>> import numpy as np
    >>> from quorin_libs.utils.exportable_utils import numpy_putmask
    >>> numpy_putmask(np.array([1, 2]), [True, False], "?")
    array(['?', 2], dtype=object)
    """

class FCplus:
    """Tests of what a column or a whole table holds."""
    @staticmethod
    def is_column_datetime(__column: _Column | Sequence[Any]) -> bool:
        """Says whether pandas can read a column as dates.

        Parameters
        ----------
        column : numpy.ndarray, pandas.Series or list
            Positional only.

        Returns
        -------
        bool
            What `numpy_is_column_datetime` answers.

        Examples
        --------
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_datetime(["2024-01-31", "2024-02-29"])
        True
        """
    @staticmethod
    def is_num_column_categorical(
        dfc: _Column | pd.DataFrame, uni_max: int = 100, uni_ratio: float = 0.1
    ) -> bool:
        """Says whether a column of numbers has so few distinct values that it is categorical.

        It is when it has fewer than `uni_max` distinct values and these are less than `uni_ratio` of its length; or exactly
        two; or fewer than 5 in fewer than 30 rows.

        Parameters
        ----------
        dfc : numpy.ndarray of shape (n,), pandas.Series or pandas.DataFrame
        uni_max : int
        uni_ratio : float

        Returns
        -------
        bool

        Raises
        ------
        ZeroDivisionError
            For an empty column.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_num_column_categorical(np.arange(10) % 4)
        True
        """
    @staticmethod
    def is_column_categorical(
        y: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> bool:
        """Says whether a column is categorical.

        Text and integer text always are; integers and whole-valued floats are when their values that are not missing are few
        (`is_num_column_categorical`); nothing else is.

        Parameters
        ----------
        y : numpy.ndarray of shape (n,)
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool

        Raises
        ------
        ZeroDivisionError
            For a column of integers that are all missing.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_categorical(np.array(["a", "b", "c"], dtype=object))
        True
        >>> FCplus.is_column_categorical(np.array([0.5, 1.5, 2.5]))
        False
        """
    @staticmethod
    def find_categorical_columns(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> list[int]:
        """Lists the categorical columns of a data set.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
            One dimension counts as the single column 0.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        list of int
            Ascending column indices.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> X = np.array([["a", 0.5], ["b", 1.5], ["a", 2.5]], dtype=object)
        >>> FCplus.find_categorical_columns(X)
        [0]
        """
    @staticmethod
    def is_numerical(y: npt.NDArray[Any], missing_values_reference_list: _Markers = None) -> bool:
        """Says whether a column is numerical, that is, not categorical.

        Parameters
        ----------
        y : numpy.ndarray of shape (n,)
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_numerical(np.array([0.5, 1.5, 2.5]))
        True
        """
    @staticmethod
    def find_numerical_columns(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> list[int]:
        """Lists the numerical columns of a data set: those that are not categorical.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
            One dimension counts as the single column 0.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        list of int
            Ascending column indices.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> X = np.array([["a", 0.5], ["b", 1.5], ["a", 2.5]], dtype=object)
        >>> FCplus.find_numerical_columns(X)
        [1]
        """
    @staticmethod
    def is_dataset_for_classification(
        y: npt.NDArray[Any],
        X: npt.NDArray[Any] | None = None,
        missing_values_reference_list: _Markers = None,
    ) -> bool:
        """Says whether a target calls for classification: whether it is categorical.

        Parameters
        ----------
        y : numpy.ndarray of shape (n,)
            The target.
        X : numpy.ndarray, optional
            Not used.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool
            What `is_column_categorical` answers.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_dataset_for_classification(np.array(["yes", "no", "yes"], dtype=object))
        True
        """
    @staticmethod
    def is_dataset_preprocessed(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> bool:
        """Says whether a data set is ready for a learner: no missing values and no column of text.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_dataset_preprocessed(np.array([[1.0, 2.0], [np.nan, 3.0]]))
        False
        """
    @staticmethod
    def is_dataset_missing(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> bool:
        """Says whether a data set is free of missing values.

        Mind the sense, which is the opposite of what the name suggests: True means that nothing is missing.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool
            False where at least one column has missing values.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_dataset_missing(np.array([[1.0, 2.0], [np.nan, 3.0]]))
        False
        """
    @staticmethod
    def get_dataset_missing_columns(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> list[int]:
        """Lists the columns of a data set that have missing values.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
            One dimension counts as the single column 0.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        list of int
            Ascending column indices.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.get_dataset_missing_columns(np.array([[1.0, 2.0], [np.nan, 3.0]]))
        [0]
        """
    @staticmethod
    def is_dataset_numeric(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> bool:
        """Says whether a data set has no column of text. Numbers stored as text are text.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_dataset_numeric(np.array([[1.0, "2.5"], [2.0, "3.5"]], dtype=object))
        False
        """
    @staticmethod
    def get_dataset_non_numeric_columns(
        X: npt.NDArray[Any], missing_values_reference_list: _Markers = None
    ) -> list[int]:
        """Lists the columns of a data set that hold text. Numbers stored as text are text.

        Parameters
        ----------
        X : numpy.ndarray of shape (n, m) or (n,)
            One dimension counts as the single column 0.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        list of int
            Ascending column indices.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.get_dataset_non_numeric_columns(np.array([[1.0, "2.5"], [2.0, "3.5"]], dtype=object))
        [1]
        """
    @staticmethod
    def check_statistics(
        dfc: pd.DataFrame | pd.Series[Any],
        mean_value: float,
        std_value: float,
        min_value: float,
        max_value: float,
        num_stds: float,
        unit_factors_list: Iterable[float],
    ) -> bool:
        """Says whether all values of a column fit a known statistic in some unit.

        A value fits when, multiplied by the factor of the unit, it lies within `num_stds` standard deviations of the mean and
        within the range, both ends included. NaN fits.

        Parameters
        ----------
        dfc : pandas.DataFrame or pandas.Series
        mean_value, std_value : float
        min_value, max_value : float
        num_stds : float
        unit_factors_list : list of float
            Factors to try, in this order.

        Returns
        -------
        bool
            Whether there is a factor with which every value fits; False for no factor at all.

        Raises
        ------
        TypeError
            For values that cannot be compared with numbers.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.check_statistics(pd.DataFrame({0: [170.0, 180.0]}), 66.4, 3.9, 21.5, 107.1, 3, [1, 1 / 2.54])
        True
        """
    @staticmethod
    def is_column_missing(column: _Column, missing_values_reference_list: _Markers = None) -> bool:
        """Says whether a column has missing values.

        Parameters
        ----------
        column : numpy.ndarray of shape (n,) or pandas.Series
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_missing(np.array(["a", "?", "b"], dtype=object))
        True
        """
    @staticmethod
    def is_column_sex(__dfc: pd.DataFrame) -> bool:
        """Infers whether column represents sex.

        It does when its distinct values are exactly "male" and "female", or "m" and "f", written so.

        Parameters
        ----------
        dfc : pandas.DataFrame
            With a column labelled 0. Positional only.

        Returns
        -------
        bool

        Raises
        ------
        IndexError
            For an empty frame.
        KeyError
            For text in a frame without a column labelled 0.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_sex(pd.DataFrame({0: ["f", "m", "f"]}))
        True
        """
    @staticmethod
    def is_column_height(__dfc: pd.DataFrame) -> bool:
        """Infers whether column represents height based on US statistics
        Men: 69.1 inches mean and 2.9 inches std
        Women: 63.7 inches and 2.7 inches std

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            False for text.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_height(pd.DataFrame({"inches": [62.0, 66.5, 71.0]}))
        True
        """
    @staticmethod
    def is_column_weight(__dfc: pd.DataFrame) -> bool:
        """Infers whether column represents weight based on US statistics

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            False for text.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_weight(pd.DataFrame({"pounds": [125, 180, 240]}))
        True
        """
    @staticmethod
    def is_column_age(dfc: pd.DataFrame, missing_values_reference_list: _Markers = None) -> bool:
        """Infers whether column represents weight based on US statistics

        The column is an age when its first row is integer and every value lies from 0 to 80.

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool
            False for text and for anything but integers.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_age(pd.DataFrame({"age": [18, 35, 62]}))
        True
        """
    @staticmethod
    def is_column_timestamp(__series: pd.DataFrame) -> bool:
        """Says whether a column is of a dtype of points in time or of durations, in nanoseconds.

        Parameters
        ----------
        series : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_timestamp(pd.DataFrame({"a": ["2024-01-31"]}))
        False
        """
    @staticmethod
    def is_column_positive(__dfc: pd.DataFrame) -> bool:
        """Says whether all numbers of a column are above 0.

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            What `FC.is_positive` answers; False where the first cell is a text.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_positive(pd.DataFrame({"a": [1, 2]}))
        True
        """
    @staticmethod
    def is_column_non_negative(__dfc: pd.DataFrame) -> bool:
        """Says whether no number of a column is below 0.

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            What `FC.is_non_negative` answers; False where the first cell is a text.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_non_negative(pd.DataFrame({"a": [0, 2]}))
        True
        """
    @staticmethod
    def is_column_not_all_non_negative(__dfc: pd.DataFrame) -> bool:
        """Says whether some number of a column is below 0.

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            What `FC.is_not_all_non_negative` answers; False where the first cell is a text.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_not_all_non_negative(pd.DataFrame({"a": [-1, 2]}))
        True
        """
    @staticmethod
    def is_column_lt80pc_unique_int(__dfc: pd.DataFrame) -> bool:
        """Says whether a column of integers has distinct values for less than 80 per cent of its rows.

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            What `FC.is_lt80pc_unique_int` answers; False where the first cell is a text.

        Raises
        ------
        IndexError
            For an empty frame and for a Series.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_lt80pc_unique_int(pd.DataFrame({"a": [1, 1, 2, 2]}))
        True
        """
    @staticmethod
    def is_column_constant(__dfc: _Column | pd.DataFrame | Sequence[Any]) -> bool:
        """Says whether a column holds a single value.

        Parameters
        ----------
        dfc : pandas.DataFrame
            One column. Positional only.

        Returns
        -------
        bool
            What `FC.is_constant` answers.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_constant(pd.DataFrame({"a": [7, 7, 7]}))
        True
        """
    @staticmethod
    def is_column_categorical_mult_cats(
        dfc: _Column | pd.DataFrame, missing_values_reference_list: _Markers = None
    ) -> bool:
        """Says whether a column is categorical with more than two categories.

        Parameters
        ----------
        dfc : numpy.ndarray of shape (n,), or pandas object
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool
            The answer of `is_column_categorical` itself where that is false.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_categorical_mult_cats(np.array(["a", "b", "c"], dtype=object))
        True
        """
    @staticmethod
    def is_column_not_categorical(
        dfc: _Column | pd.DataFrame, missing_values_reference_list: _Markers = None
    ) -> bool:
        """Says whether a column is not categorical.

        Parameters
        ----------
        dfc : numpy.ndarray of shape (n,), or pandas object
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_not_categorical(np.array([0.5, 1.5, 2.5]))
        True
        """
    @staticmethod
    def is_column_string(column: _Column, missing_values_reference_list: _Markers = None) -> bool:
        """Says whether a column holds text that is no number.

        Parameters
        ----------
        column : numpy.ndarray of shape (n,) or pandas.Series
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        bool
            Whether the column's kind is "char_str".

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_string(np.array(["1", "2"], dtype=object))
        False
        """
    @staticmethod
    def is_column_string_in_datetime_format(
        __column: _Column | pd.DataFrame | Sequence[Any],
    ) -> bool:
        """Says whether a column holds dates or times as text.

        Parameters
        ----------
        column : numpy.ndarray, pandas.Series or list
            Positional only.

        Returns
        -------
        bool
            What `FC.is_string_in_datetime_format` answers.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_string_in_datetime_format(np.array(["2024-01-31", "2024-02-29"]))
        True
        """
    @staticmethod
    def is_column_epoch(__column: _Column | pd.DataFrame | Sequence[Any]) -> bool:
        """Says whether a column holds points in time, counted from 1970.

        Parameters
        ----------
        column : numpy.ndarray, pandas.Series or list
            Positional only.

        Returns
        -------
        bool
            What `FC.is_epoch` answers.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_epoch(np.array([1, 2, 3]))
        False
        """
    @staticmethod
    def is_column_longitude(
        column: _Column | pd.DataFrame | Sequence[Any], name: object = None
    ) -> bool:
        """Says whether a column holds geographic longitudes.

        Parameters
        ----------
        column : numpy.ndarray, pandas.Series or list
            Degrees.
        name : object, optional
            The name of the column.

        Returns
        -------
        bool
            What `FC.is_longitude` answers.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_longitude(np.array([200.5, 300.25]), "lon")
        False
        """
    @staticmethod
    def is_column_latitude(
        column: _Column | pd.DataFrame | Sequence[Any], name: object = None
    ) -> bool:
        """Says whether a column holds geographic latitudes.

        Parameters
        ----------
        column : numpy.ndarray, pandas.Series or list
            Degrees.
        name : object, optional
            The name of the column.

        Returns
        -------
        bool
            What `FC.is_latitude` answers.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_latitude(np.array([100.5, 120.25]), "lat")
        False
        """
    @staticmethod
    def is_column_distance(__column: _Column | pd.DataFrame | Sequence[Any]) -> bool:
        """Says whether a column holds distances.

        Parameters
        ----------
        column : numpy.ndarray, pandas.Series or list
            Positional only.

        Returns
        -------
        bool
            What `FC.is_distance` answers.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.is_column_distance(np.array([-1.5, -2.5]))
        False
        """
    @staticmethod
    def getClasses(
        y: npt.NDArray[Any],
        exclude_missing_class_flag: bool = True,
        missing_values_reference_list: _Markers = None,
    ) -> list[tuple[Any, float]]:
        """Lists the classes of a target and how often each occurs.

        Parameters
        ----------
        y : numpy.ndarray of shape (n,)
            The target.
        exclude_missing_class_flag : bool
            Leave out the values that count as missing.
        missing_values_reference_list : list, optional
            Values that count as missing; the module's list by default.

        Returns
        -------
        list of tuple
            Pairs of a class, as it stands in `y`, and its number of occurrences as a float, in the order of first occurrence.

        Raises
        ------
        TypeError
            For elements that cannot be hashed.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import FCplus
        >>> FCplus.getClasses(np.array(["b", "a", "?", "b"], dtype=object))
        [('b', 2.0), ('a', 1.0)]
        """

def numpy_is_column_datetime(__column: _Column | Sequence[Any]) -> bool:
    """Says whether pandas can read a column as dates.

    Parameters
    ----------
    column : numpy.ndarray, pandas.Series or list
        Positional only.

    Returns
    -------
    bool

    Examples
    --------
    >>> from quorin_libs.utils.exportable_utils import numpy_is_column_datetime
    >>> numpy_is_column_datetime(["2024-01-31"]), numpy_is_column_datetime(["no date"])
    (True, False)
    """

class DatasetS:
    """Holder of one table."""

    df: Any
    def __init__(self, dataframe: Any) -> None:
        """Holds a table in the attribute `df`.

        Parameters
        ----------
        dataframe : object
            Any table; no copy is made.

        Examples
        --------
        >>> import pandas as pd
        >>> from quorin_libs.utils.exportable_utils import DatasetS
        >>> table = pd.DataFrame({"a": [1]})
        >>> DatasetS(table).df is table
        True
        """
    def AddNewColumns(self, fun: Callable[[Any], Any]) -> None:
        """Adds a transformed copy of every column to the table, named "log" and the column's name.

        `df` is replaced after each column, so that columns added before a failure stay.

        Parameters
        ----------
        fun : callable
            Takes a column and gives the values of the new one.

        Raises
        ------
        AttributeError
            For a table without a method `withColumn(name, values)`, as pandas' frames are.

        Examples
        --------
        >>> from quorin_libs.utils.exportable_utils import DatasetS
        >>> class Table(dict):
        ...     columns = property(list)
        ...     def withColumn(self, name, values):
        ...         return Table(self, **{name: values})
        >>> holder = DatasetS(Table(a=[1, 10]))
        >>> holder.AddNewColumns(lambda column: [2 * value for value in column])
        >>> holder.df
        {'a': [1, 10], 'loga': [2, 20]}
        """
    @staticmethod
    def GetTargetType(__y: _Column | Sequence[Any]) -> Literal["classification", "regression"]:
        """Says whether a target calls for classification or for regression.

        Parameters
        ----------
        y : numpy.ndarray of shape (n,), pandas.Series or list
            Positional only.

        Returns
        -------
        str
            "regression" where `FC.is_not_categorical` holds, "classification" otherwise.

        Examples
        --------
        >>> import numpy as np
        >>> from quorin_libs.utils.exportable_utils import DatasetS
        >>> DatasetS.GetTargetType(np.array([0.5, 1.25, 2.75]))
        'regression'
        """

__test__: dict[str, object]
