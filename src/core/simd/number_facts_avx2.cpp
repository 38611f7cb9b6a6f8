// The same questions as in number_facts.cpp with twice as many numbers at once and an instruction that cuts fractions
// off. Comparisons are the quiet ones, so that no NaN leaves a flag of the processor behind.
#include "core/simd/number_facts_wide.hpp"

#ifdef QUORIN_HAS_WIDE_REGISTERS

#include <immintrin.h>

// An intrinsic is inlined only into a function for the same processors.
#define QUORIN_AVX2 [[gnu::target("avx2")]]

namespace quorin::core {

namespace {

constexpr int truncated = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;

struct Double {
    using Numbers = __m256d;
    QUORIN_AVX2 static Numbers load(const double* at) { return _mm256_loadu_pd(at); }
    QUORIN_AVX2 static Numbers zeros() { return _mm256_setzero_pd(); }
    QUORIN_AVX2 static Numbers either(Numbers a, Numbers b) { return _mm256_or_pd(a, b); }
    QUORIN_AVX2 static bool any(Numbers bits) { return _mm256_movemask_pd(bits) != 0; }
    QUORIN_AVX2 static Numbers null(Numbers x) { return _mm256_cmp_pd(x, x, _CMP_UNORD_Q); }
    // Of a NaN this is false, as every ordered comparison.
    QUORIN_AVX2 static Numbers fraction(Numbers x) {
        return _mm256_cmp_pd(x, _mm256_round_pd(x, truncated), _CMP_NEQ_OQ);
    }
    QUORIN_AVX2 static Numbers infinite(Numbers x) {
        const Numbers size = _mm256_andnot_pd(_mm256_set1_pd(-0.0), x);
        return _mm256_cmp_pd(size, _mm256_set1_pd(__builtin_inf()), _CMP_EQ_OQ);
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
    QUORIN_AVX2 static Numbers fraction(Numbers x) {
        return _mm256_cmp_ps(x, _mm256_round_ps(x, truncated), _CMP_NEQ_OQ);
    }
    QUORIN_AVX2 static Numbers infinite(Numbers x) {
        const Numbers size = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), x);
        return _mm256_cmp_ps(size, _mm256_set1_ps(__builtin_inff()), _CMP_EQ_OQ);
    }
    QUORIN_AVX2 static Numbers null_or_infinite(Numbers x) {
        const Numbers size = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), x);
        return _mm256_cmp_ps(size, _mm256_set1_ps(__builtin_inff()), _CMP_NLT_UQ);
    }
};

// What is asked, as a type: a pointer to a function for other processors would not be inlined.
template <class Ops>
struct Null {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) { return Ops::null(x); }
};
template <class Ops>
struct Doubtful {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) {
        return Ops::either(Ops::fraction(x), Ops::null_or_infinite(x));
    }
};
template <class Ops>
struct FractionOrInfinite {
    QUORIN_AVX2 static typename Ops::Numbers of(typename Ops::Numbers x) {
        return Ops::either(Ops::fraction(x), Ops::infinite(x));
    }
};

template <class Ops, class Question, class Float>
[[gnu::flatten]] QUORIN_AVX2 bool any(const Float* at, std::size_t size) {
    constexpr std::size_t lanes = sizeof(typename Ops::Numbers) / sizeof(Float);
    static_assert(Avx2::together % (2 * lanes) == 0);
    typename Ops::Numbers even = Ops::zeros();
    typename Ops::Numbers odd = Ops::zeros();
    // One line of the cache a time; the processor alone fetches from the second level too late for this loop.
    constexpr std::size_t ahead = std::size_t{16} * lanes;
    for (std::size_t i = 0; i < size; i += 2 * lanes) {
        __builtin_prefetch(at + i + ahead);
        even = Ops::either(even, Question::of(Ops::load(at + i)));
        odd = Ops::either(odd, Question::of(Ops::load(at + i + lanes)));
    }
    return Ops::any(Ops::either(even, odd));
}

}  // namespace

template <>
bool WideQuestions<Avx2>::any_null(const double* at, std::size_t size) noexcept {
    return any<Double, Null<Double>>(at, size);
}
template <>
bool WideQuestions<Avx2>::any_null(const float* at, std::size_t size) noexcept {
    return any<Single, Null<Single>>(at, size);
}
template <>
bool WideQuestions<Avx2>::any_doubtful(const double* at, std::size_t size) noexcept {
    return any<Double, Doubtful<Double>>(at, size);
}
template <>
bool WideQuestions<Avx2>::any_doubtful(const float* at, std::size_t size) noexcept {
    return any<Single, Doubtful<Single>>(at, size);
}
template <>
bool WideQuestions<Avx2>::any_fraction_or_infinite(const double* at, std::size_t size) noexcept {
    return any<Double, FractionOrInfinite<Double>>(at, size);
}
template <>
bool WideQuestions<Avx2>::any_fraction_or_infinite(const float* at, std::size_t size) noexcept {
    return any<Single, FractionOrInfinite<Single>>(at, size);
}

}  // namespace quorin::core

#endif
