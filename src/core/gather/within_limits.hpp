// Tests whether all numbers of a column, multiplied by a factor, are within limits.
#pragma once

#include "core/column.hpp"

namespace quorin::core {

struct Limits {
    double mean;
    double allowed;  // maximum distance from the mean
    double min;
    double max;
};

// `Number` is double, float, std::int64_t or std::uint8_t. The arithmetic is in float for float, in double otherwise.

// Ordinary numbers x: x == 0, or x is a quiet NaN, or least <= |x| <= most. Their arithmetic neither overflows nor
// underflows nor raises the processor's invalid flag.
struct Ordinary {
    double least;
    double most;
};

template <class Number>
bool all_ordinary(const StridedMemory& column, const Ordinary& ordinary) noexcept;

// Whether every number, multiplied by the factor, is within the limits. NaN counts as within.
template <class Number>
bool all_within(const StridedMemory& column, double factor, const Limits& limits) noexcept;

enum class Fit { all, not_all, unknown };

// The result of all_within(). Stops after the block of the first number that is outside the limits; returns
// Fit::unknown if it finds a number up to there that is not ordinary.
template <class Number>
Fit fit(const StridedMemory& column, double factor, const Limits& limits, const Ordinary& ordinary) noexcept;

}  // namespace quorin::core
