// Values of number texts compared with strtod(), in every storage.
#include "core/text/number_value.hpp"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include "harness.hpp"
#include "number_reference.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::NumberText;
using core::value_of_number;

std::uint64_t bits_of(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

// Checks every value that value_of_number() returns; returns whether it returned one for the last storage.
bool check_value(const std::string& text) {
    const bool number = number_by_reference(text) != NumberText::none;
    bool told = false;
    for (const Stored stored : every_storage) {
        const StoredText same_text({text.begin(), text.end()}, stored);
        double value = 0;
        told = value_of_number(same_text.view(), value);
        const std::string what = "text <" + text + "> in storage " + std::to_string(static_cast<int>(stored));
        check(!told || number, what + " is no number");
        check(!told || bits_of(value) == bits_of(std::strtod(text.c_str(), nullptr)), what + " has another value");
    }
    return told;
}

void common_numbers() {
    constexpr auto texts = std::to_array<std::string_view>({"0",
                                                            "-0",
                                                            "+0",
                                                            "7",
                                                            "007",
                                                            "-12",
                                                            "+12",
                                                            "1.",
                                                            ".5",
                                                            "1.5",
                                                            "-1.5",
                                                            "+.5",
                                                            "1e5",
                                                            "1E5",
                                                            "1e+5",
                                                            "1e-5",
                                                            "1.e5",
                                                            ".5e1",
                                                            "0.1",
                                                            "123456789.123456",
                                                            "9007199254740992",
                                                            "1e22",
                                                            "1e-22",
                                                            " 1.5 ",
                                                            "\t7\v",
                                                            "0e99",
                                                            "0.3"});
    for (const std::string_view text : texts) {
        check(check_value(std::string{text}), "no value for " + std::string{text});
    }
}

void no_numbers() {
    for (const std::string_view text :
         std::to_array<std::string_view>({"", " ", "-", "+", ".", "e5", "1e", "1e+", "1.5.2", "1 2", "--1", "0x10", "a",
                                          "1a", "nan", "inf", "1_0", "1,5",
                                          "\x1c"
                                          "1"})) {
        check(!check_value(std::string{text}), "a value for " + std::string{text});
    }
    check(!check_value(std::string("1\0", 2)), "a value for a text with a zero behind");
    double value = 0;
    const std::array<std::uint16_t, 2> wide{0x0661, '1'};
    check(!value_of_number({wide.data(), wide.size(), 2}, value), "a value for a digit of another script");
    const std::array<std::uint32_t, 1> beyond{0x100 + '1'};
    check(!value_of_number({beyond.data(), beyond.size(), 4}, value), "a value for a character that ends like a digit");
}

constexpr std::string_view alphabet{"05.-+eE _x\t"};

void short_texts() {
    for_every_text(alphabet, 4, check_value);
}

// Up to twenty digits, some with a dot at any position, some with an exponent.
void random_decimals() {
    std::mt19937_64 random(1);
    for (int i = 0; i < 60000; ++i) {
        std::string text(1 + random() % 20, '0');
        for (char& c : text) c = static_cast<char>('0' + random() % 10);
        if (random() % 2 == 0) text.insert(random() % (text.size() + 1), ".");
        if (random() % 2 == 0) {
            const int widest = random() % 4 == 0 ? 700 : 60;
            text += "e" + std::to_string(static_cast<int>(random() % static_cast<unsigned>(widest)) - widest / 2);
        }
        if (random() % 4 == 0) text.insert(0, "-");
        check_value(text);
    }
}

// Random floats, written by printf() with up to 19 digits; 17 determine a float.
void written_floats() {
    std::mt19937_64 random(2);
    for (int i = 0; i < 60000; ++i) {
        std::array<char, 64> text{};
        const auto value = std::bit_cast<double>(random());
        static_cast<void>(std::snprintf(text.data(), text.size(), "%.*g", static_cast<int>(random() % 20), value));
        check_value(text.data());
    }
}

const Test common{"values of common numbers", common_numbers};
const Test none{"no values of other texts", no_numbers};
const Test short_ones{"values of all texts up to four characters", short_texts};
const Test decimals{"values of decimals drawn at random", random_decimals};
const Test written{"values of written floats", written_floats};

}  // namespace
}  // namespace quorin::tests
