"""Numbers from text, floats from booleans, text from numbers."""

from __future__ import annotations

from .namespace import ns, routine


@routine
def numpy_floatstr2float(X, missing_values_reference_list=None):
    if missing_values_reference_list is None:
        l_missing_values_reference_list = []
    else:
        l_missing_values_reference_list = missing_values_reference_list
    Y = X.copy()
    for i in range(X.shape[0]):
        if X[i] in l_missing_values_reference_list:
            Y[i] = ns.np.nan
        elif ns.isfloat(X[i]):
            pass
        else:
            try:
                Y[i] = float(X[i])
            except Exception as e:
                Y[i] = ns.np.nan
                print(e)
                print("Setting value " + str(X[i]) + " to NaN")
    Z = Y.astype(float)
    return Z


@routine
def numpy_boolean2float(X, missing_values_reference_list=None):
    if X.dtype == "bool":
        if missing_values_reference_list is not None:
            missing_values_mask = ns.numpy_isin(X, missing_values_reference_list)
            X[missing_values_mask] = ns.np.nan
        Y = X.astype(float)
        return Y
    return X


@routine
def convert_float32(X, force_flag=False):
    if X.dtype == "float64" or force_flag:
        Y = X.astype("float32")
        return Y
    return X


@routine
def numpy_column_float2str(X, fast_conversion_flag=True):
    if fast_conversion_flag:
        Y = X.astype(str)
        return Y
    Y = X
    for i in range(X.shape[0]):
        elt = X[i]
        if ns.pd.isnull(elt):
            elt_i = "?"
        elif isinstance(elt, float):
            # np.float and np.int of old numpy were aliases of `float` and `int`.
            elt_i = str(int(elt)) if elt.is_integer() else str(elt)
        else:
            elt_i = str(elt)
        Y[i] = elt_i
    return Y
