// Whether all numbers of a column lie within limits, in some unit.
#pragma once

#include "core/column.hpp"

namespace quorin::core {

struct Limits {
    double mean;
    double allowed;  // distance from the mean
    double min;
    double max;
};

// Below, `Number` is double, float, std::int64_t or std::uint8_t. Floats are computed as float, all others as double.

// Whether for every number x: x == 0, or x is a quiet NaN, or least <= |x| <= most.
template <class Number>
bool all_ordinary(const StridedMemory& column, double least, double most) noexcept;

// Whether every number, multiplied by the factor, is within the limits. NaN is.
template <class Number>
bool all_within(const StridedMemory& column, double factor, const Limits& limits) noexcept;

}  // namespace quorin::core
