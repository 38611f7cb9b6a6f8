// The tests with AVX-512: 64 bytes per instruction. One instruction classifies numbers (NaN, infinite) and raises no
// flag.
#include "core/simd/number_tests.hpp"

#ifdef QUORIN_HAS_WIDE_REGISTERS

#include <immintrin.h>

#include <cstdint>
#include <type_traits>

// An intrinsic is inlined only into a function of the same target.
#define QUORIN_AVX512 [[gnu::target("avx512f,avx512dq")]]

namespace quorin::core {

namespace {

// Without optimisation the intrinsics are macros with an implicit sign conversion of a mask.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-conversion"

// `any` takes a multiple of this many numbers.
constexpr std::size_t together = 32;

constexpr int truncated = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;
// Classes of numbers, in the encoding of the instruction.
constexpr int signalling_nan = 0x80;
constexpr int nan = signalling_nan | 0x01;
constexpr int infinite = 0x18;

// Results have one bit per number.
struct Double {
    using Numbers = __m512d;
    QUORIN_AVX512 static Numbers load(const double* at) { return _mm512_loadu_pd(at); }
    template <int Classes>
    QUORIN_AVX512 static std::uint32_t is(Numbers x) {
        return _mm512_fpclass_pd_mask(x, Classes);
    }
    // An ordered comparison: false for NaN. Rounding uses a mask with all bits set, because g++ reports the unmasked
    // form as a use of uninitialised memory.
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

// Whether any number is of one of these classes or, with Fractions::count, has a fraction.
template <class Ops, int Classes, Fractions WithFraction, class Float>
[[gnu::flatten]] QUORIN_AVX512 bool any(const Float* at, std::size_t size) {
    constexpr std::size_t lanes = sizeof(typename Ops::Numbers) / sizeof(Float);
    static_assert(together % (2 * lanes) == 0);
    // The hardware prefetcher is too slow for this loop if the data is in the L2 cache.
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

template <class Float>
using OpsOf = std::conditional_t<std::is_same_v<Float, double>, Double, Single>;

template <class Float, int classes, Fractions fractions, auto same>
bool any_of(const StridedMemory& numbers) noexcept {
    return any_wide<Float>(numbers, together, any<OpsOf<Float>, classes, fractions, Float>,
                           baseline_tests<Float>().*same);
}

}  // namespace

template <class Float>
const NumberTests<Float>& avx512_tests() noexcept {
    using Tests = NumberTests<Float>;
    constexpr Fractions count = Fractions::count;
    constexpr Fractions do_not_count = Fractions::do_not_count;
    static constexpr Tests tests{
        .any_null = any_of<Float, nan, do_not_count, &Tests::any_null>,
        .any_signalling_nan = any_of<Float, signalling_nan, do_not_count, &Tests::any_signalling_nan>,
        .any_fraction_or_infinite = any_of<Float, infinite, count, &Tests::any_fraction_or_infinite>,
        .any_fraction_infinite_or_signalling =
            any_of<Float, infinite | signalling_nan, count, &Tests::any_fraction_infinite_or_signalling>,
        .any_doubtful = any_of<Float, nan | infinite, count, &Tests::any_doubtful>,
    };
    return tests;
}

template const NumberTests<double>& avx512_tests<double>() noexcept;
template const NumberTests<float>& avx512_tests<float>() noexcept;

}  // namespace quorin::core

#endif
