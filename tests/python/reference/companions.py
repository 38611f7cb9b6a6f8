"""Companions of the classifier: integer text, category labels, order and dates."""

from __future__ import annotations

from .namespace import ns, routine


@routine
def numpy_isintstr(X, missing_values_reference_list=None):
    if missing_values_reference_list is None:
        l_missing_values_reference_list = []
    else:
        l_missing_values_reference_list = missing_values_reference_list
    flag = True
    for i in range(X.shape[0]):
        if X[i] not in l_missing_values_reference_list:
            if not ns.isint(X[i]):
                flag = False
    return flag


# A definition that required `categories_list2` stood before this one and is no longer reachable.
@routine
def numpy_get_categories(X, cat_indices, missing_values_list, categories_list2=None):
    if categories_list2 is None:
        categories_list2 = []
    num_cols = 1 if X.ndim == 1 else X.shape[1]
    for j in range(num_cols):
        if j not in cat_indices:
            continue
        CC = X if num_cols == 1 else X[:, j]
        misslist, dtype_str, column_stats_dict = ns.numpy_whatis(
            CC, missing_values_list, return_stats_flag=True
        )
        column_train_labels = column_stats_dict["unique_values"]
        if dtype_str == "char_str":
            for i, str_elt in enumerate(column_train_labels):
                if not ns.pd.isnull(str_elt) and str_elt not in misslist and not str_elt.isalnum():
                    column_train_labels[i] = ns.compress_string(str_elt)
        column_train_labels_list = column_train_labels.tolist()
        categories_list2.append(column_train_labels_list)
    return categories_list2


@routine
def numpy_is_column_monotonic_increasing(column):
    try:
        dt = ns.pd.to_datetime(column)
        result = dt.is_monotonic_increasing
        return result
    except Exception:
        return False


@routine
def numpy_is_column_monotonic_decreasing(column):
    try:
        dt = ns.pd.to_datetime(column)
        result = dt.is_monotonic_decreasing
        return result
    except Exception:
        return False


@routine
def numpy_is_column_datetime(column):
    try:
        ns.pd.to_datetime(column)
        return True
    except Exception:
        return False
