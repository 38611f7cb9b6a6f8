"""Choosing, permuting and flattening columns."""

from __future__ import annotations

from .namespace import ns, routine


@routine
def numpy_select_columns(X, columns_indices_list):
    columns_selected_flag = False
    if not (
        columns_indices_list is not None
        and isinstance(columns_indices_list, list)
        and columns_indices_list
    ):
        return X, columns_selected_flag
    if isinstance(X, list):
        x_ndim = len(X)
        x_numelts = len(X)
    else:
        x_ndim = X.ndim
        x_numelts = X.shape[1]
    if x_ndim == 1:
        ns.logger.warning(
            "numpy_select_columns(): Input array has only one column."
            " No column selection will occur."
        )
        return X, columns_selected_flag
    for i, index in enumerate(columns_indices_list):
        if index < 0 and index >= x_numelts:
            # `i` is a number: the first `+` raises, and nothing is logged.
            ns.logger.warning(
                "numpy_select_columns(): train_sample_columns_index_list "
                + i
                + "th index is "
                + index
                + ": this is out of dataset column range [0,"
                + x_numelts
                + "-1]"
            )
            ns.logger.warning("No column selection will occur.")
            return X, columns_selected_flag
    columns_selected_flag = True
    if isinstance(X, list):
        Y = list(ns.np.array(X)[columns_indices_list])
    else:
        Y = X[:, columns_indices_list]
    return Y, columns_selected_flag


@routine
def numpy_flatten_column(X, remove_second_dim=True):
    if isinstance(X[0], ns.np.ndarray) and X[0].shape[0] == 1:
        Y = ns.np.concatenate(X).ravel()
        if remove_second_dim:
            Y = ns.numpy_remove_second_dim(Y)
    else:
        Y = X
    return Y


@routine
def numpy_remove_second_dim(X):
    Y = X
    if X.ndim > 1 and X.shape[1] == 1:
        Y = X.reshape(-1)
    return Y


@routine
def numpy_permute_array(X, permutation_indices=None, axis=None):
    l_permutation_indices = [] if permutation_indices is None else permutation_indices
    l_axis = 0 if axis is None else axis
    if not l_permutation_indices:
        Y = X.copy()
    else:
        i = ns.np.argsort(l_permutation_indices)
        if l_axis == 0:
            Y = X[:, i].copy()
        elif l_axis == 1:
            Y = X[i, :].copy()
        else:
            Y = X.copy()
    return Y
