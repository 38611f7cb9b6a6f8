// The tests with AVX2: 32 bytes per instruction, and an instruction that truncates. Comparisons are quiet: they do not
// raise the invalid flag for a quiet NaN.
#include "core/simd/number_tests.hpp"

#ifdef QUORIN_HAS_WIDE_REGISTERS

#include <immintrin.h>

#include <type_traits>

// An intrinsic is inlined only into a function of the same target.
#define QUORIN_AVX2 [[gnu::target("avx2")]]

namespace quorin::core {

namespace {

// `any` takes a multiple of this many numbers.
constexpr std::size_t together = 16;

constexpr int truncated = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;

struct Double {
    using Numbers = __m256d;
    QUORIN_AVX2 static Numbers load(const double* at) { return _mm256_loadu_pd(at); }
    QUORIN_AVX2 static Numbers zeros() { return _mm256_setzero_pd(); }
    QUORIN_AVX2 static Numbers either(Numbers a, Numbers b) { return _mm256_or_pd(a, b); }
    QUORIN_AVX2 static bool any(Numbers bits) { return _mm256_movemask_pd(bits) != 0; }
    QUORIN_AVX2 static Numbers null(Numbers x) { return _mm256_cmp_pd(x, x, _CMP_UNORD_Q); }
    // `any` reads only the sign bit of the result, so the inverted quiet bit is shifted there.
    QUORIN_AVX2 static Numbers signalling_nan(Numbers x) {
        const __m256i quiet = _mm256_slli_epi64(_mm256_castpd_si256(x), 12);
        return _mm256_andnot_pd(_mm256_castsi256_pd(quiet), null(x));
    }
    // An ordered comparison: false for NaN.
    QUORIN_AVX2 static Numbers fraction(Numbers x) {
        return _mm256_cmp_pd(x, _mm256_round_pd(x, truncated), _CMP_NEQ_OQ);
    }
    QUORIN_AVX2 static Numbers infinite(Numbers x) {
        const Numbers size = _mm256_andnot_pd(_mm256_set1_pd(-0.0), x);
        return _mm256_cmp_pd(size, _mm256_set1_pd(__builtin_inf()), _CMP_EQ_OQ);
    }
    // Whether all bits of the exponent are 1 and the quiet bit is 0.
    QUORIN_AVX2 static Numbers infinite_or_signalling(Numbers x) {
        const __m256i exponent_and_quiet = _mm256_set1_epi64x(0x7ff8000000000000);
        const __m256i bits = _mm256_and_si256(_mm256_castpd_si256(x), exponent_and_quiet);
        return _mm256_castsi256_pd(_mm256_cmpeq_epi64(bits, _mm256_set1_epi64x(0x7ff0000000000000)));
    }
    QUORIN_AVX2 static Numbers null_or_infinite(Numbers x) {
        const Numbers size = _mm256_andnot_pd(_mm256_set1_pd(-0.0), x);
        return _mm256_cmp_pd(size, _mm256_set1_pd(__builtin_inf()), _CMP_NLT_UQ);
    }
};

struct Single {
    using Numbers = __m256;
    QUORIN_AVX2 static Numbers load(const float* at) { return _mm256_loadu_ps(at); }
    QUORIN_AVX2 static Numbers zeros() { return _mm256_setzero_ps(); }
    QUORIN_AVX2 static Numbers either(Numbers a, Numbers b) { return _mm256_or_ps(a, b); }
    QUORIN_AVX2 static bool any(Numbers bits) { return _mm256_movemask_ps(bits) != 0; }
    QUORIN_AVX2 static Numbers null(Numbers x) { return _mm256_cmp_ps(x, x, _CMP_UNORD_Q); }
    QUORIN_AVX2 static Numbers signalling_nan(Numbers x) {
        const __m256i quiet = _mm256_slli_epi32(_mm256_castps_si256(x), 9);
        return _mm256_andnot_ps(_mm256_castsi256_ps(quiet), null(x));
    }
    QUORIN_AVX2 static Numbers fraction(Numbers x) {
        return _mm256_cmp_ps(x, _mm256_round_ps(x, truncated), _CMP_NEQ_OQ);
    }
    QUORIN_AVX2 static Numbers infinite(Numbers x) {
        const Numbers size = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), x);
        return _mm256_cmp_ps(size, _mm256_set1_ps(__builtin_inff()), _CMP_EQ_OQ);
    }
    QUORIN_AVX2 static Numbers infinite_or_signalling(Numbers x) {
        const __m256i bits = _mm256_and_si256(_mm256_castps_si256(x), _mm256_set1_epi32(0x7fc00000));
        return _mm256_castsi256_ps(_mm256_cmpeq_epi32(bits, _mm256_set1_epi32(0x7f800000)));
    }
    QUORIN_AVX2 static Numbers null_or_infinite(Numbers x) {
        const Numbers size = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), x);
        return _mm256_cmp_ps(size, _mm256_set1_ps(__builtin_inff()), _CMP_NLT_UQ);
    }
};

// Each test is a type, because a call through a function pointer would not be inlined.
template <class Ops>
struct Null {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) { return Ops::null(x); }
};
template <class Ops>
struct SignallingNan {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) { return Ops::signalling_nan(x); }
};
template <class Ops>
struct FractionOrInfinite {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) {
        return Ops::either(Ops::fraction(x), Ops::infinite(x));
    }
};
template <class Ops>
struct FractionInfiniteOrSignalling {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) {
        return Ops::either(Ops::fraction(x), Ops::infinite_or_signalling(x));
    }
};
template <class Ops>
struct Doubtful {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) {
        return Ops::either(Ops::fraction(x), Ops::null_or_infinite(x));
    }
};

template <class Ops, class Test, class Float>
[[gnu::flatten]] QUORIN_AVX2 bool any(const Float* at, std::size_t size) {
    constexpr std::size_t lanes = sizeof(typename Ops::Numbers) / sizeof(Float);
    static_assert(together % (2 * lanes) == 0);
    typename Ops::Numbers even = Ops::zeros();
    typename Ops::Numbers odd = Ops::zeros();
    // One cache line per iteration: the hardware prefetcher is too slow for this loop if the data is in the L2 cache.
    constexpr std::size_t ahead = std::size_t{16} * lanes;
    for (std::size_t i = 0; i < size; i += 2 * lanes) {
        __builtin_prefetch(at + i + ahead);
        even = Ops::either(even, Test::of(Ops::load(at + i)));
        odd = Ops::either(odd, Test::of(Ops::load(at + i + lanes)));
    }
    return Ops::any(Ops::either(even, odd));
}

template <class Float>
using OpsOf = std::conditional_t<std::is_same_v<Float, double>, Double, Single>;

template <class Float, template <class> class Test, auto same>
bool any_of(const StridedMemory& numbers) noexcept {
    using Ops = OpsOf<Float>;
    return any_wide<Float>(numbers, together, any<Ops, Test<Ops>, Float>, baseline_tests<Float>().*same);
}

}  // namespace

template <class Float>
const NumberTests<Float>& avx2_tests() noexcept {
    using Tests = NumberTests<Float>;
    static constexpr Tests tests{
        .any_null = any_of<Float, Null, &Tests::any_null>,
        .any_signalling_nan = any_of<Float, SignallingNan, &Tests::any_signalling_nan>,
        .any_fraction_or_infinite = any_of<Float, FractionOrInfinite, &Tests::any_fraction_or_infinite>,
        .any_fraction_infinite_or_signalling =
            any_of<Float, FractionInfiniteOrSignalling, &Tests::any_fraction_infinite_or_signalling>,
        .any_doubtful = any_of<Float, Doubtful, &Tests::any_doubtful>,
    };
    return tests;
}

template const NumberTests<double>& avx2_tests<double>() noexcept;
template const NumberTests<float>& avx2_tests<float>() noexcept;

}  // namespace quorin::core

#endif
