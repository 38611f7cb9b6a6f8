// Distinct numbers: the rows of a column that are kept, and the runs of equal numbers in a sorted array.
//
// `Number` is float, double or an integer type. All functions but range_of only compare for equality, so they take
// signed integers as unsigned ones.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/column.hpp"

namespace quorin::core {

// Writes 1 for each null of a column of floats, 0 for the other rows, and returns the number of nulls.
template <class Float>
std::size_t mark_nulls(const StridedMemory& column, char* mask) noexcept;

std::size_t count_marked(const char* mask, std::size_t rows) noexcept;

// Copies the rows that `left_out` does not mark, `kept` in number; without a mask the first `kept` rows.
template <class From, class To>
void copy_kept(const StridedMemory& column, const char* left_out, To* out, std::size_t kept) noexcept;

// The number of distinct numbers in a sorted array without NaN.
template <class Number>
std::size_t count_runs(const Number* sorted, std::size_t size) noexcept;

// Writes the first of each of the `runs` runs of equal numbers and its length. `values` may be in the same array, at
// `sorted` or before it.
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
void count_each(const StridedMemory& column, Integer least, std::ptrdiff_t* table) noexcept;

// Whether equal numbers can differ in their bits, so that the result of an unstable sort can be ambiguous: zeros of
// both signs, or NaN.
template <class Float>
bool has_unlike_equals(const Float* values, std::size_t size) noexcept;

struct FractionTally {
    std::size_t distinct = 0;
    std::ptrdiff_t rows = 0;
};
// The numbers with a fraction, with infinite ones and NaN, and the sum of their counts.
FractionTally tally_fractions(const double* values, const std::ptrdiff_t* counts, std::size_t size) noexcept;

std::ptrdiff_t sum(const std::ptrdiff_t* counts, std::size_t size) noexcept;

}  // namespace quorin::core
