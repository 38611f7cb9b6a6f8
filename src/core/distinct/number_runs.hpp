// Distinct numbers: what is left of a column once some rows are left out, and what a sorted column comes down to.
//
// `Number` is float, double or an integer type. Equality is all that counts here, so that signed integers may be handed
// over as unsigned ones, except where their range is asked for.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorin::core {

// Marks the nulls of a column of floats, and counts them. `stride` in bytes.
template <class Float>
std::size_t mark_nulls(const char* data, std::ptrdiff_t stride, std::size_t rows, char* mask) noexcept;

std::size_t count_marked(const char* mask, std::size_t rows) noexcept;

// The rows that `left_out` does not mark, side by side; all of them without a mask. There is room for exactly `kept` of
// them.
template <class From, class To>
void copy_kept(const char* data, std::ptrdiff_t stride, const char* left_out, To* out, std::size_t kept) noexcept;

// How many different numbers stand in a sorted row of them. None of them is NaN.
template <class Number>
std::size_t count_runs(const Number* sorted, std::size_t size) noexcept;

// Each of the `runs` different numbers, as it stands first, and how often it stands there. `values` may be in the same
// array, at `sorted` or before it.
template <class Number>
void write_runs(const Number* sorted, std::size_t size, std::size_t runs, Number* values,
                std::ptrdiff_t* counts) noexcept;

template <class Number>
struct Range {
    Number least;
    Number greatest;
};
template <class Integer>
Range<Integer> range_of(const char* data, std::ptrdiff_t stride, std::size_t rows) noexcept;

// How often each integer occurs, counted from the least one, in a table of zeros that has room for the whole range.
template <class Integer>
void count_each(const char* data, std::ptrdiff_t stride, std::size_t rows, Integer least,
                std::ptrdiff_t* table) noexcept;

// Whether the order that a sort finds among equal numbers can be seen: zeros of both signs, or NaN.
template <class Float>
bool has_unlike_equals(const Float* values, std::size_t size) noexcept;

struct FractionTally {
    std::size_t distinct = 0;
    std::ptrdiff_t rows = 0;
};
// The numbers with a fraction, infinite ones and NaN included, and the sum of their counts.
FractionTally tally_fractions(const double* values, const std::ptrdiff_t* counts, std::size_t size) noexcept;

std::ptrdiff_t sum(const std::ptrdiff_t* counts, std::size_t size) noexcept;

}  // namespace quorin::core
