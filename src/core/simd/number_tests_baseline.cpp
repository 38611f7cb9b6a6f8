// The tests with the instructions that every processor of the architecture has.
#include "core/simd/elements.hpp"
#include "core/simd/number_tests.hpp"

namespace quorin::core {

namespace {

template <class Float, Bytes (*test)(Numbers<Float>) noexcept>
bool any_of(const StridedMemory& numbers) noexcept {
    return with_elements<Float>(numbers, [&](const auto& elements) {
        return any(elements, 0, numbers.rows, [](Numbers<Float> x) { return test(x); });
    });
}

}  // namespace

template <class Float>
const NumberTests<Float>& baseline_tests() noexcept {
    static constexpr NumberTests<Float> tests{
        .any_null = any_of<Float, is_null<Float>>,
        .any_signalling_nan = any_of<Float, is_signalling_nan<Float>>,
        .any_fraction_or_infinite = any_of<Float, is_fraction_or_infinite<Float>>,
        .any_fraction_infinite_or_signalling = any_of<Float, is_fraction_infinite_or_signalling<Float>>,
        .any_doubtful = any_of<Float, is_doubtful<Float>>,
    };
    return tests;
}

template const NumberTests<double>& baseline_tests<double>() noexcept;
template const NumberTests<float>& baseline_tests<float>() noexcept;

}  // namespace quorin::core
