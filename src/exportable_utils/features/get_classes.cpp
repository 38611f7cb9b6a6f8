#include <optional>

#include "exportable_utils/features/class_counts.hpp"
#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "python/errors.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

// A list of (element, occurrences).
Ref list_of_pairs(std::vector<Ref>& elements, const std::vector<distinct::DistinctRow>& rows) {
    constexpr std::size_t pairs_between_polls = 4096;
    ListUnderConstruction pairs(elements.size());
    SignalTimer timer;
    Ref occurrences;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i % pairs_between_polls == pairs_between_polls - 1) timer.poll();
        // Consecutive classes of equal size share the number.
        if (i == 0 || rows[i].count != rows[i - 1].count) {
            occurrences = Ref::take(PyFloat_FromDouble(static_cast<double>(rows[i].count)));
        }
        pairs.append(untracked_pair(std::move(elements[i]), Ref::share(occurrences)));
    }
    return pairs.finish();
}

Ref native_classes(Object y, Object excluded_list) {
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> column = ColumnSource::flat(y);
        if (!column) return {};
        const std::optional<references::References> excluded = references::read_references(excluded_list, *column);
        if (!excluded) return {};
        std::optional<Classes> classes = classes_of(*column, *excluded);
        if (!classes) return {};
        std::optional<std::vector<Ref>> elements = elements_of(*column, *classes);
        return elements ? list_of_pairs(*elements, classes->rows) : Ref();
    });
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
    .has_native_route = true,
    .lookups = {"setValueOrDefault", "numpy_whatis", "Counter"},
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
