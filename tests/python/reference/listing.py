"""The classes of a target column."""

from __future__ import annotations

from .namespace import feature, ns


@feature
def getClasses(y, exclude_missing_class_flag=True, missing_values_reference_list=None):
    l_missing_values_reference_list = ns.setValueOrDefault(
        missing_values_reference_list, ns.global_missing_values_reference_list
    )
    misslist, dtype_str = ns.numpy_whatis(y, l_missing_values_reference_list)
    seq = []
    if misslist and exclude_missing_class_flag:
        for i in range(y.shape[0]):
            if y[i] not in misslist:
                seq.append(y[i])
    else:
        for i in range(y.shape[0]):
            seq.append(y[i])
    classes_list = []
    for clas, count in ns.Counter(seq).items():
        classes_list.append((clas, float(count)))
    return classes_list
