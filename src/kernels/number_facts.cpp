#include "kernels/number_facts.hpp"

#include <cmath>
#include <limits>

namespace quorin::kernels {

namespace {

// From here on every floating-point number is whole.
template <class Float>
constexpr Float always_whole = static_cast<Float>(1) / std::numeric_limits<Float>::epsilon();

// No jumps, so that the compiler can take several elements at once. Adding and taking away `always_whole` leaves a
// number below it as it is exactly when it is whole. NaN fails every comparison.
template <class Float, class At>
NumberFacts gather_block(std::size_t rows, At at) noexcept {
    int nulls = 0;
    int fractions = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const Float x = at(row);
        const Float magnitude = std::fabs(x);
        const int null = x != x ? 1 : 0;
        const int small_whole = (magnitude + always_whole<Float>)-always_whole<Float> == magnitude ? 1 : 0;
        const int large_whole = magnitude >= always_whole<Float> ? 1 : 0;
        const int infinite = magnitude > std::numeric_limits<Float>::max() ? 1 : 0;
        nulls += null;
        fractions |= (infinite | ((small_whole | large_whole) ^ 1)) & (null ^ 1);
    }
    return {nulls != 0, static_cast<std::size_t>(nulls) != rows, fractions != 0};
}

template <class Float>
NumberFacts gather(const char* data, std::ptrdiff_t stride, std::size_t rows) noexcept {
    constexpr std::size_t block = 1024;
    NumberFacts facts;
    for (std::size_t start = 0; start < rows; start += block) {
        const std::size_t size = rows - start < block ? rows - start : block;
        const char* first = data + static_cast<std::ptrdiff_t>(start) * stride;
        NumberFacts found;
        if (stride == static_cast<std::ptrdiff_t>(sizeof(Float))) {
            const auto* values = reinterpret_cast<const Float*>(first);
            found = gather_block<Float>(size, [&](std::size_t row) { return values[row]; });
        } else {
            found = gather_block<Float>(size, [&](std::size_t row) {
                return *reinterpret_cast<const Float*>(first + static_cast<std::ptrdiff_t>(row) * stride);
            });
        }
        facts.nulls = facts.nulls || found.nulls;
        facts.values = facts.values || found.values;
        facts.fractions = facts.fractions || found.fractions;
        if (facts.nulls && facts.fractions) break;
    }
    return facts;
}

}  // namespace

NumberFacts gather_float64(const char* data, std::ptrdiff_t stride, std::size_t rows) noexcept {
    return gather<double>(data, stride, rows);
}

NumberFacts gather_float32(const char* data, std::ptrdiff_t stride, std::size_t rows) noexcept {
    return gather<float>(data, stride, rows);
}

}  // namespace quorin::kernels
