// Marking the missing numbers of a column.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorin::kernels {

// Writes 1 for NaN and 0 for all else, row by row; whether any is NaN. `stride` in bytes.
bool mark_nulls_float64(const char* data, std::ptrdiff_t stride, std::size_t rows, std::uint8_t* out) noexcept;
bool mark_nulls_float32(const char* data, std::ptrdiff_t stride, std::size_t rows, std::uint8_t* out) noexcept;

}  // namespace quorin::kernels
