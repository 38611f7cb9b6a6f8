// Limits against one test of each number.
#include "core/gather/within_limits.hpp"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

template <class Number>
using Arithmetic = std::conditional_t<std::is_same_v<Number, float>, float, double>;

template <class Number>
bool within(Number number, double factor, const core::Limits& limits) {
    using Float = Arithmetic<Number>;
    const Float elt = static_cast<Float>(factor) * static_cast<Float>(number);
    const Float distance = std::fabs(elt - static_cast<Float>(limits.mean));
    return !(distance > static_cast<Float>(limits.allowed)) && !(elt > static_cast<Float>(limits.max)) &&
           !(elt < static_cast<Float>(limits.min));
}

// One number out of line at any place, in columns around the size of a block; each limit decides now and then.
template <class Number>
void one_out_of_line() {
    std::mt19937 random(7);
    constexpr std::array<std::size_t, 8> sizes = {0, 1, 2, 5, 511, 512, 513, 1100};
    constexpr std::array<double, 5> factors = {1, 2.54, 0.1, -1, 0};
    std::vector<double> odd = {0, 1, 49, 50, 51, 100, 200};
    if constexpr (std::is_floating_point_v<Number>) {
        odd.insert(odd.end(), {49.999, 50.001, -1, 1e14, -1e14, std::numeric_limits<double>::quiet_NaN(), -0.0});
    }
    for (int i = 0; i < 3000; ++i) {
        const std::size_t size = sizes[random() % sizes.size()];
        const std::size_t step = 1 + random() % 2;
        const double factor = factors[random() % factors.size()];
        const core::Limits limits{50.0 * factor, random() % 2 == 0 ? 1.0 : 60.0, random() % 2 == 0 ? -300.0 : 49.5,
                                  random() % 2 == 0 ? 300.0 : 50.5};
        // What stands between the rows is out of every limit.
        std::vector<Number> column(size * step + 1, std::numeric_limits<Number>::max());
        for (std::size_t row = 0; row < size; ++row) column[row * step] = Number{50};
        if (size != 0) column[(random() % size) * step] = static_cast<Number>(odd[random() % odd.size()]);
        bool expected = true;
        bool beyond = false;
        for (std::size_t row = 0; row < size; ++row) {
            expected = expected && within(column[row * step], factor, limits);
            beyond = beyond || std::fabs(static_cast<double>(column[row * step])) > 100.0;
        }
        const auto* data = reinterpret_cast<const char*>(column.data());
        const auto stride = static_cast<std::ptrdiff_t>(step * sizeof(Number));
        const std::string what = "column " + std::to_string(i);
        check(core::all_within<Number>(data, stride, size, factor, limits) == expected, what);
        check(core::any_beyond<Number>(data, stride, size, 100.0) == beyond, what + ": beyond");
    }
}

const std::array tests{
    Test{"limits of float64", one_out_of_line<double>},
    Test{"limits of float32", one_out_of_line<float>},
    Test{"limits of int64", one_out_of_line<std::int64_t>},
    Test{"limits of booleans", one_out_of_line<std::uint8_t>},
};

}  // namespace
}  // namespace quorin::tests
