// Facts of number columns against one look at each element: special values, every place in a column, strides.
#include "core/gather/number_facts.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

using core::Instructions;
using core::NumberFacts;

template <class Float>
NumberFacts by_reference(const std::vector<Float>& column) {
    NumberFacts facts;
    for (const Float x : column) {
        if (std::isnan(x)) {
            facts.nulls = true;
        } else {
            facts.values = true;
            facts.fractions = facts.fractions || std::isinf(x) || std::floor(x) != x;
        }
    }
    return facts;
}

template <class Float>
NumberFacts gather(const void* data, std::ptrdiff_t stride, std::size_t rows, Instructions instructions) {
    const auto* bytes = static_cast<const char*>(data);
    if constexpr (std::is_same_v<Float, double>) {
        return core::gather_float64(bytes, stride, rows, instructions);
    } else {
        return core::gather_float32(bytes, stride, rows, instructions);
    }
}

template <class Float>
void expect(const NumberFacts& expected, const void* data, std::ptrdiff_t stride, std::size_t rows,
            const std::string& what) {
    for (const Instructions instructions : {Instructions::baseline, Instructions::avx2, Instructions::best}) {
        const NumberFacts found = gather<Float>(data, stride, rows, instructions);
        const std::string which = what + ", instructions " + std::to_string(static_cast<int>(instructions)) + ": ";
        check(found.nulls == expected.nulls, which + "nulls");
        check(found.values == expected.values, which + "values");
        check(found.fractions == expected.fractions, which + "fractions");
    }
}

// As they are, every third one, backwards, and one element over and over again.
template <class Float>
void expect_in_every_layout(const std::vector<Float>& column, const std::string& what) {
    constexpr std::ptrdiff_t size = sizeof(Float);
    const NumberFacts expected = by_reference(column);
    const std::size_t rows = column.size();
    expect<Float>(expected, column.data(), size, rows, what);

    std::vector<Float> spread(rows * 3 + 1, std::numeric_limits<Float>::quiet_NaN());
    for (std::size_t row = 0; row < rows; ++row) spread[row * 3] = column[row];
    expect<Float>(expected, spread.data(), size * 3, rows, what + ", every third");

    const std::vector<Float> reversed(column.rbegin(), column.rend());
    const Float* last = reversed.data() + (rows == 0 ? 0 : rows - 1);
    expect<Float>(expected, last, -size, rows, what + ", backwards");

    if (rows == 0) return;
    expect<Float>(by_reference<Float>({column[0]}), column.data(), 0, rows, what + ", the first one only");
}

// From the number returned on, all are whole.
template <class Float>
Float always_whole() {
    return 1 / std::numeric_limits<Float>::epsilon();
}

template <class Float>
std::vector<Float> special_values() {
    using Limits = std::numeric_limits<Float>;
    const Float whole = always_whole<Float>();
    std::vector<Float> values{0,
                              static_cast<Float>(0.5),
                              1,
                              std::nextafter(Float{1}, Float{2}),
                              std::nextafter(Float{1}, Float{0}),
                              static_cast<Float>(2.5),
                              whole / 2 + static_cast<Float>(0.5),
                              whole - static_cast<Float>(0.5),
                              whole - 1,
                              whole,
                              whole + 1,
                              whole * 2 - 1,
                              whole * 2,
                              whole * 2 + 2,
                              whole * 1024,
                              Limits::max(),
                              Limits::min(),
                              Limits::denorm_min(),
                              Limits::infinity(),
                              Limits::quiet_NaN()};
    const std::size_t positive = values.size();
    for (std::size_t i = 0; i < positive; ++i) values.push_back(-values[i]);
    return values;
}

template <class Float>
void each_special_value() {
    for (const Float x : special_values<Float>()) {
        expect_in_every_layout<Float>({x}, std::to_string(x) + " alone");
        for (const std::size_t rows : {2U, 3U, 4U, 5U, 7U, 8U, 9U, 17U}) {
            for (std::size_t place = 0; place < rows; ++place) {
                std::vector<Float> column(rows, 3);
                column[place] = x;
                expect_in_every_layout(column, std::to_string(x) + " in " + std::to_string(place));
            }
        }
    }
}

// Every length, and every place of the row that matters, up to more than two registers of the widest kind twice over;
// from every place that memory may start at.
template <class Float>
void each_length_and_place() {
    const std::array<Float, 3> matter{std::numeric_limits<Float>::quiet_NaN(), static_cast<Float>(0.5),
                                      -std::numeric_limits<Float>::infinity()};
    constexpr std::size_t longest = 67;
    for (std::size_t rows = 1; rows <= longest; ++rows) {
        for (std::size_t place = 0; place < rows; ++place) {
            const std::size_t start = place % 8;
            std::vector<Float> memory(start + rows, 3);
            memory[start + place] = matter[(rows + place / 8) % matter.size()];
            const std::vector<Float> column(memory.begin() + static_cast<std::ptrdiff_t>(start), memory.end());
            expect<Float>(
                by_reference(column), memory.data() + start, sizeof(Float), rows,
                std::to_string(column[place]) + " at " + std::to_string(place) + " of " + std::to_string(rows));
        }
    }
}

// Elements are looked at in blocks of 1024: the row that matters stands at the ends of a block, or after one that has
// settled a part.
template <class Float>
void around_blocks() {
    const std::array<Float, 4> matter{std::numeric_limits<Float>::quiet_NaN(), static_cast<Float>(0.5),
                                      std::numeric_limits<Float>::infinity(), always_whole<Float>() + 1};
    for (const std::size_t rows : {1023U, 1024U, 1025U, 2047U, 2048U, 2049U}) {
        for (const Float background : {Float{7}, matter[0], matter[1], matter[3]}) {
            for (const Float x : matter) {
                for (const std::size_t place : {std::size_t{0}, rows / 2, std::size_t{1022}, rows - 2, rows - 1}) {
                    std::vector<Float> column(rows, background);
                    column[place] = x;
                    expect_in_every_layout(column, std::to_string(x) + " at " + std::to_string(place) + " of " +
                                                       std::to_string(rows) + " times " + std::to_string(background));
                }
            }
        }
    }
}

template <class Float>
void random_columns() {
    std::mt19937 random(2);
    const std::vector<Float> values = special_values<Float>();
    for (int i = 0; i < 2000; ++i) {
        // InplaceVector kinds in one column, so that every combination of facts occurs.
        std::vector<Float> kinds(1 + random() % 3);
        for (Float& kind : kinds) kind = values[random() % values.size()];
        std::vector<Float> column(random() % 40);
        for (Float& x : column) x = kinds[random() % kinds.size()];
        expect_in_every_layout(column, "random column " + std::to_string(i));
    }
}

void no_rows() {
    const double unread = 0.5;
    expect<double>({}, &unread, 8, 0, "no rows");
    expect<double>({}, nullptr, 8, 0, "no rows and no memory");
    expect<float>({}, nullptr, 4, 0, "no rows of float32");
}

void flags() {
    for (const std::ptrdiff_t stride : {1, 3, -1}) {
        for (std::size_t rows = 0; rows < 70; ++rows) {
            std::vector<char> bytes(std::size_t{3} * 70, 9);
            char* first = stride < 0 ? bytes.data() + 70 : bytes.data();
            const auto flag = [](std::size_t row) {
                return static_cast<char>(row % 3 == 0 ? 0 : row % 5 == 0 ? -2 : 1);
            };
            for (std::size_t row = 0; row < rows; ++row) first[static_cast<std::ptrdiff_t>(row) * stride] = flag(row);
            std::vector<double> out(rows + 1, 7.0);
            core::write_flags(first, stride, rows, out.data());
            for (std::size_t row = 0; row < rows; ++row) {
                check(out[row] == (flag(row) == 0 ? 0.0 : 1.0), "flag " + std::to_string(row));
            }
            check(out[rows] == 7.0, "behind the last of " + std::to_string(rows));
        }
    }
}

const std::array tests{
    Test{"flags as floats", flags},
    Test{"float64: each special value", each_special_value<double>},
    Test{"float32: each special value", each_special_value<float>},
    Test{"float64: each length and place", each_length_and_place<double>},
    Test{"float32: each length and place", each_length_and_place<float>},
    Test{"float64: around blocks", around_blocks<double>},
    Test{"float32: around blocks", around_blocks<float>},
    Test{"float64: random columns", random_columns<double>},
    Test{"float32: random columns", random_columns<float>},
    Test{"number columns without rows", no_rows},
};

}  // namespace
}  // namespace quorin::tests
