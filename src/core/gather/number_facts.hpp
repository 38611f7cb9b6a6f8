// Gathering over columns of numbers: whether any is missing, whether any has a fraction.
#pragma once

#include <cstddef>

namespace quorin::core {

struct NumberFacts {
    bool nulls = false;      // NaN
    bool values = false;     // anything else
    bool fractions = false;  // with a fraction, or infinite
};

// The answer is the same with any. `baseline` are those that every processor of the kind has; more is used only where
// the processor has it.
enum class Instructions { baseline, avx2, best };

// `stride` in bytes. The walk ends once nulls and fractions were both seen.
NumberFacts gather_float64(const char* data, std::ptrdiff_t stride, std::size_t rows,
                           Instructions instructions = Instructions::best) noexcept;
NumberFacts gather_float32(const char* data, std::ptrdiff_t stride, std::size_t rows,
                           Instructions instructions = Instructions::best) noexcept;

// 1.0 for each byte that is not zero, 0.0 for the others. `stride` in bytes.
void write_flags(const char* data, std::ptrdiff_t stride, std::size_t rows, double* out) noexcept;

}  // namespace quorin::core
