// Gathers facts about columns of numbers: nulls, fractions, signalling NaN.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/column.hpp"
#include "core/simd/instructions.hpp"

namespace quorin::core {

struct NumberFacts {
    bool nulls = false;      // NaN
    bool values = false;     // numbers that are not NaN
    bool fractions = false;  // numbers with a fraction, and infinities
    bool signalling_nan = false;
};

// `Float` is double or float. The result does not depend on `allowed`. Works in blocks, so that all tests of a block
// read from the cache.
template <class Float>
NumberFacts gather_numbers(const StridedMemory& column, Instructions allowed = Instructions::best) noexcept;

// Whether any element is a NaN whose quiet bit is 0: arithmetic with it raises the processor's invalid flag, and numpy
// then warns.
template <class Float>
bool any_signalling_nan(const StridedMemory& column, Instructions allowed = Instructions::best) noexcept;
// The same for any column; false if the elements are not floats.
bool any_signalling_nan(const Column& column) noexcept;

// marks[row] = codes[row] == code. The arrays must not overlap.
void mark_code(const std::uint8_t* codes, std::size_t rows, std::uint8_t code, std::uint8_t* marks) noexcept;
// codes[row] = codes[row] == code.
void keep_code(std::uint8_t* codes, std::size_t rows, std::uint8_t code) noexcept;
// codes[row] = codes[row] != 0.
void codes_to_marks(std::uint8_t* codes, std::size_t rows) noexcept;

// out[row] = flags[row] != 0 ? 1.0 : 0.0.
void write_flags(StridedMemory flags, double* out) noexcept;

}  // namespace quorin::core
