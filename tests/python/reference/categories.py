"""Categorical or numerical: one column, the columns of a table, whole tables."""

from __future__ import annotations

from .namespace import feature, ns


@feature
def is_num_column_categorical(dfc, uni_max=100, uni_ratio=0.1):
    try:
        uni = ns.np.unique(dfc)
    except Exception as e:
        print("exception " + str(e))
        print(type(dfc))
        print(dfc)
        print(dfc.isnull().any())
        raise e
    distinct = len(uni)
    rows = float(len(dfc))
    if rows == 0.0:
        raise ZeroDivisionError("float division")
    r = distinct / rows
    return (
        (len(uni) < uni_max and r < uni_ratio) or len(uni) == 2 or (len(uni) < 5 and len(dfc) < 30)
    )


@feature
def is_column_categorical(y, missing_values_reference_list=None):
    flag = False
    l_missing_values_reference_list = ns.setValueOrDefault(
        missing_values_reference_list, ns.global_missing_values_reference_list
    )
    misslist, dtype_str = ns.numpy_whatis(y, l_missing_values_reference_list)
    if dtype_str == "int_str" or dtype_str == "char_str":
        flag = True
    elif dtype_str == "int_num" or dtype_str == "float_int_num":
        if misslist:
            ylist = []
            for i in range(y.shape[0]):
                if y[i] not in misslist:
                    ylist.append(y[i])
            y1 = ns.np.asarray(ylist)
            flag = ns.FCplus.is_num_column_categorical(y1, uni_max=100, uni_ratio=0.1)
        else:
            flag = ns.FCplus.is_num_column_categorical(y, uni_max=100, uni_ratio=0.1)
    return flag


@feature
def is_numerical(y, missing_values_reference_list=None):
    return not ns.FCplus.is_column_categorical(
        y, missing_values_reference_list=missing_values_reference_list
    )


@feature
def find_categorical_columns(X, missing_values_reference_list=None):
    output_index_list = []
    if X.ndim == 1:
        if ns.FCplus.is_column_categorical(
            X.reshape(-1, 1), missing_values_reference_list=missing_values_reference_list
        ):
            output_index_list.append(0)
    else:
        for j in range(X.shape[1]):
            if ns.FCplus.is_column_categorical(
                X[:, j], missing_values_reference_list=missing_values_reference_list
            ):
                output_index_list.append(j)
    return output_index_list


@feature
def find_numerical_columns(X, missing_values_reference_list=None):
    output_index_list = []
    if X.ndim == 1:
        if ns.FCplus.is_numerical(
            X.reshape(-1, 1), missing_values_reference_list=missing_values_reference_list
        ):
            output_index_list.append(0)
    else:
        for j in range(X.shape[1]):
            if ns.FCplus.is_numerical(
                X[:, j], missing_values_reference_list=missing_values_reference_list
            ):
                output_index_list.append(j)
    return output_index_list


@feature
def is_dataset_for_classification(y, X=None, missing_values_reference_list=None):
    return ns.FCplus.is_column_categorical(
        y, missing_values_reference_list=missing_values_reference_list
    )


def _is_text(dtype_str):
    return dtype_str == "char_str" or dtype_str == "int_str" or dtype_str == "float_str"


def _classified_columns(X, missing_values_reference_list):
    """Yield index, markers found and class of each column; each is classified when needed."""
    l_missing_values_reference_list = ns.setValueOrDefault(
        missing_values_reference_list, ns.global_missing_values_reference_list
    )
    if X.ndim == 1:
        misslist, dtype_str = ns.numpy_whatis(X, l_missing_values_reference_list)
        yield 0, misslist, dtype_str
    else:
        for j in range(X.shape[1]):
            misslist, dtype_str = ns.numpy_whatis(X[:, j], l_missing_values_reference_list)
            yield j, misslist, dtype_str


@feature
def is_dataset_preprocessed(X, missing_values_reference_list=None):
    for _, misslist, dtype_str in _classified_columns(X, missing_values_reference_list):
        if misslist or _is_text(dtype_str):
            return False
    return True


@feature
def is_dataset_missing(X, missing_values_reference_list=None):
    for _, misslist, _dtype_str in _classified_columns(X, missing_values_reference_list):
        if misslist:
            return False
    return True


@feature
def get_dataset_missing_columns(X, missing_values_reference_list=None):
    missing_columns = []
    for j, misslist, _dtype_str in _classified_columns(X, missing_values_reference_list):
        if misslist:
            missing_columns.append(j)
    return missing_columns


@feature
def is_dataset_numeric(X, missing_values_reference_list=None):
    for _, _misslist, dtype_str in _classified_columns(X, missing_values_reference_list):
        if _is_text(dtype_str):
            return False
    return True


@feature
def get_dataset_non_numeric_columns(X, missing_values_reference_list=None):
    string_columns = []
    for j, _misslist, dtype_str in _classified_columns(X, missing_values_reference_list):
        if _is_text(dtype_str):
            string_columns.append(j)
    return string_columns
