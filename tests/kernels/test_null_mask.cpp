// The mask of missing numbers against one look at each element, side by side and apart.
#include "kernels/null_mask.hpp"

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

template <class Float>
bool mark(const Float* values, std::ptrdiff_t step, std::size_t rows, std::uint8_t* out) {
    const auto* data = reinterpret_cast<const char*>(values);
    const std::ptrdiff_t stride = step * static_cast<std::ptrdiff_t>(sizeof(Float));
    if constexpr (std::is_same_v<Float, double>) return kernels::mark_nulls_float64(data, stride, rows, out);
    if constexpr (std::is_same_v<Float, float>) return kernels::mark_nulls_float32(data, stride, rows, out);
}

template <class Float>
void expect_marked(const std::vector<Float>& values, std::size_t step) {
    const std::size_t rows = (values.size() + step - 1) / step;
    std::vector<std::uint8_t> found(rows, 7);
    const bool any = mark(values.data(), static_cast<std::ptrdiff_t>(step), rows, found.data());
    bool expected_any = false;
    for (std::size_t row = 0; row < rows; ++row) {
        const bool null = std::isnan(values[row * step]);
        check(found[row] == static_cast<std::uint8_t>(null), "row " + std::to_string(row));
        expected_any = expected_any || null;
    }
    check(any == expected_any, std::to_string(rows) + " rows");
}

template <class Float>
void expect_in_every_place() {
    constexpr Float nan = std::numeric_limits<Float>::quiet_NaN();
    const std::vector<Float> others = {0,
                                       -0.0,
                                       1.5,
                                       std::numeric_limits<Float>::infinity(),
                                       -std::numeric_limits<Float>::infinity(),
                                       std::numeric_limits<Float>::denorm_min()};
    constexpr std::size_t longest = 67;
    std::mt19937 random{1};
    for (std::size_t rows = 1; rows < longest; ++rows) {
        std::vector<Float> values(rows);
        for (Float& value : values) value = others[random() % others.size()];
        expect_marked(values, 1);
        for (std::size_t place = 0; place < rows; ++place) {
            const Float before = values[place];
            values[place] = place % 2 == 0 ? nan : -nan;
            expect_marked(values, 1);
            expect_marked(values, 3);
            values[place] = before;
        }
    }
}

const Test float64_nulls{"nulls of float64 are marked", expect_in_every_place<double>};
const Test float32_nulls{"nulls of float32 are marked", expect_in_every_place<float>};

}  // namespace
}  // namespace quorin::tests
