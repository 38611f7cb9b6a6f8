#include "exportable_utils/references/list_membership.hpp"

#include <algorithm>

namespace quorin::references {

bool is_same_null_listed(PyObject* null, const References& list) noexcept {
    return std::find(list.objects.begin(), list.objects.end(), null) != list.objects.end();
}

std::optional<bool> is_integer_listed(PyObject* integer, const References& list) noexcept {
    if (list.numbers.empty()) return false;
    const std::optional<std::uint32_t> bits = list.bits_of_object(object_number_of(integer));
    if (!bits) return std::nullopt;
    return *bits != 0;
}

}  // namespace quorin::references
