// The loop over the elements of a column that all kernels over numbers share, for contiguous or strided elements.
#pragma once

#include <cstring>
#include <type_traits>

#include "core/column.hpp"
#include "core/simd/packs.hpp"

namespace quorin::core {

// Elements of type `Number`, read as `Float`. `Stride` is std::ptrdiff_t, or a constant if they are contiguous.
template <class Number, class Float, class Stride>
struct Elements {
    const char* data;
    Stride stride;

    static constexpr bool are_packs = std::is_same_v<Number, Float> && !std::is_same_v<Stride, std::ptrdiff_t>;

    [[nodiscard]] Float one(std::size_t row) const noexcept {
        Number number;
        std::memcpy(&number, data + static_cast<std::ptrdiff_t>(row) * stride, sizeof number);
        return static_cast<Float>(number);
    }
    [[nodiscard]] auto pack(std::size_t row) const noexcept {
        Numbers<Float> numbers;
        if constexpr (are_packs) {
            std::memcpy(&numbers, data + row * sizeof(Number), sizeof numbers);
        } else {
            for (std::size_t i = 0; i < lanes<Float>; ++i) numbers[i] = one(row + i);
        }
        return numbers;
    }
};

template <class Number, class Float = Number, class Use>
auto with_elements(const StridedMemory& memory, Use use) noexcept {
    using Adjacent = std::integral_constant<std::ptrdiff_t, static_cast<std::ptrdiff_t>(sizeof(Number))>;
    if (memory.stride == Adjacent::value) return use(Elements<Number, Float, Adjacent>{memory.data, {}});
    return use(Elements<Number, Float, std::ptrdiff_t>{memory.data, memory.stride});
}

// Whether a test of packs.hpp holds for any element of the rows begin to end - 1.
template <class Number, class Float, class Stride, class Test>
bool any(const Elements<Number, Float, Stride>& elements, std::size_t begin, std::size_t end, Test test) noexcept {
    Bytes even{};
    Bytes odd{};
    std::size_t row = begin;
    for (; end - row >= 2 * lanes<Float>; row += 2 * lanes<Float>) {
        even |= test(elements.pack(row));
        odd |= test(elements.pack(row + lanes<Float>));
    }
    for (; row < end; ++row) even |= test(broadcast<Float>(elements.one(row)));
    return any_set(even | odd);
}

}  // namespace quorin::core
