#include "exportable_utils/features/classifier_calls.hpp"

#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::features {

Ref markers_in_force(Object missing_values_reference_list, Where where) {
    return global(At("setValueOrDefault"_py, where))(
        {missing_values_reference_list, global(At("global_missing_values_reference_list"_py, where))}, {}, where);
}

Classifier::Classifier(Where where) : numpy_whatis_(global(At("numpy_whatis"_py, where))) {}

Classified Classifier::operator()(Object column, Object l_missing_values_reference_list, Where where) const {
    const Ref result = numpy_whatis_({column, l_missing_values_reference_list}, {}, where);
    auto [misslist, dtype_str] = unpack<2>(result, where);
    return {std::move(misslist), std::move(dtype_str)};
}

Ref is_categorical(Object column, Object missing_values_reference_list, Where where) {
    return global(At("FCplus"_py, where))
        .attr(At("is_column_categorical"_py, where))(
            {column}, {{"missing_values_reference_list"_py, missing_values_reference_list}}, where);
}

bool first_cell_is_text(Object dfc, Where where) {
    return is_text(item(dfc.attr(At("values"_py, where)), tuple({0, 0}), where), where);
}

}  // namespace quorin::features
