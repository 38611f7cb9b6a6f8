"""The meaning of a column: sex, height, weight, age, dates, signs, and the tests of FC."""

from __future__ import annotations

from .namespace import feature, ns


@feature
def check_statistics(dfc, mean_value, std_value, min_value, max_value, num_stds, unit_factors_list):
    X = dfc.values
    flag = False
    for k in unit_factors_list:
        flag = True
        if X.ndim == 1:
            for i in range(X.shape[0]):
                elt = k * X[i]
                if (
                    abs(elt - mean_value) > num_stds * std_value
                    or elt > max_value
                    or elt < min_value
                ):
                    flag = False
                    break
        else:
            for i in range(X.shape[0]):
                for j in range(X.shape[1]):
                    elt = k * X[i, j]
                    if (
                        abs(elt - mean_value) > num_stds * std_value
                        or elt > max_value
                        or elt < min_value
                    ):
                        flag = False
                        break
        if flag:
            break
    return flag


@feature
def is_column_sex(dfc):
    flag = False
    if isinstance(dfc.values[0, 0], str):
        values = dfc[0].unique()
        if len(values) == 2 and (
            (values[0] == "male" and values[1] == "female")
            or (values[1] == "male" and values[0] == "female")
            or (values[0] == "m" and values[1] == "f")
            or (values[1] == "m" and values[0] == "f")
        ):
            flag = True
    return flag


@feature
def is_column_height(dfc):
    if isinstance(dfc.values[0, 0], str):
        return False
    # The spread is (2.9 ** 2 + 2.7 ** 2) / 4, which is not a pooled deviation.
    return ns.FCplus.check_statistics(dfc, 66.4, 3.9250000000000003, 21.49, 107.08, 3, [1, 2.54])


@feature
def is_column_weight(dfc):
    if isinstance(dfc.values[0, 0], str):
        return False
    return ns.FCplus.check_statistics(dfc, 177.9, 40.9, 102, 300, 3, [1, 0.453592])


@feature
def is_column_age(dfc, missing_values_reference_list=None):
    l_missing_values_reference_list = ns.setValueOrDefault(
        missing_values_reference_list, ns.global_missing_values_reference_list
    )
    miss_values, dtype_str = ns.numpy_whatis(dfc.values[0], l_missing_values_reference_list)
    if isinstance(dfc.values[0, 0], str) or dtype_str != "int_num":
        return False
    return ns.FCplus.check_statistics(dfc, 40, 20, 0, 100, 2, [1])


@feature
def is_column_datetime(column):
    result = ns.numpy_is_column_datetime(column)
    return result


@feature
def is_column_missing(column, missing_values_reference_list=None):
    l_missing_values_reference_list = ns.setValueOrDefault(
        missing_values_reference_list, ns.global_missing_values_reference_list
    )
    flag = False
    misslist, dtype_str = ns.numpy_whatis(column, l_missing_values_reference_list)
    if misslist:
        flag = True
    return flag


@feature
def is_column_string(column, missing_values_reference_list=None):
    l_missing_values_reference_list = ns.setValueOrDefault(
        missing_values_reference_list, ns.global_missing_values_reference_list
    )
    misslist, dtype_str = ns.numpy_whatis(column, l_missing_values_reference_list)
    return bool(dtype_str == "char_str")


@feature
def is_column_timestamp(series):
    if isinstance(series.values[0, 0], str):
        return False
    common = ns.pd.core.dtypes.common
    return common.is_datetime64_ns_dtype(series) | common.is_timedelta64_ns_dtype(series)


@feature
def is_column_positive(dfc):
    if isinstance(dfc.values[0, 0], str):
        return False
    return ns.FC.is_positive(dfc).bool()


@feature
def is_column_non_negative(dfc):
    if isinstance(dfc.values[0, 0], str):
        return False
    return ns.FC.is_non_negative(dfc).bool()


@feature
def is_column_not_all_non_negative(dfc):
    if isinstance(dfc.values[0, 0], str):
        return False
    return ns.FC.is_not_all_non_negative(dfc)


@feature
def is_column_lt80pc_unique_int(dfc):
    if isinstance(dfc.values[0, 0], str):
        return False
    return ns.FC.is_lt80pc_unique_int(dfc)


@feature
def is_column_categorical_mult_cats(dfc, missing_values_reference_list=None):
    return (
        ns.FCplus.is_column_categorical(
            dfc, missing_values_reference_list=missing_values_reference_list
        )
        and len(ns.np.unique(dfc)) > 2
    )


@feature
def is_column_not_categorical(dfc, missing_values_reference_list=None):
    return not ns.FCplus.is_column_categorical(
        dfc, missing_values_reference_list=missing_values_reference_list
    )


@feature
def is_column_constant(dfc):
    return ns.FC.is_constant(dfc)


@feature
def is_column_string_in_datetime_format(column):
    return ns.FC.is_string_in_datetime_format(column)


@feature
def is_column_epoch(column):
    return ns.FC.is_epoch(column)


@feature
def is_column_longitude(column, name=None):
    return ns.FC.is_longitude(column, name)


@feature
def is_column_latitude(column, name=None):
    return ns.FC.is_latitude(column, name)


@feature
def is_column_distance(column):
    return ns.FC.is_distance(column)
