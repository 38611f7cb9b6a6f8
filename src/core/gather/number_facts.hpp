// Gathering over columns of numbers: nulls, fractions, signalling NaN.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/column.hpp"
#include "core/simd/instructions.hpp"

namespace quorin::core {

struct NumberFacts {
    bool nulls = false;      // NaN
    bool values = false;     // anything else
    bool fractions = false;  // with a fraction, or infinite
    bool signalling_nan = false;
};

// `Float` is double or float. The result does not depend on `allowed`. Every test reads a block while it is in the
// cache.
template <class Float>
NumberFacts gather_numbers(const StridedMemory& column, Instructions allowed = Instructions::best) noexcept;

// Whether any element is a NaN whose quiet bit is 0: arithmetic with it raises the processor's invalid flag, for which
// numpy warns.
template <class Float>
bool any_signalling_nan(const StridedMemory& column, Instructions allowed = Instructions::best) noexcept;
// False unless the elements are floats.
bool any_signalling_nan(const Column& column) noexcept;

// marks[row] = codes[row] == code. The two do not overlap.
void mark_code(const std::uint8_t* codes, std::size_t rows, std::uint8_t code, std::uint8_t* marks) noexcept;
// The same in place.
void keep_code(std::uint8_t* codes, std::size_t rows, std::uint8_t code) noexcept;
// Writes 1 for each byte that is not zero.
void codes_to_marks(std::uint8_t* codes, std::size_t rows) noexcept;

// Writes 1.0 for each byte that is not zero, 0.0 for the others.
void write_flags(StridedMemory flags, double* out) noexcept;

}  // namespace quorin::core
