#include <optional>

#include "exportable_utils/features/class_counts.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "python/errors.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

// All objects of the column are held before the first tuple is made: that may start the collector, and with it code
// that writes into the column.
Ref native_classes(Object y, Object left_out) {
    if (!originals_in_place()) return {};
    const std::optional<ArrayColumn> column = flat_column(y);
    if (!column) return {};
    const std::optional<references::References> values = references::read_references(left_out, *column);
    if (!values) return {};
    const auto classes = classes_of(*column, *values);
    if (!classes) return {};
    std::vector<Ref> elements = elements_of(*column, *classes);
    Ref classes_list = Ref::take(PyList_New(static_cast<Py_ssize_t>(classes->size())));
    Ref occurrences;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        // Neighbours that occur equally often share the number.
        if (i == 0 || (*classes)[i].count != (*classes)[i - 1].count) {
            occurrences = Ref::take(PyFloat_FromDouble(static_cast<double>((*classes)[i].count)));
        }
        PyObject* pair = Ref::take(PyTuple_New(2)).give();
        PyTuple_SET_ITEM(pair, 0, elements[i].give());
        PyTuple_SET_ITEM(pair, 1, Ref::share(occurrences).give());
        // Nothing in a pair refers to anything, so the collector would let go of it when it first looks; many pairs
        // that it has yet to look at make it go through everything there is.
        PyObject_GC_UnTrack(pair);
        PyList_SET_ITEM(classes_list.get(), static_cast<Py_ssize_t>(i), pair);
    }
    return classes_list;
}

}  // namespace

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
        const auto [misslist, dtype_str] = Classifier()(y, l_missing_values_reference_list);
        const bool exclude = truth(misslist) && truth(exclude_missing_class_flag);
        if (Ref classes_list = native_classes(y, exclude ? Object(misslist) : Object(Py_None))) return classes_list;
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
