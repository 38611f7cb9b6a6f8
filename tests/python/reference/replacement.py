"""Replacing values, and compressing text labels."""

from __future__ import annotations

from .namespace import ns, routine


@routine
def numpy_putmask(X, replace_values_mask, filling_value):
    Y = X.astype(object)
    ns.np.putmask(Y, replace_values_mask, filling_value)
    return Y


@routine
def numpy_replace_values(X, filling_value, reference_values_list, invert_flag=False):
    if not reference_values_list:
        return X
    list2_flag = isinstance(reference_values_list[0], list)
    num_rows = X.shape[0]
    num_columns = 1 if X.ndim == 1 else X.shape[1]
    Y = ns.np.empty((num_rows, num_columns), dtype=object)
    for j in range(num_columns):
        if X.ndim == 1:
            Xcol = X
            Y[j]  # fails for an array without rows
        else:
            Xcol = X[:, j]
        reference_values_list_col = (
            reference_values_list[j] if list2_flag else reference_values_list
        )
        if invert_flag:
            replace_values_mask = ~ns.numpy_isin(Xcol, reference_values_list_col)
        else:
            replace_values_mask = ns.numpy_isin(Xcol, reference_values_list_col)
        if ns.np.any(replace_values_mask):
            if X.ndim == 1:
                Y = ns.numpy_putmask(Xcol, replace_values_mask, filling_value)
            else:
                Y[:, j] = ns.numpy_putmask(Xcol, replace_values_mask, filling_value)
        elif X.ndim == 1:
            Y = Xcol
        else:
            Y[:, j] = Xcol
    return Y


@routine
def compress_string(s, compress_type="string"):
    if compress_type == "string":
        return "".join(s.split())
    return int(ns.hashlib.md5(s.encode()).hexdigest(), 16)


@routine
def compress_str_column(X, misslist, compress_type="string"):
    Xcol = ns.np.asarray(X) if isinstance(X, list) else X
    if Xcol.dtype.kind not in "OSUV":
        return Xcol
    Xcol_str = Xcol.astype(str)
    num_rows = Xcol_str.shape[0]
    for i in range(num_rows):
        str_elt = Xcol_str[i]
        if not ns.pd.isnull(str_elt) and str_elt not in misslist and not str_elt.isalnum():
            Xcol[i] = ns.compress_string(str_elt, compress_type=compress_type)
        elif compress_type == "hash":
            if ns.pd.isnull(str_elt) or str_elt in misslist:
                Xcol[i] = ns.np.nan
            else:
                Xcol[i] = ns.compress_string(str_elt, compress_type=compress_type)
    return Xcol
