// Numbers that are Python objects.
#pragma once

#include <cmath>
#include <cstdint>

#include "core/float_bits.hpp"
#include "python/numpy.hpp"

namespace quorin {

// 2^53: every integer n with |n| <= 2^53 is exact as a float64.
constexpr double exact_limit = 9007199254740992.0;
constexpr long long exact_whole_limit = 1LL << 53U;

// The types whose equality and order are known: the interpreter's own and the numpy scalars that agree with them.
enum class NumberType : std::uint8_t {
    none,
    boolean,
    integer,
    large,  // an integer beyond 64 bits
    real
};

struct ObjectNumber {
    NumberType type = NumberType::none;
    bool scalar = false;  // of a numpy type
    long long whole = 0;  // the value of a boolean or an integer
    double real = 0;

    // Whether it is an integer that a float64 might not represent exactly.
    [[nodiscard]] bool beyond_exact() const noexcept {
        return type == NumberType::large || whole > exact_whole_limit || whole < -exact_whole_limit;
    }
};

// NumberType::none for a signalling NaN: numpy warns when it is compared.
inline ObjectNumber object_number_of(double value, bool scalar) noexcept {
    return {core::is_signalling_nan(value) ? NumberType::none : NumberType::real, scalar, 0, value};
}

inline ObjectNumber object_number_of(PyObject* value) noexcept {
    const PyTypeObject* type = Py_TYPE(value);
    if (type == &PyFloat_Type) return object_number_of(PyFloat_AS_DOUBLE(value), false);
    if (type == &PyLong_Type) {
        int overflow = 0;
        const long long whole = PyLong_AsLongLongAndOverflow(value, &overflow);
        return {overflow == 0 ? NumberType::integer : NumberType::large, false, whole, 0};
    }
    if (type == &PyBool_Type) return {NumberType::boolean, false, value == Py_True ? 1 : 0, 0};
    if (type == &PyDoubleArrType_Type)
        return object_number_of(reinterpret_cast<PyDoubleScalarObject*>(value)->obval, true);
    if (type == &PyLongArrType_Type)
        return {NumberType::integer, true, reinterpret_cast<PyLongScalarObject*>(value)->obval, 0};
    if (type == &PyBoolArrType_Type)
        return {NumberType::boolean, true, reinterpret_cast<PyBoolScalarObject*>(value)->obval != 0, 0};
    return {};
}

// Whether value is a number that sorts exactly among such numbers: not NaN, not beyond 64 bits, and not a numpy scalar,
// which rounds large integers when it is compared.
inline bool is_sortable_number(PyObject* value) noexcept {
    const PyTypeObject* type = Py_TYPE(value);
    if (type == &PyFloat_Type) return !std::isnan(PyFloat_AS_DOUBLE(value));
    const ObjectNumber number = object_number_of(value);
    return number.type != NumberType::none && number.type != NumberType::large && !number.scalar;
}

// Whether value is finite and has no fractional part.
inline bool is_whole(double value) noexcept {
    if (std::fabs(value) < exact_limit) return static_cast<double>(static_cast<std::int64_t>(value)) == value;
    return std::isfinite(value);
}

}  // namespace quorin
