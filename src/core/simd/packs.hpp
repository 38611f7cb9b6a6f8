// Several numbers side by side, which every processor in use compares at once. By itself the compiler finds no such
// form for comparisons of float64.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace quorin::core {

template <class Float>
struct Pack;
template <>
struct Pack<double> {
    using Numbers [[gnu::vector_size(16)]] = double;
    using Bits [[gnu::vector_size(16)]] = std::int64_t;
    static constexpr std::int64_t sign = std::numeric_limits<std::int64_t>::min();
};
template <>
struct Pack<float> {
    using Numbers [[gnu::vector_size(16)]] = float;
    using Bits [[gnu::vector_size(16)]] = std::int32_t;
    static constexpr std::int32_t sign = std::numeric_limits<std::int32_t>::min();
};
template <class Float>
using Numbers = typename Pack<Float>::Numbers;
// What a comparison gives: all bits of a number's place or none.
template <class Float>
using Bits = typename Pack<Float>::Bits;

template <class Float>
Numbers<Float> magnitude(Numbers<Float> x) noexcept {
    return std::bit_cast<Numbers<Float>>(std::bit_cast<Bits<Float>>(x) & ~Pack<Float>::sign);
}

// What comparisons gave, as bytes: gcc makes something else, and slow, of `|` and `&` on comparisons of float64.
using Bytes [[gnu::vector_size(16)]] = std::uint8_t;

template <class Float>
Bytes bytes(Bits<Float> compared) noexcept {
    return std::bit_cast<Bytes>(compared);
}

template <class Float>
Bytes is_null(Numbers<Float> x) noexcept {
    return bytes<Float>(x != x);
}

inline bool any_set(Bytes bytes) noexcept {
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(bytes);
    return (halves[0] | halves[1]) != 0;
}

}  // namespace quorin::core
