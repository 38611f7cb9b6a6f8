#include "core/text/number_value.hpp"

#include <array>
#include <cfloat>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace quorin::core {

namespace {

// The powers of ten that are exact as a float64.
constexpr std::array exact_powers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int most_exact_power = static_cast<int>(exact_powers.size()) - 1;
constexpr std::uint64_t most_exact_whole = std::uint64_t{1} << 53U;
// 10^19 - 1 < 2^64: this many digits do not overflow.
constexpr std::size_t most_digits = 19;
constexpr std::size_t most_exponent_digits = 4;

// With excess precision, as on x87, a result would be rounded twice.
constexpr bool rounds_once = FLT_EVAL_METHOD == 0;

template <class Character>
bool is_digit(Character c) noexcept {
    return c >= '0' && c <= '9';
}

// The unsigned number whole * 10 ** power.
struct Decimal {
    std::uint64_t whole = 0;
    int power = 0;
};

template <class Character>
std::size_t add_digits(const Character*& at, const Character* end, std::uint64_t& whole) noexcept {
    const Character* const start = at;
    for (; at != end && is_digit(*at); ++at) whole = whole * 10 + static_cast<std::uint64_t>(*at - '0');
    return static_cast<std::size_t>(at - start);
}

template <class Character>
bool read_exponent(const Character*& at, const Character* end, int& power) noexcept {
    if (at == end || (*at != 'e' && *at != 'E')) return true;
    ++at;
    const bool negative = at != end && *at == '-';
    if (negative || (at != end && *at == '+')) ++at;
    std::uint64_t exponent = 0;
    const std::size_t digits = add_digits(at, end, exponent);
    if (digits == 0 || digits > most_exponent_digits) return false;
    power += negative ? -static_cast<int>(exponent) : static_cast<int>(exponent);
    return true;
}

// Returns false unless the text is digits with an optional dot and an optional exponent.
template <class Character>
bool read_decimal(const Character* at, const Character* end, Decimal& number) noexcept {
    std::size_t digits = add_digits(at, end, number.whole);
    if (at != end && *at == '.') {
        ++at;
        const std::size_t fraction = add_digits(at, end, number.whole);
        digits += fraction;
        if (digits > most_digits) return false;
        number.power = -static_cast<int>(fraction);
    }
    if (digits == 0 || digits > most_digits) return false;
    return read_exponent(at, end, number.power) && at == end;
}

// A product or quotient of two exact numbers is rounded once, so it is the nearest float64.
bool exact_value(const Decimal& number, double& value) noexcept {
    if (!rounds_once || number.whole > most_exact_whole) return false;
    const auto whole = static_cast<double>(number.whole);
    if (number.power >= -most_exact_power && number.power < 0) {
        value = whole / exact_powers[static_cast<std::size_t>(-number.power)];
    } else if (number.power >= 0 && number.power <= most_exact_power) {
        value = whole * exact_powers[static_cast<std::size_t>(number.power)];
    } else {
        return false;
    }
    return true;
}

#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L
template <class Character>
bool rounded_value(const Character* at, const Character* end, double& value) noexcept {
    std::array<char, 32> narrow{};
    const auto length = static_cast<std::size_t>(end - at);
    if (length > narrow.size()) return false;
    for (std::size_t i = 0; i < length; ++i) narrow[i] = static_cast<char>(at[i]);
    const auto result = std::from_chars(narrow.data(), narrow.data() + length, value);
    return result.ec == std::errc{} && result.ptr == narrow.data() + length;
}
#else
template <class Character>
bool rounded_value(const Character* /*at*/, const Character* /*end*/, double& /*value*/) noexcept {
    return false;
}
#endif

template <class Character>
bool value_of(TextView text, double& value) noexcept {
    const auto* at = static_cast<const Character*>(text.characters);
    const auto* end = at + text.size;
    while (at != end && is_space(*at)) ++at;
    while (at != end && is_space(end[-1])) --end;
    const bool negative = at != end && *at == '-';
    if (negative || (at != end && *at == '+')) ++at;
    Decimal number;
    if (!read_decimal(at, end, number)) return false;
    if (!exact_value(number, value) && !rounded_value(at, end, value)) return false;
    if (negative) value = -value;
    return true;
}

}  // namespace

// UTF-8 needs no decoding: a byte beyond ASCII makes read_decimal() return false.
bool value_of_number(TextView text, double& value) noexcept {
    switch (text.width) {
        case 1:
            return value_of<std::uint8_t>(text, value);
        case 2:
            return value_of<std::uint16_t>(text, value);
        case 4:
            return value_of<std::uint32_t>(text, value);
        default:
            return false;
    }
}

}  // namespace quorin::core
