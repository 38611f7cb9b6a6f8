// Distinct numbers and their counts compared with ordered maps.
#include "core/distinct/number_runs.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

// Every `step`-th number.
template <class Number>
core::StridedMemory memory(const std::vector<Number>& numbers, std::size_t rows, std::size_t step = 1) {
    return {reinterpret_cast<const char*>(numbers.data()), static_cast<std::ptrdiff_t>(step * sizeof(Number)), rows};
}

template <class Number>
std::vector<Number> some_numbers(std::mt19937& random, std::size_t size) {
    const std::vector<Number> special = {std::numeric_limits<Number>::lowest(), std::numeric_limits<Number>::max(),
                                         Number{0}, Number{1}, Number{2}};
    const bool ends = random() % 2 == 0;
    const auto few = static_cast<unsigned>(1 + random() % 90);
    std::vector<Number> numbers(size);
    for (Number& number : numbers) {
        number = ends && random() % 4 == 0 ? special[random() % special.size()] : static_cast<Number>(random() % few);
    }
    return numbers;
}

template <class Number>
void runs_of_sorted_numbers() {
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        std::vector<Number> numbers = some_numbers<Number>(random, random() % 70);
        std::sort(numbers.begin(), numbers.end());
        std::map<Number, std::ptrdiff_t> expected;
        for (const Number number : numbers) ++expected[number];
        const std::size_t runs = core::count_runs(numbers.data(), numbers.size());
        check(runs == expected.size(), "number of runs in column " + std::to_string(i));
        // One element more than needed, which must stay unchanged.
        constexpr auto untouched = Number{77};
        std::vector<Number> values(runs + 1, untouched);
        std::vector<std::ptrdiff_t> counts(runs + 1, -1);
        core::write_runs(numbers.data(), numbers.size(), runs, values.data(), counts.data());
        check(values[runs] == untouched && counts[runs] == -1, "place behind the runs");
        std::size_t run = 0;
        for (const auto& [number, occurrences] : expected) {
            check(values[run] == number && counts[run] == occurrences, "run " + std::to_string(run));
            ++run;
        }
        check(core::sum(counts.data(), runs) == static_cast<std::ptrdiff_t>(numbers.size()), "sum of counts");
    }
}

void first_of_equal_numbers_stands_for_them() {
    const std::array<double, 4> zeros = {-0.0, 0.0, -0.0, 1.0};
    std::array<double, 2> values{};
    std::array<std::ptrdiff_t, 2> counts{};
    core::write_runs(zeros.data(), 4, 2, values.data(), counts.data());
    check(std::signbit(values[0]) && counts[0] == 3, "the zero that stands first");
    core::write_runs(zeros.data() + 1, 3, 2, values.data(), counts.data());
    check(!std::signbit(values[0]) && counts[0] == 2, "the other zero");
}

template <class Number>
void kept_rows() {
    std::mt19937 random(4);
    for (int i = 0; i < 300; ++i) {
        const std::size_t rows = random() % 60;
        const std::size_t step = 1 + random() % 3;
        const std::vector<Number> numbers = some_numbers<Number>(random, rows * step + 1);
        std::vector<char> mask(rows);
        for (char& marked : mask) marked = static_cast<char>(random() % 3 == 0);
        std::vector<Number> expected;
        std::vector<Number> all;
        for (std::size_t row = 0; row < rows; ++row) {
            all.push_back(numbers[row * step]);
            if (mask[row] == 0) expected.push_back(numbers[row * step]);
        }
        check(rows - core::count_marked(mask.data(), rows) == expected.size(), "marked rows");
        std::vector<Number> kept(expected.size());
        core::copy_kept<Number>(memory(numbers, rows, step), mask.data(), kept.data(), kept.size());
        check(kept == expected, "kept rows of column " + std::to_string(i));
        std::vector<Number> copied(rows);
        core::copy_kept<Number>(memory(numbers, rows, step), nullptr, copied.data(), rows);
        check(copied == all, "all rows of column " + std::to_string(i));
    }
}

template <class Integer>
void tables_of_integers() {
    std::mt19937 random(5);
    for (int i = 0; i < 300; ++i) {
        std::vector<Integer> numbers = some_numbers<Integer>(random, 1 + random() % 60);
        const auto [least, greatest] = core::range_of<Integer>(memory(numbers, numbers.size()));
        check(least == *std::min_element(numbers.begin(), numbers.end()), "least integer");
        check(greatest == *std::max_element(numbers.begin(), numbers.end()), "greatest integer");
        const std::uint64_t span = static_cast<std::uint64_t>(greatest) - static_cast<std::uint64_t>(least);
        if (span > 0xffff) continue;
        std::vector<std::ptrdiff_t> table(static_cast<std::size_t>(span) + 1);
        core::count_each<Integer>(memory(numbers, numbers.size()), least, table.data());
        for (std::size_t slot = 0; slot < table.size(); ++slot) {
            const auto number = static_cast<Integer>(static_cast<std::uint64_t>(least) + slot);
            check(table[slot] == std::count(numbers.begin(), numbers.end(), number), "count of an integer");
        }
    }
}

template <class Float>
void marked_nulls() {
    constexpr Float null = std::numeric_limits<Float>::quiet_NaN();
    const auto test = [](std::size_t rows, std::size_t step) {
        std::vector<Float> numbers(step * rows + 1, Float{1});
        for (std::size_t row = 0; row < rows; row += 3) numbers[step * row] = row % 2 == 0 ? null : -null;
        std::vector<char> mask(rows, 7);
        const std::size_t nulls = core::mark_nulls<Float>(memory(numbers, rows, step), mask.data());
        check(nulls == (rows + 2) / 3, "number of nulls");
        check(core::count_marked(mask.data(), rows) == nulls, "number of marks");
        for (std::size_t row = 0; row < rows; ++row) check(mask[row] == (row % 3 == 0 ? 1 : 0), "mask of nulls");
    };
    for (const std::size_t step : {std::size_t{1}, std::size_t{2}}) {
        for (std::size_t rows = 0; rows < 40; ++rows) test(rows, step);
        for (const std::size_t rows : {4079U, 4080U, 4081U, 4096U, 8160U, 10001U}) test(rows, step);
    }
}

template <class Float>
void unlike_equals() {
    constexpr Float null = std::numeric_limits<Float>::quiet_NaN();
    const auto unlike = [](std::vector<Float> numbers) {
        return core::has_unlike_equals(numbers.data(), numbers.size());
    };
    check(!unlike({}), "nothing");
    check(!unlike({0, 1, 0, -1}), "zeros of one sign");
    check(!unlike({-Float{0}, 1, -Float{0}}), "zeros of the other sign");
    check(unlike({-Float{0}, 1, 1, 1, 1, 1, 1, 1, 1, 0}), "zeros of both signs");
    check(unlike({1, 2, null}), "a null");
    check(unlike({-null, 2, 3}), "a null with a sign");
    check(!unlike({std::numeric_limits<Float>::denorm_min(), std::numeric_limits<Float>::infinity(), 0}), "others");
}

void fractions() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double huge = 4503599627370496.0;  // 2 ** 52; for all x >= huge: x is whole
    const std::vector<double> numbers = {-infinity,
                                         -1e300,
                                         -huge - 1,
                                         -huge,
                                         -huge + 0.5,
                                         -1.5,
                                         -1.0,
                                         -0.5,
                                         -0.0,
                                         5e-324,
                                         0.5,
                                         2.0,
                                         huge - 0.5,
                                         huge,
                                         1e300,
                                         infinity,
                                         std::numeric_limits<double>::quiet_NaN()};
    std::vector<std::ptrdiff_t> counts;
    std::size_t distinct = 0;
    std::ptrdiff_t rows = 0;
    for (const double number : numbers) {
        counts.push_back(static_cast<std::ptrdiff_t>(1) << counts.size());
        if (std::isfinite(number) && std::floor(number) == number) continue;
        ++distinct;
        rows += counts.back();
    }
    const core::FractionTally all = core::tally_fractions(numbers.data(), counts.data(), numbers.size());
    check(all.distinct == distinct && all.rows == rows, "all of them");
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const bool whole = std::isfinite(numbers[i]) && std::floor(numbers[i]) == numbers[i];
        const core::FractionTally tally = core::tally_fractions(&numbers[i], &counts[i], 1);
        check(tally.distinct == (whole ? 0 : 1) && tally.rows == (whole ? 0 : counts[i]),
              "fraction " + std::to_string(i));
    }
}

const std::array tests{
    Test{"runs of float64", runs_of_sorted_numbers<double>},
    Test{"runs of float32", runs_of_sorted_numbers<float>},
    Test{"runs of int64", runs_of_sorted_numbers<std::int64_t>},
    Test{"runs of int8", runs_of_sorted_numbers<std::int8_t>},
    Test{"runs of uint16", runs_of_sorted_numbers<std::uint16_t>},
    Test{"runs of zeros", first_of_equal_numbers_stands_for_them},
    Test{"kept rows of float64", kept_rows<double>},
    Test{"kept rows of int32", kept_rows<std::int32_t>},
    Test{"tables of int8", tables_of_integers<std::int8_t>},
    Test{"tables of uint16", tables_of_integers<std::uint16_t>},
    Test{"tables of int64", tables_of_integers<std::int64_t>},
    Test{"tables of uint64", tables_of_integers<std::uint64_t>},
    Test{"marked nulls of float64", marked_nulls<double>},
    Test{"marked nulls of float32", marked_nulls<float>},
    Test{"unlike equals of float64", unlike_equals<double>},
    Test{"unlike equals of float32", unlike_equals<float>},
    Test{"tally of fractions", fractions},
};

}  // namespace
}  // namespace quorin::tests
