// The same questions as in number_facts.cpp about 64 bytes at once. Whether a number is NaN or infinite is one
// instruction here, which leaves no flag of the processor behind, as the quiet comparison does not.
#include "core/simd/number_facts_wide.hpp"

#ifdef QUORIN_HAS_WIDE_REGISTERS

#include <immintrin.h>

#include <cstdint>

// An intrinsic is inlined only into a function for the same processors.
#define QUORIN_AVX512 [[gnu::target("avx512f,avx512dq")]]

namespace quorin::core {

namespace {

// Without optimisation the intrinsics are macros, whose masks change sign in our lines.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-conversion"

constexpr int truncated = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;
// Classes of numbers, as the instruction names them.
constexpr int nan = 0x81;
constexpr int infinite = 0x18;

// A bit for each number.
struct Double {
    using Numbers = __m512d;
    QUORIN_AVX512 static Numbers load(const double* at) { return _mm512_loadu_pd(at); }
    template <int Classes>
    QUORIN_AVX512 static std::uint32_t is(Numbers x) {
        return _mm512_fpclass_pd_mask(x, Classes);
    }
    // Of a NaN this is false, as every ordered comparison. Rounding is masked, with all bits set, since gcc takes what
    // would stand in the other places for uninitialised.
    QUORIN_AVX512 static std::uint32_t fraction(Numbers x) {
        constexpr __mmask8 all = 0xff;
        return _mm512_cmp_pd_mask(x, _mm512_maskz_roundscale_pd(all, x, truncated), _CMP_NEQ_OQ);
    }
};

struct Single {
    using Numbers = __m512;
    QUORIN_AVX512 static Numbers load(const float* at) { return _mm512_loadu_ps(at); }
    template <int Classes>
    QUORIN_AVX512 static std::uint32_t is(Numbers x) {
        return _mm512_fpclass_ps_mask(x, Classes);
    }
    QUORIN_AVX512 static std::uint32_t fraction(Numbers x) {
        constexpr __mmask16 all = 0xffff;
        return _mm512_cmp_ps_mask(x, _mm512_maskz_roundscale_ps(all, x, truncated), _CMP_NEQ_OQ);
    }
};

#pragma GCC diagnostic pop

enum class Fractions { count, do_not_count };

// Whether any number is of these classes, or has a fraction where that counts.
template <class Ops, int Classes, Fractions WithFraction, class Float>
[[gnu::flatten]] QUORIN_AVX512 bool any(const Float* at, std::size_t size) {
    constexpr std::size_t lanes = sizeof(typename Ops::Numbers) / sizeof(Float);
    static_assert(Avx512::together % (2 * lanes) == 0);
    // The processor alone fetches from the second level too late for this loop.
    constexpr std::size_t ahead = 16 * lanes;
    std::uint32_t found = 0;
    for (std::size_t i = 0; i < size; i += 2 * lanes) {
        __builtin_prefetch(at + i + ahead);
        __builtin_prefetch(at + i + ahead + lanes);
        const typename Ops::Numbers even = Ops::load(at + i);
        const typename Ops::Numbers odd = Ops::load(at + i + lanes);
        found |= Ops::template is<Classes>(even) | Ops::template is<Classes>(odd);
        if constexpr (WithFraction == Fractions::count) found |= Ops::fraction(even) | Ops::fraction(odd);
    }
    return found != 0;
}

}  // namespace

template <>
bool WideQuestions<Avx512>::any_null(const double* at, std::size_t size) noexcept {
    return any<Double, nan, Fractions::do_not_count>(at, size);
}
template <>
bool WideQuestions<Avx512>::any_null(const float* at, std::size_t size) noexcept {
    return any<Single, nan, Fractions::do_not_count>(at, size);
}
template <>
bool WideQuestions<Avx512>::any_doubtful(const double* at, std::size_t size) noexcept {
    return any<Double, nan | infinite, Fractions::count>(at, size);
}
template <>
bool WideQuestions<Avx512>::any_doubtful(const float* at, std::size_t size) noexcept {
    return any<Single, nan | infinite, Fractions::count>(at, size);
}
template <>
bool WideQuestions<Avx512>::any_fraction_or_infinite(const double* at, std::size_t size) noexcept {
    return any<Double, infinite, Fractions::count>(at, size);
}
template <>
bool WideQuestions<Avx512>::any_fraction_or_infinite(const float* at, std::size_t size) noexcept {
    return any<Single, infinite, Fractions::count>(at, size);
}

}  // namespace quorin::core

#endif
