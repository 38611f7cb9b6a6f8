// Floats as bits. Only operations on the bits tell a signalling NaN from a quiet one: arithmetic and the conversion of
// float to double make it quiet.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace quorin::core {

// A NaN whose quiet bit is 0: infinity < bits < infinity + quiet bit, without the sign.
template <class Float>
constexpr bool is_signalling_nan(Float value) noexcept {
    using Bits = std::conditional_t<sizeof(Float) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    constexpr Bits infinity = std::bit_cast<Bits>(std::numeric_limits<Float>::infinity());
    constexpr Bits quiet = Bits{1} << (std::numeric_limits<Float>::digits - 2);
    const Bits magnitude = std::bit_cast<Bits>(value) & ~(Bits{1} << (8 * sizeof(Bits) - 1));
    return static_cast<Bits>(magnitude - infinity - 1) < quiet - 1;
}

}  // namespace quorin::core
