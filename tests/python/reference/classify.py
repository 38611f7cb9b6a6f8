"""The column classifier."""

from __future__ import annotations

from .namespace import ns, routine

KINDS = (
    "missing",
    "char_str",
    "date_str",
    "int_str",
    "float_str",
    "float_num",
    "float_int_num",
    "int_num",
    "boolean",
    "Unknown",
)
UNSET = object()


@routine
def numpy_whatis(
    X,
    missing_values_reference_list=None,
    stop_at_one_missing_value_flag=False,
    debug=False,
    use_dtype_str1_flag=True,
    return_stats_flag=False,
):
    if debug:
        row_limit = min(X.shape[0], 50)
        print("numpy_whatis(): Starting. Column: " + str(X[list(range(row_limit))]) + "\n\n")
        start_time = ns.time.time()
    X = ns.numpy_flatten_column(X)
    if missing_values_reference_list is not None:
        missing_values_list = missing_values_reference_list.copy()
    else:
        missing_values_list = []
    new_missing_values_list = []
    dtype_str = "Unknown"
    dtype_str1 = "Unknown"
    found_nonmissing_flag = False
    found_int_str_flag = False
    found_float_str_flag = False
    found_string_flag = False
    start_missing_string_values_list_flag = False
    if X.dtype == "float32":
        X = X.astype(float)
    missing_reference_values_exist_list = []
    cum_missing_mask_arr = UNSET

    if missing_values_list:
        cum_missing_mask_arr, missing_masks_list, missing_reference_values_exist_list = (
            ns.numpy_compute_missing_indicator(
                X,
                missing_values_list,
                stop_at_one_missing_value_flag=stop_at_one_missing_value_flag,
                debug=debug,
            )
        )
        X_non_missing = X[~cum_missing_mask_arr]
        XX, xx_xounts = ns.get_unique_values(X_non_missing, return_counts=True)
    else:
        X_non_missing = X
        XX, xx_xounts = ns.get_unique_values(X_non_missing, [ns.np.nan], return_counts=True)
    if X_non_missing.shape[0] == 0:
        dtype_str = "missing"
        dtype_str1 = "missing"
    unique_values_column_flag = XX.shape[0] == X_non_missing.shape[0]
    constant_column_flag = XX.shape[0] == 1 or dtype_str == "missing"

    num_missing = X.shape[0] - X_non_missing.shape[0]
    dtypes_cnt_dict = {kind: 0 for kind in KINDS}
    dtypes_cnt_dict["missing"] = num_missing
    dtypes_weighted_cnt_dict = dict(dtypes_cnt_dict)
    dtypes_valueslist_dict = {kind: [] for kind in KINDS}
    dtypes_valueslist_dict["missing"] = missing_reference_values_exist_list
    start_missing_string_values_list = []
    weird_new_missing_values_list = []
    dtype_str_found = UNSET

    # The module also keeps a copy of the running class after 2 values; it is never read, so the
    # model omits it.
    if debug:
        dtype_start_time = ns.time.time()
        print("numpy_whatis():Start finding dtype on" + str(XX.shape[0]) + " rows")
    for i in range(XX.shape[0]):
        elt = XX[i]
        if isinstance(elt, ns.six.string_types):
            if (
                found_nonmissing_flag
                and (elt == "" or (len(elt) == 1 and not elt.isalnum()))
                and elt not in weird_new_missing_values_list
            ):
                missing_values_list.append(elt)
                weird_new_missing_values_list.append(elt)
                break
            dtype_str = "char_str"
            dtype_str_found = "char_str"
            if ns.isint(elt) and "." not in elt:
                dtype_str = "int_str"
                dtype_str_found = "int_str"
                if not found_int_str_flag and not found_float_str_flag and found_string_flag:
                    start_missing_string_values_list = XX[:i].tolist()
                found_int_str_flag = True
                found_nonmissing_flag = True
            if ns.isfloat(elt) and "." in elt:
                dtype_str = "float_str"
                dtype_str_found = "float_str"
                if not found_int_str_flag and not found_float_str_flag and found_string_flag:
                    start_missing_string_values_list = XX[:i].tolist()
                found_float_str_flag = True
                found_nonmissing_flag = True
            if dtype_str == "char_str":
                found_string_flag = True
                if found_int_str_flag or found_float_str_flag:
                    if elt not in start_missing_string_values_list:
                        start_missing_string_values_list.append(elt)
        else:
            if isinstance(elt, float):  # np.float was an alias of it
                if not elt.is_integer():
                    dtype_str_found = "float_num"
                    dtype_str = "float_num"
                else:
                    dtype_str_found = "float_int_num"
                    if dtype_str != "float_num":
                        dtype_str = "float_int_num"
                found_nonmissing_flag = True
            if isinstance(elt, (int, ns.np.integer, ns.numbers.Integral)):
                dtype_str_found = "int_num"
                dtype_str = "int_num"
                found_nonmissing_flag = True
            if "bool" in str(type(elt)) or isinstance(elt, ns.np.bool_):
                dtype_str_found = "boolean"
                dtype_str = "boolean"
                found_nonmissing_flag = True
        if dtype_str_found is UNSET:
            raise UnboundLocalError(_unset("dtype_str_found"))
        dtypes_cnt_dict[dtype_str_found] += 1
        dtypes_valueslist_dict[dtype_str_found].append(elt)
        dtypes_weighted_cnt_dict[dtype_str_found] += xx_xounts[i]
    if debug:
        print(
            "numpy_whatis():Ending finding dtype on"
            + str(XX.shape[0])
            + " rows"
            + "\nelapsed_time: numpy_isin_elapsed_end(s): "
            + str(ns.time.time() - dtype_start_time)
        )

    if found_float_str_flag and found_int_str_flag:
        dtype_str = "float_str"
    dtypes_found_list = [
        kind for kind in dtypes_cnt_dict if dtypes_cnt_dict[kind] > 0 and kind != "missing"
    ]
    if len(dtypes_found_list) == 0:
        dtype_str1 = "missing" if dtypes_cnt_dict["missing"] > 0 else "Unknown"
    elif len(dtypes_found_list) == 1:
        dtype_str1 = dtypes_found_list[0]
    else:
        if "char_str" in dtypes_found_list:
            dtype_str1 = "char_str"
            if dtypes_cnt_dict["char_str"] == 1 or weird_new_missing_values_list:
                if "float_str" in dtypes_found_list:
                    dtype_str1 = "float_str"
                    start_missing_string_values_list_flag = True
                elif "int_str" in dtypes_found_list:
                    dtype_str1 = "int_str"
                    start_missing_string_values_list_flag = True
        elif "float_str" in dtypes_found_list:
            dtype_str1 = "float_str"
        if "float_num" in dtypes_found_list:
            dtype_str1 = "float_num"

    if use_dtype_str1_flag:
        dtype_str_final = dtype_str1
        if start_missing_string_values_list_flag:
            new_missing_values_list = (
                missing_reference_values_exist_list
                + start_missing_string_values_list
                + weird_new_missing_values_list
            )
        else:
            new_missing_values_list = (
                missing_reference_values_exist_list + weird_new_missing_values_list
            )
    else:
        dtype_str_final = dtype_str
        new_missing_values_list = (
            missing_reference_values_exist_list
            + start_missing_string_values_list
            + weird_new_missing_values_list
        )

    check_limit = min(XX.shape[0], 50)
    if debug:
        print("numpy_whatis():Starting checking datetime property  on" + str(check_limit) + " rows")
        datetime_start_time = ns.time.time()
    datetime_column_flag = ns.FCplus.is_column_string_in_datetime_format(
        XX[list(range(check_limit))]
    )
    if datetime_column_flag:
        datetime_column_flag = dtype_str == "char_str"
    if debug:
        _print_end(
            "numpy_whatis():Ending checking datetime property  on", check_limit, datetime_start_time
        )

    check_limit = min(X_non_missing.shape[0], 50)
    for name in ("monotonic", "contiguous"):
        # Neither property is tested; only the messages remain.
        if debug:
            print(
                "numpy_whatis():Starting checking {} property  on ".format(name)
                + str(check_limit)
                + " rows"
            )
            property_start_time = ns.time.time()
            _print_end(
                "numpy_whatis():Ending checking {} property on ".format(name),
                check_limit,
                property_start_time,
            )
    if debug:
        print("numpy_whatis():Ending_\nelapsed_time(s): " + str(ns.time.time() - start_time))

    if not return_stats_flag:
        return new_missing_values_list, dtype_str_final
    if cum_missing_mask_arr is UNSET:
        raise UnboundLocalError(_unset("cum_missing_mask_arr"))
    stats_dict = {
        "dtype_str": dtype_str_final,
        "missing_values": new_missing_values_list,
        "unique_values": XX,
        "unique_values_counts": xx_xounts,
        "missing_mask": cum_missing_mask_arr,
        "dtypes_cnt": dtypes_cnt_dict,
        "dtypes_weighted_cnt_dict": dtypes_weighted_cnt_dict,
        "weird_new_missing_values_list": weird_new_missing_values_list,
        "unique_values_column_flag": unique_values_column_flag,
        "constant_column_flag": constant_column_flag,
        "datetime_column_flag": datetime_column_flag,
        "monotonic_column_flag": False,
        "contiguous_column_flag": False,
    }
    return new_missing_values_list, dtype_str_final, stats_dict


def _print_end(text, check_limit, start_time):
    print(
        text + str(check_limit) + " rows" + "\nelapsed_time(s): " + str(ns.time.time() - start_time)
    )


def _unset(name):
    # The wording of older interpreters, on every version.
    return "local variable '{}' referenced before assignment".format(name)
