// Tests of the bits of floats. A signalling NaN can be recognised only by its bits: arithmetic and the conversion of
// float to double make it quiet.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace quorin::core {

template <class Float>
using BitsOf = std::conditional_t<sizeof(Float) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;

// The bit of a NaN that is 0 in a signalling NaN.
template <class Float>
constexpr BitsOf<Float> quiet_bit = BitsOf<Float>{1} << (std::numeric_limits<Float>::digits - 2);

// Orders floats: first signalling NaN, then quiet NaN, then all other numbers. The least rank of several numbers shows
// whether there is a signalling NaN or any NaN among them, the greatest whether there is a number that is not NaN.
template <class Float>
constexpr BitsOf<Float> nan_rank(Float value) noexcept {
    using Bits = BitsOf<Float>;
    constexpr Bits infinity = std::bit_cast<Bits>(std::numeric_limits<Float>::infinity());
    const Bits magnitude = std::bit_cast<Bits>(value) & ~(Bits{1} << (8 * sizeof(Bits) - 1));
    // infinity < magnitude for NaN, and infinity < magnitude < infinity + quiet bit for a signalling one.
    return static_cast<Bits>(magnitude - infinity - 1);
}
template <class Float>
constexpr bool is_signalling_rank(BitsOf<Float> rank) noexcept {
    return rank < quiet_bit<Float> - 1;
}
template <class Float>
constexpr bool is_nan_rank(BitsOf<Float> rank) noexcept {
    return rank < 2 * quiet_bit<Float> - 1;
}

template <class Float>
constexpr bool is_signalling_nan(Float value) noexcept {
    return value != value && is_signalling_rank<Float>(nan_rank(value));
}

}  // namespace quorin::core
