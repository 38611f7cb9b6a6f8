// Operations on 16-byte vectors of floats. The compiler does not vectorise comparisons of float64 automatically.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace quorin::core {

template <class Float>
struct Pack;
template <>
struct Pack<double> {
    using Numbers [[gnu::vector_size(16)]] = double;
    using Integer = std::int64_t;
    using Bits [[gnu::vector_size(16)]] = Integer;
    static constexpr std::int64_t sign = std::numeric_limits<std::int64_t>::min();
    static constexpr std::int64_t quiet = std::int64_t{1} << 51U;
};
template <>
struct Pack<float> {
    using Numbers [[gnu::vector_size(16)]] = float;
    using Integer = std::int32_t;
    using Bits [[gnu::vector_size(16)]] = Integer;
    static constexpr std::int32_t sign = std::numeric_limits<std::int32_t>::min();
    static constexpr std::int32_t quiet = std::int32_t{1} << 22U;
};
template <class Float>
using Numbers = typename Pack<Float>::Numbers;
// The result of a comparison: in each lane all bits or no bits are set.
template <class Float>
using Bits = typename Pack<Float>::Bits;

template <class Float>
constexpr std::size_t lanes = sizeof(Numbers<Float>) / sizeof(Float);

// Not `x - Numbers<Float>{}`: arithmetic makes a signalling NaN quiet.
template <class Float>
Numbers<Float> broadcast(Float x) noexcept {
    Numbers<Float> numbers;
    for (std::size_t i = 0; i < lanes<Float>; ++i) numbers[i] = x;
    return numbers;
}

template <class Float>
Numbers<Float> magnitude(Numbers<Float> x) noexcept {
    return std::bit_cast<Numbers<Float>>(std::bit_cast<Bits<Float>>(x) & ~Pack<Float>::sign);
}

// Comparison results are combined as bytes: g++ compiles `|` and `&` of float64 comparisons to slow code.
using Bytes [[gnu::vector_size(16)]] = std::uint8_t;

template <class Float>
Bytes bytes(Bits<Float> compared) noexcept {
    return std::bit_cast<Bytes>(compared);
}

inline bool any_set(Bytes bytes) noexcept {
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(bytes);
    return (halves[0] | halves[1]) != 0;
}

// Narrows the lanes of two comparison results to half their width, into one vector. All bits of a lane are equal, so
// one half represents it.
inline Bytes halved_to_32(Bytes a, Bytes b) noexcept {
    using Lanes [[gnu::vector_size(16)]] = std::int32_t;
    const auto low = std::bit_cast<Lanes>(a);
    const auto high = std::bit_cast<Lanes>(b);
#ifdef __clang__
    return std::bit_cast<Bytes>(__builtin_shufflevector(low, high, 0, 2, 4, 6));
#else
    return std::bit_cast<Bytes>(__builtin_shuffle(low, high, Lanes{0, 2, 4, 6}));
#endif
}
inline Bytes halved_to_16(Bytes a, Bytes b) noexcept {
    using Lanes [[gnu::vector_size(16)]] = std::int16_t;
    const auto low = std::bit_cast<Lanes>(a);
    const auto high = std::bit_cast<Lanes>(b);
#ifdef __clang__
    return std::bit_cast<Bytes>(__builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14));
#else
    return std::bit_cast<Bytes>(__builtin_shuffle(low, high, Lanes{0, 2, 4, 6, 8, 10, 12, 14}));
#endif
}
inline Bytes halved_to_8(Bytes a, Bytes b) noexcept {
#ifdef __clang__
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
#else
    return __builtin_shuffle(a, b, Bytes{0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30});
#endif
}

inline std::size_t sum(Bytes bytes) noexcept {
    std::size_t total = 0;
    for (std::size_t i = 0; i < sizeof bytes; ++i) total += bytes[i];
    return total;
}

// The tests below set at least one bit in each lane for which they are true.

template <class Float>
Bytes is_null(Numbers<Float> x) noexcept {
    return bytes<Float>(x != x);
}

// A NaN whose quiet bit is 0.
template <class Float>
Bytes is_signalling_nan(Numbers<Float> x) noexcept {
    return is_null<Float>(x) & bytes<Float>(~std::bit_cast<Bits<Float>>(x) & Pack<Float>::quiet);
}

// Every x >= always_whole is a whole number.
template <class Float>
constexpr Float always_whole = static_cast<Float>(1) / std::numeric_limits<Float>::epsilon();

// For 0 <= x < always_whole: x rounded to a whole number.
template <class Float>
Numbers<Float> rounded(Numbers<Float> x) noexcept {
    return (x + always_whole<Float>)-always_whole<Float>;
}

template <class Float>
Bytes is_fraction_or_infinite(Numbers<Float> x) noexcept {
    const Numbers<Float> size = magnitude<Float>(x);
    const Bytes fraction = bytes<Float>(rounded<Float>(size) != size) & bytes<Float>(size < always_whole<Float>);
    return fraction | bytes<Float>(size == std::numeric_limits<Float>::infinity());
}

// x is infinite or a signalling NaN if and only if its exponent is all ones and its quiet bit 0:
// (bits(x) & (exponent | quiet)) == bits(infinity).
template <class Float>
Bytes is_fraction_infinite_or_signalling(Numbers<Float> x) noexcept {
    constexpr auto infinity = std::numeric_limits<Float>::infinity();
    constexpr auto exponent = std::bit_cast<typename Pack<Float>::Integer>(infinity);
    const Numbers<Float> size = magnitude<Float>(x);
    const auto kept = std::bit_cast<Numbers<Float>>(std::bit_cast<Bits<Float>>(x) & (exponent | Pack<Float>::quiet));
    const Bytes fraction = bytes<Float>(rounded<Float>(size) != size) & bytes<Float>(size < always_whole<Float>);
    return fraction | bytes<Float>(kept == infinity);
}

// True for NaN, for fractions and for all |x| >= always_whole. Takes fewer instructions than an exact test.
template <class Float>
Bytes is_doubtful(Numbers<Float> x) noexcept {
    const Numbers<Float> size = magnitude<Float>(x);
    return bytes<Float>(rounded<Float>(size) != size) | bytes<Float>(size >= always_whole<Float>);
}

}  // namespace quorin::core
