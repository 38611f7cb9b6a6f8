// Questions about numbers side by side, for processors with wider registers than all of their kind have: whoever asks
// has looked.
#pragma once

#include <cstddef>

#if defined(__x86_64__) && defined(__GNUC__)
#define QUORIN_HAS_WIDE_REGISTERS

namespace quorin::core {

// What the processor has to know, and how many numbers are looked at together.
struct Avx2 {
    static constexpr std::size_t together = 16;
};
struct Avx512 {
    static constexpr std::size_t together = 32;
};

// `size` is a multiple of `Set::together`.
template <class Set>
struct WideQuestions {
    static bool any_null(const double* at, std::size_t size) noexcept;
    static bool any_null(const float* at, std::size_t size) noexcept;
    // NaN, infinite or with a fraction.
    static bool any_doubtful(const double* at, std::size_t size) noexcept;
    static bool any_doubtful(const float* at, std::size_t size) noexcept;
    static bool any_fraction_or_infinite(const double* at, std::size_t size) noexcept;
    static bool any_fraction_or_infinite(const float* at, std::size_t size) noexcept;
};

}  // namespace quorin::core

#endif
