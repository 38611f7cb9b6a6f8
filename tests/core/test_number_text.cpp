// Which texts are numbers. The expected results are those of the interpreter's int() and float().
#include "core/text/number_text.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <source_location>
#include <string>
#include <string_view>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

using core::classify_number;
using core::NumberText;

using Where = std::source_location;

// Classifies the text stored with 1, 2 or 4 bytes a character.
template <class Character>
NumberText classify_as(std::string_view text) {
    const std::vector<Character> characters(text.begin(), text.end());
    return classify_number({characters.data(), characters.size(), sizeof(Character)});
}

void expect(NumberText expected, std::string_view text, Where where = Where::current()) {
    const std::string row = std::string{"text "}.append(text);
    check(classify_as<std::uint8_t>(text) == expected, row + " with 1 byte a character", where);
    check(classify_as<std::uint16_t>(text) == expected, row + " with 2 bytes a character", where);
    check(classify_as<std::uint32_t>(text) == expected, row + " with 4 bytes a character", where);
}

template <std::size_t N>
void expect_all(NumberText expected, const std::array<std::string_view, N>& texts, Where where = Where::current()) {
    for (const std::string_view text : texts) expect(expected, text, where);
}

template <class Character, std::size_t N>
NumberText classify_characters(const std::array<Character, N>& characters) {
    return classify_number({characters.data(), N, sizeof(Character)});
}

void integers() {
    expect_all(NumberText::integer,
               std::to_array<std::string_view>({"0", "7", "007", "12", "+12", "-12", "1_000", "1_2_3", "0_0"}));
}

void white_space_around() {
    expect_all(NumberText::integer, std::to_array<std::string_view>({" 12", "12 ", "\t12\n", "\v12\f", "\r\n-12\r\n"}));
    expect_all(NumberText::real, std::to_array<std::string_view>({" 1.5", "1.5 ", "\tnan\n", "\v1e5\f"}));
    expect_all(NumberText::none, std::to_array<std::string_view>({"", " ", "\t\n", "1 2", "- 1", "1 .5", "1 e5"}));
}

void reals() {
    expect_all(NumberText::real,
               std::to_array<std::string_view>({"1.", ".5", "1.5", "-1.5", "+.5", "1e5", "1E5", "1e+5", "1e-5", "1.e5",
                                                ".5e1", "1_0.5", "1.5_0", "1e1_0", "007.5", "1e400", "1e-400"}));
}

void infinity_and_nan() {
    expect_all(NumberText::real, std::to_array<std::string_view>({"inf", "INF", "-inf", "+Inf", "infinity", "-INFINITY",
                                                                  "InFiNiTy", "nan", "NaN", "-nan", "+NAN"}));
    expect_all(NumberText::none, std::to_array<std::string_view>(
                                     {"in", "infinit", "infx", "infinityx", "nanx", "na", "nan1", "+-inf", "in_f"}));
}

void incomplete_numbers() {
    expect_all(NumberText::none,
               std::to_array<std::string_view>({"+", "-", ".", "+.", "e5", ".e5", "1e", "1e+", "1e-", "1.5e"}));
}

void misplaced_underscores() {
    expect_all(NumberText::none, std::to_array<std::string_view>({"_", "_1", "1_", "1__0", "+_1", "1_.5", "1._5",
                                                                  "1.5_", "1_e5", "1e_5", "1e5_", "_1.5"}));
}

void other_notations() {
    expect_all(NumberText::none,
               std::to_array<std::string_view>({"+-1", "--1", "1,5", "1.5.2", "1e5.5", "0x10", "0b1", "0o7", "1j",
                                                "12a", "a12", "$1", "1%", "n/a", "?", "(1)"}));
}

// Separators are white space for str.isspace(), but not for int() and float() of an ASCII text.
void separators() {
    expect_all(NumberText::none, std::to_array<std::string_view>({"\x1c",
                                                                  "\x1c"
                                                                  "12",
                                                                  "12\x1d",
                                                                  "\x1e"
                                                                  "1.5",
                                                                  "1.5\x1f"}));
}

void null_characters() {
    expect(NumberText::none, std::string_view{"\0", 1});
    expect(NumberText::none, std::string_view{"12\0", 3});
    expect(NumberText::none, std::string_view{"\0"
                                              "12",
                                              3});
    expect(NumberText::none, std::string_view{"1.5\0", 4});
}

// int() may reject 641 digits and more. Leading zeros count; underscores do not.
void digit_limit() {
    expect(NumberText::integer, std::string(640, '9'));
    expect(NumberText::integer, "-" + std::string(640, '9'));
    expect(NumberText::ask, std::string(641, '9'));
    expect(NumberText::ask, std::string(641, '0'));
    expect(NumberText::ask, "1_" + std::string(640, '9'));
    expect(NumberText::real, std::string(641, '9') + ".0");
    expect(NumberText::none, std::string(641, '9') + "x");
}

// int() and float() accept digits and white space beyond ASCII, so only the interpreter can classify these texts.
void other_scripts() {
    check(classify_characters(std::to_array<std::uint8_t>({'1', 0xa0})) == NumberText::ask, "no-break space");
    check(classify_characters(std::to_array<std::uint16_t>({0x0661, 0x0662})) == NumberText::ask, "Arabic-Indic");
    check(classify_characters(std::to_array<std::uint32_t>({0x1d7d7})) == NumberText::ask, "mathematical bold");
    // The low bytes of these characters are those of "12".
    check(classify_characters(std::to_array<std::uint16_t>({0x3031, 0x3032})) == NumberText::ask, "low byte of 1, 2");
    check(classify_characters(std::to_array<std::uint32_t>({0x10031, 0x10032})) == NumberText::ask, "low byte of 1, 2");
}

void unknown_width() {
    const auto bytes = std::to_array<std::uint8_t>({'1', '2', '3'});
    check(classify_number({bytes.data(), 1, 3}) == NumberText::ask, "3 bytes a character");
}

const std::array tests{
    Test{"integers", integers},
    Test{"white space around a number", white_space_around},
    Test{"reals", reals},
    Test{"infinity and nan", infinity_and_nan},
    Test{"incomplete numbers", incomplete_numbers},
    Test{"misplaced underscores", misplaced_underscores},
    Test{"other notations", other_notations},
    Test{"separators", separators},
    Test{"null characters", null_characters},
    Test{"digit limit", digit_limit},
    Test{"other scripts", other_scripts},
    Test{"unknown width", unknown_width},
};

}  // namespace
}  // namespace quorin::tests
