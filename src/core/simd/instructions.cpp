#include "core/simd/instructions.hpp"

#include <algorithm>

namespace quorin::core {

namespace {

Instructions detect() noexcept {
#ifdef QUORIN_HAS_WIDE_REGISTERS
    // Processors with AVX-512 but without VBMI lower their clock rate when they use it.
    if (__builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vbmi") != 0) {
        return Instructions::avx512;
    }
    if (__builtin_cpu_supports("avx2") != 0) return Instructions::avx2;
#endif
    return Instructions::baseline;
}

}  // namespace

Instructions available(Instructions allowed) noexcept {
    static const Instructions detected = detect();
    return std::min(allowed, detected);
}

}  // namespace quorin::core
