#include "core/simd/instructions.hpp"

#include <algorithm>

namespace quorin::core {

namespace {

Instructions detect() noexcept {
#ifdef QUORIN_HAS_WIDE_REGISTERS
    // The first processors with AVX-512 lower their clock rate when it is used. Those with its byte permutations do
    // not.
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
