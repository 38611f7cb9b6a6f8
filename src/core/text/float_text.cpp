#include "core/text/float_text.hpp"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>
#include <system_error>

namespace quorin::core {

namespace {

#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L

class Writer {
  public:
    explicit Writer(char* at) noexcept : start_(at), at_(at) {}
    void put(std::string_view characters) noexcept {
        std::memcpy(at_, characters.data(), characters.size());
        at_ += characters.size();
    }
    void put(char character, int times = 1) noexcept {
        for (; times > 0; --times) *at_++ = character;
    }
    [[nodiscard]] std::size_t written() const noexcept { return static_cast<std::size_t>(at_ - start_); }

  private:
    char* start_;
    char* at_;
};

// A positive number d0.d1d2... * 10 ** power, with the digits d0 d1 d2 ....
struct Digits {
    std::array<char, 24> characters;
    std::size_t size;
    int power;
    [[nodiscard]] std::string_view from(std::size_t start) const noexcept {
        return {characters.data() + start, size - start};
    }
    [[nodiscard]] std::string_view first(std::size_t count) const noexcept { return {characters.data(), count}; }
};

bool shortest_digits(double number, Digits& digits) noexcept {
    FloatText text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific);
    if (written.ec != std::errc{}) return false;
    const std::string_view all(text.data(), static_cast<std::size_t>(written.ptr - text.data()));
    const std::size_t exponent = all.find('e');
    // The form is d or d.ddd before the exponent.
    const std::size_t fraction = exponent < 2 ? 0 : exponent - 2;
    if (exponent == std::string_view::npos || fraction >= digits.characters.size()) return false;
    digits.characters[0] = all[0];
    digits.size = 1 + fraction;
    if (fraction != 0) std::memcpy(digits.characters.data() + 1, all.data() + 2, fraction);
    const bool small = all[exponent + 1] == '-';
    int power = 0;
    for (const char c : all.substr(exponent + 2)) power = power * 10 + (c - '0');
    digits.power = small ? -power : power;
    return true;
}

// repr(x) has no exponent if 1e-4 <= x < 1e16, and otherwise an exponent of at least two digits.
constexpr int least_power_without_exponent = -4;
constexpr int least_power_with_exponent = 16;

void put_digits(Writer& writer, const Digits& digits) noexcept {
    const int power = digits.power;
    if (power < least_power_without_exponent || power >= least_power_with_exponent) {
        writer.put(digits.first(1));
        if (digits.size > 1) {
            writer.put('.');
            writer.put(digits.from(1));
        }
        writer.put('e');
        writer.put(power < 0 ? '-' : '+');
        const int size = power < 0 ? -power : power;
        if (size >= 100) writer.put(static_cast<char>('0' + size / 100));
        writer.put(static_cast<char>('0' + size / 10 % 10));
        writer.put(static_cast<char>('0' + size % 10));
    } else if (power < 0) {
        writer.put("0.");
        writer.put('0', -power - 1);
        writer.put(digits.from(0));
    } else {
        const auto before_dot = static_cast<std::size_t>(power) + 1;
        if (digits.size > before_dot) {
            writer.put(digits.first(before_dot));
            writer.put('.');
            writer.put(digits.from(before_dot));
        } else {
            writer.put(digits.from(0));
            writer.put('0', static_cast<int>(before_dot - digits.size));
            writer.put(".0");
        }
    }
}

#endif

}  // namespace

#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L

std::size_t write_float(double number, FloatText& text) noexcept {
    Writer writer(text.data());
    if (std::isnan(number)) {
        writer.put("nan");
        return writer.written();
    }
    if (std::signbit(number)) writer.put('-');
    number = std::fabs(number);
    if (std::isinf(number)) {
        writer.put("inf");
    } else if (number == 0) {
        writer.put("0.0");
    } else {
        Digits digits{};
        if (!shortest_digits(number, digits)) return 0;
        put_digits(writer, digits);
    }
    return writer.written();
}

#else

std::size_t write_float(double /*number*/, FloatText& /*text*/) noexcept {
    return 0;
}

#endif

void widen(const char* from, std::size_t size, std::uint32_t* to) noexcept {
    for (std::size_t i = 0; i < size; ++i) to[i] = static_cast<std::uint8_t>(from[i]);
}

}  // namespace quorin::core
