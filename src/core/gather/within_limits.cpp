#include "core/gather/within_limits.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "core/simd/packs.hpp"

namespace quorin::core {

namespace {

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
Numbers<Float> pack(const Rows& rows, std::size_t row) noexcept {
    Numbers<Float> numbers;
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
    constexpr std::size_t together = sizeof(Numbers<Float>) / sizeof(Float);
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
        for (; row < end; ++row) even |= is(rows.one(row) - Numbers<Float>{});
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
    return any<Number, Float>(data, stride, rows,
                              [=](Numbers<Float> x) { return bytes<Float>(magnitude<Float>(x) > limit); });
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
    return !any<Number, Float>(data, stride, rows, [=](Numbers<Float> x) {
        const auto elt = k * x;
        return bytes<Float>(magnitude<Float>(elt - mean) > allowed) | bytes<Float>(elt > max) | bytes<Float>(elt < min);
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

}  // namespace quorin::core
