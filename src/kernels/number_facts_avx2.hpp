// Questions about numbers side by side, for processors with AVX2 alone: whoever asks has looked. `size` is a multiple
// of `avx2::together`.
#pragma once

#include <cstddef>

#if defined(__x86_64__) && defined(__GNUC__)
#define QUORIN_HAS_AVX2

namespace quorin::kernels::avx2 {

constexpr std::size_t together = 16;

bool any_null(const double* at, std::size_t size) noexcept;
bool any_null(const float* at, std::size_t size) noexcept;
// NaN, infinite or with a fraction.
bool any_doubtful(const double* at, std::size_t size) noexcept;
bool any_doubtful(const float* at, std::size_t size) noexcept;
bool any_fraction_or_infinite(const double* at, std::size_t size) noexcept;
bool any_fraction_or_infinite(const float* at, std::size_t size) noexcept;

}  // namespace quorin::kernels::avx2

#endif
