// Texts of floats: the shortest that convert back to the same float, of these the nearest, in the notation of repr().
#include "core/text/float_text.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <version>

#include "harness.hpp"

namespace quorin::tests {
namespace {

// Without std::to_chars() for floats the module does not write them; the interpreter route does.
#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L

using core::FloatText;
using core::write_float;

std::string written(double number) {
    FloatText text{};
    return {text.data(), write_float(number, text)};
}

struct Expected {
    double number;
    std::string_view text;
};

void known_texts() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const Expected& row : std::to_array<Expected>({
             {0.0, "0.0"},
             {-0.0, "-0.0"},
             {1.0, "1.0"},
             {-1.5, "-1.5"},
             {0.1, "0.1"},
             {100.0, "100.0"},
             {123456.789, "123456.789"},
             {0.0001, "0.0001"},
             {0.00012345678901234567, "0.00012345678901234567"},
             {0.00001, "1e-05"},
             {1.5e-7, "1.5e-07"},
             {1e15, "1000000000000000.0"},
             {9999999999999998.0, "9999999999999998.0"},
             {1e16, "1e+16"},
             {1.5e16, "1.5e+16"},
             {1e22, "1e+22"},
             {1e23, "1e+23"},
             {1e100, "1e+100"},
             {-1.7976931348623157e308, "-1.7976931348623157e+308"},
             {2.2250738585072014e-308, "2.2250738585072014e-308"},
             {5e-324, "5e-324"},
             {5.684341886080802e-14, "5.684341886080802e-14"},
             {infinity, "inf"},
             {-infinity, "-inf"},
             {std::numeric_limits<double>::quiet_NaN(), "nan"},
             {-std::numeric_limits<double>::quiet_NaN(), "nan"},
         })) {
        check(written(row.number) == row.text, "text of " + std::string{row.text} + " is " + written(row.number));
    }
}

std::string with_digits(int digits, double number) {
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.*e", digits - 1, number));
    return text.data();
}

// The least number of digits with which printf() writes a text that converts back to the number.
int digits_needed(double number) {
    int digits = 1;
    while (std::strtod(with_digits(digits, number).c_str(), nullptr) != number) ++digits;
    return digits;
}

int digits_of(const std::string& text) {
    std::string digits;
    for (const char c : text.substr(0, text.find('e'))) {
        if (c >= '0' && c <= '9') digits += c;
    }
    const std::size_t first = digits.find_first_not_of('0');
    const std::size_t last = digits.find_last_not_of('0');
    return static_cast<int>(last - first + 1);
}

void check_number(double number) {
    const std::string text = written(number);
    check(std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)) == std::bit_cast<std::uint64_t>(number),
          text + " reads back as another number");
    // printf() writes the nearest text of a given number of digits. If that text does not convert back to the number,
    // but another of the same length does, write_float() needs one digit less than printf().
    const int needed = digits_needed(number);
    check(digits_of(text) == needed || digits_of(text) == needed - 1, text + " has too many digits");
    if (digits_of(text) == needed) {
        check(std::strtod(with_digits(needed, number).c_str(), nullptr) == std::strtod(text.c_str(), nullptr),
              text + " is not the nearest");
    }
    const bool power_told = text.find('e') != std::string::npos;
    check(power_told == (std::fabs(number) < 1e-4 || std::fabs(number) >= 1e16), text + " is in the wrong notation");
    check(power_told || text.find('.') != std::string::npos, text + " looks like a whole number");
}

void any_bits() {
    std::mt19937_64 random(1);
    for (int i = 0; i < 40000; ++i) {
        const auto number = std::bit_cast<double>(random());
        if (std::isfinite(number) && number != 0) check_number(number);
    }
}

void few_digits() {
    std::mt19937_64 random(2);
    for (int i = 0; i < 40000; ++i) {
        const std::string text = std::to_string(1 + random() % 1000000) + "e" + std::to_string(random() % 40);
        check_number(std::strtod(text.c_str(), nullptr) / 1e20);
    }
}

// The next float below a power of two is nearer than the next float above it.
void powers_of_two() {
    for (int power = -1074; power < 1024; ++power) check_number(std::ldexp(1.0, power));
}

const Test known{"texts of known floats", known_texts};
const Test any{"texts of any floats", any_bits};
const Test few{"texts of floats of few digits", few_digits};
const Test powers{"texts of powers of two", powers_of_two};

#endif

void wider_characters() {
    const std::string text = "0123456789abcdefghij\xff";
    for (std::size_t size = 0; size <= text.size(); ++size) {
        std::array<std::uint32_t, 32> wide{};
        wide.fill(7);
        core::widen(text.data(), size, wide.data());
        for (std::size_t i = 0; i < wide.size(); ++i) {
            const std::uint32_t expected = i < size ? static_cast<std::uint8_t>(text[i]) : 7U;
            check(wide[i] == expected, "character " + std::to_string(i) + " of " + std::to_string(size));
        }
    }
}

const Test wide{"widened characters", wider_characters};

}  // namespace
}  // namespace quorin::tests
