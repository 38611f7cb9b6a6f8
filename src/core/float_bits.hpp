// Floats as bits. Only operations on the bits tell a signalling NaN from a quiet one: arithmetic and the conversion of
// float to double make it quiet.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace quorin::core {

template <class Float>
using BitsOf = std::conditional_t<sizeof(Float) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;

// Of a NaN; it is 0 in a signalling one.
template <class Float>
constexpr BitsOf<Float> quiet_bit = BitsOf<Float>{1} << (std::numeric_limits<Float>::digits - 2);

// Orders floats so that the signalling NaN come first, then the quiet ones, then all others: the least rank of several
// numbers shows whether there is a NaN of either kind among them, the greatest whether there is anything else.
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
