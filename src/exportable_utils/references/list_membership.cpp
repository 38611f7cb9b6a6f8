#include "exportable_utils/references/list_membership.hpp"

#include <algorithm>

namespace quorin::references {

bool is_same_null_listed(PyObject* null, const References& references) noexcept {
    return std::any_of(references.objects.begin(), references.objects.end(),
                       [null](const Ref& reference) { return reference.is(null); });
}

std::optional<bool> is_integer_listed(PyObject* integer, const References& references) noexcept {
    if (references.numbers.empty()) return false;
    const std::optional<ReferenceBits> bits = references.bits_of_object(object_number_of(integer));
    if (!bits) return std::nullopt;
    return *bits != 0;
}

}  // namespace quorin::references
