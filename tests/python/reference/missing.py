"""Reference values, missing-value masks, distinct values."""

from __future__ import annotations

from .namespace import ns, routine


@routine
def indicator_mask(reference_set, l):  # noqa: E741
    is_in_reference = ns.np.vectorize(lambda x: x in reference_set, otypes=[bool])
    return is_in_reference(l)


@routine
def numpy_isin(X, values_reference_list, debug=False):
    if debug:
        limit = min(50, X.shape[0])
        print("Starting numpy_isin(): Starting\n X column: " + str(X[list(range(limit))]) + "\n")
        start_time = ns.time.time()
    l_X = ns.numpy_flatten_column(X)
    l_values_reference_list = values_reference_list
    nan_missing_mask = ns.pd.isnull(l_values_reference_list)
    if ns.np.any(nan_missing_mask):
        non_nan_values_reference_list = list(
            ns.np.asarray(l_values_reference_list)[~nan_missing_mask]
        )
        if len(non_nan_values_reference_list) == 0:
            result = ns.pd.isnull(l_X)
        else:
            nan_cond = ns.pd.isnull(l_X)
            set_non_nan_values_reference_list = set(non_nan_values_reference_list)
            if debug:
                print(l_X[list(range(limit))])
                print(set_non_nan_values_reference_list)
            non_nan_cond = ns.indicator_mask(set_non_nan_values_reference_list, l_X)
            result = nan_cond | non_nan_cond
    else:
        set_reference_values_list_col = set(l_values_reference_list)
        result = ns.indicator_mask(set_reference_values_list_col, l_X)
    if debug:
        np_isin_time = ns.time.time()
        print("Ending numpy_isin(): Ending, elapsed time (s)" + str(np_isin_time - start_time))
    return result


@routine
def numpy_compute_missing_indicator(
    X, missing_values_list, stop_at_one_missing_value_flag=False, debug=False
):
    missing_masks_list = []
    missing_reference_values_exist_list = []
    if debug:
        row_limit = min(50, X.shape[0])
        print(
            "numpy_compute_missing_indicator(): Column: " + str(X[list(range(row_limit))]) + "\n\n"
        )
    for _, missing_value in enumerate(missing_values_list):
        if debug:
            numpy_isin_start = ns.time.time()
            print(
                "\n\nnumpy_compute_missing_indicator():Checking for missing_value="
                + str(missing_value)
            )
        missing_mask = ns.numpy_isin(X, [missing_value])
        missing_value_found = ns.np.any(missing_mask)
        if missing_value_found:
            missing_reference_values_exist_list.append(missing_value)
            missing_masks_list.append(missing_mask)
            if stop_at_one_missing_value_flag:
                break
        if debug:
            print(
                "numpy_compute_missing_indicator():missing_value="
                + str(missing_value)
                + " found: "
                + str(missing_value_found)
                + "\nelapsed_time: numpy_isin_elapsed_end(s): "
                + str(ns.time.time() - numpy_isin_start)
            )
    if len(missing_masks_list) > 0:
        for i, missing_mask_arr in enumerate(missing_masks_list):
            if i == 0:
                cum_missing_mask_arr = missing_mask_arr
            else:
                cum_missing_mask_arr = cum_missing_mask_arr | missing_mask_arr
    else:
        cum_missing_mask_arr = ns.np.zeros((X.shape[0],), dtype=bool)
        missing_masks_list = list(cum_missing_mask_arr)
        missing_reference_values_exist_list = []
    return cum_missing_mask_arr, missing_masks_list, missing_reference_values_exist_list


@routine
def get_unique_values(
    y,
    exclusion_list=None,
    return_index=False,
    return_inverse=False,
    return_counts=False,
    fast_str_conversion_flag=True,
):
    if exclusion_list:
        included_mask = ns.numpy_isin(y, exclusion_list)
        y_to_process = y[~included_mask]
    else:
        y_to_process = y
    try:
        result = ns.np.unique(y_to_process, return_index, return_inverse, return_counts)
    except Exception as e:
        if "not supported between instances of" in str(e) and "'str'" in str(e):
            ns.logger.warning(str(e) + ", Converting to string column")
            y_to_process = ns.numpy_column_float2str(
                X=y_to_process, fast_conversion_flag=fast_str_conversion_flag
            )
            result = ns.np.unique(y_to_process, return_index, return_inverse, return_counts)
        else:
            ns.QSR_raise_exception(exception_obj=e, exception_trace_flag=True)
            # Reached only if that routine was replaced by one that returns.
            raise UnboundLocalError("local variable 'result' referenced before assignment")
    return result
