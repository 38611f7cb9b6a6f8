// Whether all numbers of a column lie within limits, in some unit.
#pragma once

#include <cstddef>

namespace quorin::core {

struct Limits {
    double mean;
    double allowed;  // distance from the mean
    double min;
    double max;
};

// Whether some number is larger than `most`, whatever its sign. NaN is not. `Number` is double, float, std::int64_t or
// std::uint8_t; `stride` in bytes.
template <class Number>
bool any_beyond(const char* data, std::ptrdiff_t stride, std::size_t rows, double most) noexcept;

// Whether every number, multiplied by the factor, is within the limits, in the arithmetic of float for floats and of
// double for all others. NaN is.
template <class Number>
bool all_within(const char* data, std::ptrdiff_t stride, std::size_t rows, double factor,
                const Limits& limits) noexcept;

}  // namespace quorin::core
