#include "kernels/within_limits.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace quorin::kernels {

namespace {

// Several numbers side by side, and what comparing them gives: all bits of a number's place or none. By itself the
// compiler finds no such form for comparisons of float64.
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
// gcc makes something else, and slow, of `|` on comparisons of float64.
using Bytes [[gnu::vector_size(16)]] = std::uint8_t;

template <class Float>
typename Pack<Float>::Numbers magnitude(typename Pack<Float>::Numbers x) noexcept {
    using Bits = typename Pack<Float>::Bits;
    return std::bit_cast<typename Pack<Float>::Numbers>(std::bit_cast<Bits>(x) & ~Pack<Float>::sign);
}

inline bool any_set(Bytes bytes) noexcept {
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(bytes);
    return (halves[0] | halves[1]) != 0;
}

template <class Number, class Float>
struct SideBySide {
    const char* data;
    [[nodiscard]] Float one(std::size_t row) const noexcept {
        Number number;
        std::memcpy(&number, data + row * sizeof number, sizeof number);
        return static_cast<Float>(number);
    }
};

template <class Number, class Float>
struct Apart {
    const char* data;
    std::ptrdiff_t stride;
    [[nodiscard]] Float one(std::size_t row) const noexcept {
        Number number;
        std::memcpy(&number, data + static_cast<std::ptrdiff_t>(row) * stride, sizeof number);
        return static_cast<Float>(number);
    }
};

template <class Float, class Rows>
typename Pack<Float>::Numbers pack(const Rows& rows, std::size_t row) noexcept {
    typename Pack<Float>::Numbers numbers;
    if constexpr (std::is_same_v<Rows, SideBySide<Float, Float>>) {
        std::memcpy(&numbers, rows.data + row * sizeof(Float), sizeof numbers);
    } else {
        for (std::size_t i = 0; i < sizeof numbers / sizeof(Float); ++i) numbers[i] = rows.one(row + i);
    }
    return numbers;
}

// Whether `is` holds of any number; the block that shows it is the last one read.
template <class Float, class Rows, class Is>
bool any(const Rows& rows, std::size_t size, Is is) noexcept {
    constexpr std::size_t together = sizeof(typename Pack<Float>::Numbers) / sizeof(Float);
    constexpr std::size_t block = 512;
    for (std::size_t begin = 0; begin < size; begin += block) {
        const std::size_t end = std::min(size, begin + block);
        Bytes even{};
        Bytes odd{};
        std::size_t row = begin;
        for (; end - row >= 2 * together; row += 2 * together) {
            even |= is(pack<Float>(rows, row));
            odd |= is(pack<Float>(rows, row + together));
        }
        // What is left, one number in all places.
        for (; row < end; ++row) even |= is(rows.one(row) - typename Pack<Float>::Numbers{});
        if (any_set(even | odd)) return true;
    }
    return false;
}

template <class Number, class Float, class Is>
bool any(const char* data, std::ptrdiff_t stride, std::size_t size, Is is) noexcept {
    if (stride == static_cast<std::ptrdiff_t>(sizeof(Number))) {
        return any<Float>(SideBySide<Number, Float>{data}, size, is);
    }
    return any<Float>(Apart<Number, Float>{data, stride}, size, is);
}

template <class Number>
using Arithmetic = std::conditional_t<std::is_same_v<Number, float>, float, double>;

}  // namespace

template <class Number>
bool any_beyond(const char* data, std::ptrdiff_t stride, std::size_t rows, double most) noexcept {
    using Float = Arithmetic<Number>;
    const Float limit = static_cast<Float>(most);
    return any<Number, Float>(data, stride, rows, [=](typename Pack<Float>::Numbers x) {
        return std::bit_cast<Bytes>(magnitude<Float>(x) > limit);
    });
}

template <class Number>
bool all_within(const char* data, std::ptrdiff_t stride, std::size_t rows, double factor,
                const Limits& limits) noexcept {
    using Float = Arithmetic<Number>;
    const Float k = static_cast<Float>(factor);
    const Float mean = static_cast<Float>(limits.mean);
    const Float allowed = static_cast<Float>(limits.allowed);
    const Float min = static_cast<Float>(limits.min);
    const Float max = static_cast<Float>(limits.max);
    return !any<Number, Float>(data, stride, rows, [=](typename Pack<Float>::Numbers x) {
        const auto elt = k * x;
        return std::bit_cast<Bytes>(magnitude<Float>(elt - mean) > allowed) | std::bit_cast<Bytes>(elt > max) |
               std::bit_cast<Bytes>(elt < min);
    });
}

template bool any_beyond<double>(const char*, std::ptrdiff_t, std::size_t, double) noexcept;
template bool any_beyond<float>(const char*, std::ptrdiff_t, std::size_t, double) noexcept;
template bool any_beyond<std::int64_t>(const char*, std::ptrdiff_t, std::size_t, double) noexcept;
template bool any_beyond<std::uint8_t>(const char*, std::ptrdiff_t, std::size_t, double) noexcept;
template bool all_within<double>(const char*, std::ptrdiff_t, std::size_t, double, const Limits&) noexcept;
template bool all_within<float>(const char*, std::ptrdiff_t, std::size_t, double, const Limits&) noexcept;
template bool all_within<std::int64_t>(const char*, std::ptrdiff_t, std::size_t, double, const Limits&) noexcept;
template bool all_within<std::uint8_t>(const char*, std::ptrdiff_t, std::size_t, double, const Limits&) noexcept;

}  // namespace quorin::kernels
