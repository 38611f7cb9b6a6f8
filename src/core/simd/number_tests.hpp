// Tests of all numbers of a column, for each instruction set.
#pragma once

#include "core/column.hpp"
#include "core/simd/instructions.hpp"

namespace quorin::core {

// One function for each test. Each accepts any stride.
template <class Float>
struct NumberTests {
    using Test = bool (*)(const StridedMemory& numbers) noexcept;
    Test any_null;  // NaN
    Test any_signalling_nan;
    Test any_fraction_or_infinite;
    Test any_fraction_infinite_or_signalling;  // the two above in one pass
    // True if any_null or any_fraction_or_infinite is true. May also be true for other numbers of a large magnitude.
    Test any_doubtful;
};

template <class Float>
const NumberTests<Float>& baseline_tests() noexcept;
#ifdef QUORIN_HAS_WIDE_REGISTERS
template <class Float>
const NumberTests<Float>& avx2_tests() noexcept;
template <class Float>
const NumberTests<Float>& avx512_tests() noexcept;
#endif

template <class Float>
const NumberTests<Float>& number_tests(Instructions allowed) noexcept {
#ifdef QUORIN_HAS_WIDE_REGISTERS
    switch (available(allowed)) {
        case Instructions::avx512:
            return avx512_tests<Float>();
        case Instructions::avx2:
            return avx2_tests<Float>();
        case Instructions::baseline:
            break;
    }
#endif
    return baseline_tests<Float>();
}

// Runs `wide` over contiguous numbers, up to the last multiple of `together`, and `rest` over the others.
template <class Float>
bool any_wide(const StridedMemory& numbers, std::size_t together, bool (*wide)(const Float* at, std::size_t size),
              typename NumberTests<Float>::Test rest) noexcept {
    if (numbers.stride != static_cast<std::ptrdiff_t>(sizeof(Float))) return rest(numbers);
    const std::size_t size = numbers.rows - numbers.rows % together;
    if (wide(reinterpret_cast<const Float*>(numbers.data), size)) return true;
    return size != numbers.rows && rest(numbers.part(size, numbers.rows));
}

}  // namespace quorin::core
