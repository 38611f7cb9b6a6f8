#include "columns/listed.hpp"

#include <algorithm>

namespace quorin::columns {

bool is_same_null_listed(PyObject* null, const Markers& list) noexcept {
    return std::find(list.objects.begin(), list.objects.end(), null) != list.objects.end();
}

std::optional<bool> is_integer_listed(PyObject* integer, const Markers& list) noexcept {
    if (list.numbers.empty()) return false;
    const std::optional<std::uint32_t> bits = list.bits_of_object(number_of(integer));
    if (!bits) return std::nullopt;
    return *bits != 0;
}

}  // namespace quorin::columns
