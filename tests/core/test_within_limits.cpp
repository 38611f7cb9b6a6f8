// Tests of limits compared with a test of each number.
#include "core/gather/within_limits.hpp"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
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

// One other number at any position, in columns around the size of a block; each limit decides in some columns.
template <class Number>
void one_out_of_line() {
    std::mt19937 random(7);
    constexpr std::array<std::size_t, 8> sizes = {0, 1, 2, 5, 511, 512, 513, 1100};
    constexpr std::array<double, 5> factors = {1, 2.54, 0.1, -1, 0};
    std::vector<double> odd = {0, 1, 49, 50, 51, 100, 200};
    if constexpr (std::is_floating_point_v<Number>) {
        odd.insert(odd.end(),
                   {49.999, 50.001, -1, 0.5, -0.999, 1e14, -1e14, std::numeric_limits<double>::quiet_NaN(), -0.0});
    }
    for (int i = 0; i < 3000; ++i) {
        const std::size_t size = sizes[random() % sizes.size()];
        const std::size_t step = 1 + random() % 2;
        const double factor = factors[random() % factors.size()];
        const core::Limits limits{50.0 * factor, random() % 2 == 0 ? 1.0 : 60.0, random() % 2 == 0 ? -300.0 : 49.5,
                                  random() % 2 == 0 ? 300.0 : 50.5};
        // The values between the rows are outside all limits.
        std::vector<Number> column(size * step + 1, std::numeric_limits<Number>::max());
        for (std::size_t row = 0; row < size; ++row) column[row * step] = Number{50};
        if (size != 0) column[(random() % size) * step] = static_cast<Number>(odd[random() % odd.size()]);
        bool expected = true;
        bool ordinary = true;
        const double least = random() % 2 == 0 ? 0.0 : 1.0;
        for (std::size_t row = 0; row < size; ++row) {
            expected = expected && within(column[row * step], factor, limits);
            const double size_of = std::fabs(static_cast<double>(column[row * step]));
            ordinary = ordinary && (size_of == 0 || !(size_of < least || size_of > 100.0));
        }
        const core::StridedMemory memory{reinterpret_cast<const char*>(column.data()),
                                         static_cast<std::ptrdiff_t>(step * sizeof(Number)), size};
        const std::string what = "column " + std::to_string(i);
        check(core::all_within<Number>(memory, factor, limits) == expected, what);
        check(core::all_ordinary<Number>(memory, {least, 100.0}) == ordinary, what + ": ordinary");
        const core::Fit fit = core::fit<Number>(memory, factor, limits, {least, 100.0});
        const core::Fit known = expected ? core::Fit::all : core::Fit::not_all;
        check(fit == known || (fit == core::Fit::unknown && !ordinary), what + ": fit");
    }
}

// Numbers at the bounds, quiet and signalling NaN, each at every position of a column of ordinary numbers.
template <class Float>
void bounds_of_ordinary_numbers() {
    using Numbers = std::numeric_limits<Float>;
    const struct {
        Float number;
        bool expected;
    } cases[] = {{0, true},
                 {-Float{0}, true},
                 {2, true},
                 {std::nextafter(Float{2}, Float{1}), false},
                 {-1, false},
                 {Numbers::denorm_min(), false},
                 {-100, true},
                 {std::nextafter(Float{100}, Float{200}), false},
                 {-Numbers::infinity(), false},
                 {Numbers::quiet_NaN(), true},
                 {-Numbers::quiet_NaN(), true},
                 {Numbers::signaling_NaN(), false}};
    for (const auto& [number, expected] : cases) {
        for (std::size_t rows = 1; rows < 20; ++rows) {
            for (std::size_t place = 0; place < rows; ++place) {
                std::vector<Float> column(rows, Float{50});
                std::memcpy(&column[place], &number, sizeof number);
                const core::StridedMemory memory{reinterpret_cast<const char*>(column.data()), sizeof(Float), rows};
                check(core::all_ordinary<Float>(memory, {2, 100}) == expected, std::to_string(number));
            }
        }
    }
}

// If a number is not ordinary, the fit is unknown, unless an earlier block holds a number outside the limits.
template <class Float>
void fit_of_numbers_that_are_not_ordinary() {
    using Numbers = std::numeric_limits<Float>;
    const Float cases[] = {Numbers::denorm_min(), -Numbers::min(), Numbers::infinity(), Numbers::max(),
                           Numbers::signaling_NaN()};
    for (const Float& number : cases) {
        for (const double min : {-60.0, 0.0, 40.0}) {
            for (const std::size_t place : {std::size_t{0}, std::size_t{1}, std::size_t{5000}, std::size_t{9999}}) {
                std::vector<Float> column(10000, Float{50});
                std::memcpy(&column[place], &number, sizeof number);
                const core::StridedMemory memory{reinterpret_cast<const char*>(column.data()), sizeof(Float), 10000};
                const core::Limits limits{50, 1e6, min, 60};
                const core::Ordinary ordinary{2.0 * Numbers::min(), 1e15};
                const std::string what = std::to_string(min) + " " + std::to_string(place);
                check(core::fit<Float>(memory, 1, limits, ordinary) == core::Fit::unknown, what);
                column[0] = Float{70};
                // At place 0 it has just been replaced.
                const bool same_block = place != 0 && place < 4096;
                const core::Fit fit = core::fit<Float>(memory, 1, limits, ordinary);
                check(fit == core::Fit::not_all || (same_block && fit == core::Fit::unknown), what + " after 70");
            }
        }
    }
}

const std::array tests{
    Test{"fit of float64 that are not ordinary", fit_of_numbers_that_are_not_ordinary<double>},
    Test{"fit of float32 that are not ordinary", fit_of_numbers_that_are_not_ordinary<float>},
    Test{"bounds of ordinary float64", bounds_of_ordinary_numbers<double>},
    Test{"bounds of ordinary float32", bounds_of_ordinary_numbers<float>},
    Test{"limits of float64", one_out_of_line<double>},
    Test{"limits of float32", one_out_of_line<float>},
    Test{"limits of int64", one_out_of_line<std::int64_t>},
    Test{"limits of booleans", one_out_of_line<std::uint8_t>},
};

}  // namespace
}  // namespace quorin::tests
