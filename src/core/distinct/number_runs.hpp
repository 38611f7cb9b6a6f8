// Kernels for distinct numbers: null masks, copies of some rows, and runs of equal numbers in a sorted array. `Number`
// is float, double or an integer type.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/column.hpp"

namespace quorin::core {

// mask[row] = column[row] is NaN, for a column of floats. Returns the number of NaN.
template <class Float>
std::size_t mark_nulls(const StridedMemory& column, char* mask) noexcept;

std::size_t count_marked(const char* mask, std::size_t rows) noexcept;

// Copies the `kept` rows with left_out[row] == 0; the first `kept` rows if `left_out` is null.
template <class From, class To>
void copy_kept(const StridedMemory& column, const char* left_out, To* out, std::size_t kept) noexcept;

// The number of distinct numbers in a sorted array without NaN.
template <class Number>
std::size_t count_runs(const Number* sorted, std::size_t size) noexcept;

// Writes the value and the length of each of the `runs` runs of equal numbers. `values` may point into the same array,
// if values <= sorted.
template <class Number>
void write_runs(const Number* sorted, std::size_t size, std::size_t runs, Number* values,
                std::ptrdiff_t* counts) noexcept;

template <class Number>
struct Range {
    Number least;
    Number greatest;
};
template <class Integer>
Range<Integer> range_of(const StridedMemory& column) noexcept;

// Adds 1 to table[x - least] for each integer x.
template <class Integer>
void count_each(StridedMemory column, Integer least, std::ptrdiff_t* table) noexcept;

// Whether zeros of both signs or NaN occur: equal numbers then can have different bits, so that the result of an
// unstable sort is not unique.
template <class Float>
bool has_unlike_equals(const Float* values, std::size_t size) noexcept;

struct FractionTally {
    std::size_t distinct = 0;
    std::ptrdiff_t rows = 0;
};
// The number of values that have a fraction, are infinite or NaN, and the sum of their counts.
FractionTally tally_fractions(const double* values, const std::ptrdiff_t* counts, std::size_t size) noexcept;

std::ptrdiff_t sum(const std::ptrdiff_t* counts, std::size_t size) noexcept;

}  // namespace quorin::core
