#include "core/gather/within_limits.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "core/gather/number_facts.hpp"
#include "core/simd/elements.hpp"

namespace quorin::core {

namespace {

template <class Number>
using Arithmetic = std::conditional_t<std::is_same_v<Number, float>, float, double>;

// Whether the test holds for any number. Ends after the first block with such a number.
template <class Number, class Test>
bool any(const StridedMemory& column, Test test) noexcept {
    constexpr std::size_t block = 512;
    return with_elements<Number, Arithmetic<Number>>(column, [&](const auto& elements) {
        for (std::size_t begin = 0; begin < column.rows; begin += block) {
            if (any(elements, begin, std::min(column.rows, begin + block), test)) return true;
        }
        return false;
    });
}

}  // namespace

template <class Number>
bool all_ordinary(const StridedMemory& column, const Ordinary& ordinary) noexcept {
    using Float = Arithmetic<Number>;
    const Float lower = static_cast<Float>(ordinary.least);
    const Float upper = static_cast<Float>(ordinary.most);
    return !any<Number>(column, [=](Numbers<Float> x) {
        const Numbers<Float> size = magnitude<Float>(x);
        const Bytes tiny = bytes<Float>(size < lower) & bytes<Float>(size != Float{0});
        const Bytes outside = tiny | bytes<Float>(size > upper);
        if constexpr (std::is_same_v<Number, Float>) return outside | is_signalling_nan<Float>(x);
        return outside;
    });
}

template <class Number>
bool all_within(const StridedMemory& column, double factor, const Limits& limits) noexcept {
    using Float = Arithmetic<Number>;
    const Float k = static_cast<Float>(factor);
    const Float mean = static_cast<Float>(limits.mean);
    const Float allowed = static_cast<Float>(limits.allowed);
    const Float min = static_cast<Float>(limits.min);
    const Float max = static_cast<Float>(limits.max);
    return !any<Number>(column, [=](Numbers<Float> x) {
        const auto elt = k * x;
        return bytes<Float>(magnitude<Float>(elt - mean) > allowed) | bytes<Float>(elt > max) | bytes<Float>(elt < min);
    });
}

// Fast path: if the limits are positive, every product within them is a normal number, so only signalling NaN have to
// be excluded.
template <class Number>
Fit fit(const StridedMemory& column, double factor, const Limits& limits, const Ordinary& ordinary) noexcept {
    using Float = Arithmetic<Number>;
    constexpr std::size_t block = 4096;
    constexpr bool floats = std::is_same_v<Number, Float>;
    const bool positive = limits.min >= 4.0 * std::numeric_limits<Float>::min() && limits.max <= ordinary.most;
    for (std::size_t begin = 0; begin < column.rows; begin += block) {
        const StridedMemory part = column.part(begin, std::min(column.rows, begin + block));
        if constexpr (floats) {
            if (positive && all_within<Number>(part, factor, limits)) {
                if (any_signalling_nan<Float>(part)) return Fit::unknown;
                continue;
            }
        }
        if (!all_ordinary<Number>(part, ordinary)) return Fit::unknown;
        if (!all_within<Number>(part, factor, limits)) return Fit::not_all;
    }
    return Fit::all;
}

template bool all_ordinary<double>(const StridedMemory&, const Ordinary&) noexcept;
template bool all_ordinary<float>(const StridedMemory&, const Ordinary&) noexcept;
template bool all_ordinary<std::int64_t>(const StridedMemory&, const Ordinary&) noexcept;
template bool all_ordinary<std::uint8_t>(const StridedMemory&, const Ordinary&) noexcept;
template bool all_within<double>(const StridedMemory&, double, const Limits&) noexcept;
template bool all_within<float>(const StridedMemory&, double, const Limits&) noexcept;
template bool all_within<std::int64_t>(const StridedMemory&, double, const Limits&) noexcept;
template bool all_within<std::uint8_t>(const StridedMemory&, double, const Limits&) noexcept;
template Fit fit<double>(const StridedMemory&, double, const Limits&, const Ordinary&) noexcept;
template Fit fit<float>(const StridedMemory&, double, const Limits&, const Ordinary&) noexcept;
template Fit fit<std::int64_t>(const StridedMemory&, double, const Limits&, const Ordinary&) noexcept;
template Fit fit<std::uint8_t>(const StridedMemory&, double, const Limits&, const Ordinary&) noexcept;

}  // namespace quorin::core
