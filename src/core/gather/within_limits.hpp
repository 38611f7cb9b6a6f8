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

// The numbers x whose arithmetic neither overflows nor underflows nor raises the processor's invalid flag: x == 0, or x
// is a quiet NaN, or least <= |x| <= most.
struct Ordinary {
    double least;
    double most;
};

// Whether all numbers are ordinary.
template <class Number>
bool all_ordinary(const StridedMemory& column, const Ordinary& ordinary) noexcept;

// Whether every number, multiplied by the factor, is within the limits. NaN is.
template <class Number>
bool all_within(const StridedMemory& column, double factor, const Limits& limits) noexcept;

enum class Fit { all, not_all, unknown };

// The result of all_within(), computed no further than to the first number that is outside. Unknown if a number that is
// not ordinary is found up to there, or shortly after it.
template <class Number>
Fit fit(const StridedMemory& column, double factor, const Limits& limits, const Ordinary& ordinary) noexcept;

}  // namespace quorin::core
