#include "features/column.hpp"
#include "features/features.hpp"
#include "interp/operations.hpp"
#include "interp/space.hpp"
#include "interp/table.hpp"

namespace quorin::features {

constinit const Definition getClasses{
    .name = "getClasses",
    .parameters = {{"y", required, Annotation::ndarray},
                   {"exclude_missing_class_flag", true},
                   {"missing_values_reference_list", None}},
    .doc = R"(Lists the classes of a target and how often each occurs.

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
)",
    .body = [](Object y, Object exclude_missing_class_flag, Object missing_values_reference_list) -> Ref {
        const Ref l_missing_values_reference_list = markers_in_force(missing_values_reference_list);
        const auto [misslist, dtype_str] = whatis(y, l_missing_values_reference_list);
        const bool exclude = truth(misslist) && truth(exclude_missing_class_flag);
        const Ref seq = list({});
        const Py_ssize_t rows = count(row_count(y));
        for (Py_ssize_t i = 0; i < rows; ++i) {
            if (!exclude || !contains(misslist, item(y, i))) append(seq, item(y, i));
        }
        Ref classes_list = list({});
        const Ref items = iterate(global("Counter"_py)({seq}).attr("items"_py)());
        while (const Ref entry = next(items)) {
            const auto [clas, occurrences] = unpack<2>(entry);
            const bool is_float = PyFloat_CheckExact(occurrences.get());
            append(classes_list,
                   tuple({clas, is_float ? Ref::share(occurrences) : Object(&PyFloat_Type)({occurrences})}));
        }
        return classes_list;
    },
};

}  // namespace quorin::features
