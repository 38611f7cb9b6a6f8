#include "columns/listed.hpp"

#include <algorithm>

namespace quorin::columns {

bool is_same_null_listed(PyObject* null, const Markers& list) noexcept {
    return std::find(list.objects.begin(), list.objects.end(), null) != list.objects.end();
}

std::optional<bool> is_integer_listed(PyObject* integer, const Markers& list) noexcept {
    if (list.numbers.empty()) return false;
    int overflow = 0;
    const long long whole = PyLong_AsLongLongAndOverflow(integer, &overflow);
    const auto value = static_cast<double>(whole);
    if (overflow == 0 && std::fabs(value) < exact_whole_limit) return list.bits_of_number(value) != 0;
    for (const Markers::Number& number : list.numbers) {
        if (std::fabs(number.value) >= exact_whole_limit) return std::nullopt;
    }
    return false;
}

}  // namespace quorin::columns
