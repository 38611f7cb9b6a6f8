// Facts of number columns compared with a test of each element: special values, every position, strides.
#include "core/gather/number_facts.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
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
void expect(const NumberFacts& expected, const void* data, std::ptrdiff_t stride, std::size_t rows,
            const std::string& what) {
    const core::StridedMemory column{static_cast<const char*>(data), stride, rows};
    for (const Instructions instructions : core::every_instruction_set) {
        const NumberFacts found = core::gather_numbers<Float>(column, instructions);
        const std::string which = what + ", instructions " + std::to_string(static_cast<int>(instructions)) + ": ";
        check(found.nulls == expected.nulls, which + "nulls");
        check(found.values == expected.values, which + "values");
        check(found.fractions == expected.fractions, which + "fractions");
    }
}

// Adjacent elements, every third one, backwards, and one repeated (stride 0).
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

// For all x >= always_whole<Float>(): x is whole.
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

// Every length up to four of the widest registers and more, every position of the one special value, several alignments
// of the memory.
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

// Blocks have 1024 elements. The special value is at the end of a block, or after a block that already has some of the
// facts.
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
        // Few different values in a column, so that every combination of facts occurs.
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

template <class Float>
using BitsOf = std::conditional_t<sizeof(Float) == 4, std::uint32_t, std::uint64_t>;

// A NaN with `low` as its lowest bits.
template <class Float>
Float nan_of(bool quiet, BitsOf<Float> low, bool negative) {
    using Bits = BitsOf<Float>;
    constexpr int fraction_bits = std::numeric_limits<Float>::digits - 1;
    const Bits infinite = std::bit_cast<Bits>(std::numeric_limits<Float>::infinity());
    const Bits bits = infinite | low | (quiet ? Bits{1} << (fraction_bits - 1) : 0);
    return std::bit_cast<Float>(negative ? bits | Bits{1} << (sizeof(Bits) * 8 - 1) : bits);
}

// A signalling NaN among quiet NaNs, infinite and ordinary numbers.
template <class Float>
void signalling_nan() {
    const BitsOf<Float> highest = BitsOf<Float>{1} << (std::numeric_limits<Float>::digits - 3);
    const std::vector<Float> harmless{1,
                                      0,
                                      -std::numeric_limits<Float>::infinity(),
                                      nan_of<Float>(true, 0, false),
                                      nan_of<Float>(true, 1, true),
                                      std::numeric_limits<Float>::denorm_min()};
    const std::array signalling{nan_of<Float>(false, 1, false), nan_of<Float>(false, highest, true)};
    for (std::size_t rows = 0; rows < 140; ++rows) {
        for (const std::ptrdiff_t step : {1, 2, -1}) {
            std::vector<Float> memory(2 * rows + 1, signalling[0]);
            Float* first = step < 0 ? memory.data() + rows : memory.data();
            for (std::size_t row = 0; row < rows; ++row) {
                first[static_cast<std::ptrdiff_t>(row) * step] = harmless[row % harmless.size()];
            }
            const core::StridedMemory column{reinterpret_cast<const char*>(first),
                                             step * static_cast<std::ptrdiff_t>(sizeof(Float)), rows};
            for (const Instructions instructions : core::every_instruction_set) {
                check(!core::any_signalling_nan<Float>(column, instructions), "none in " + std::to_string(rows));
                if (rows == 0) continue;
                const std::size_t row = rows * rows * 7 / 3 % rows;
                Float& cell = first[static_cast<std::ptrdiff_t>(row) * step];
                const Float before = cell;
                cell = signalling[rows % 2];
                check(core::any_signalling_nan<Float>(column, instructions), "one in " + std::to_string(rows));
                cell = before;
            }
        }
    }
}

void signalling_nan_of_any_storage() {
    const std::array<float, 2> floats{nan_of<float>(false, 1, false), 1};
    const std::array<double, 2> doubles{1, nan_of<double>(false, 1, false)};
    const auto* data = reinterpret_cast<const char*>(floats.data());
    check(core::any_signalling_nan({{data, 4, 2}, core::Storage::float32, 4}), "float32");
    check(!core::any_signalling_nan({{data, 4, 2}, core::Storage::integer, 4}), "integers of the same bits");
    const auto* wide = reinterpret_cast<const char*>(doubles.data());
    check(core::any_signalling_nan({{wide, 8, 2}, core::Storage::float64, 8}), "float64");
    check(!core::any_signalling_nan({{wide, 8, 1}, core::Storage::float64, 8}), "a part of float64");
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
            core::write_flags({first, stride, rows}, out.data());
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
    Test{"float64: signalling NaN", signalling_nan<double>},
    Test{"float32: signalling NaN", signalling_nan<float>},
    Test{"signalling NaN of any storage", signalling_nan_of_any_storage},
};

}  // namespace
}  // namespace quorin::tests
