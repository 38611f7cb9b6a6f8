// The shortest text that converts back to a float64.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorin::core {

// Large enough for any number, such as -2.2250738585072014e-308.
using FloatText = std::array<char, 32>;

// Writes repr(number) and returns its length; 0 if the C++ library has no std::to_chars() for floats.
std::size_t write_float(double number, FloatText& text) noexcept;

// Copies one-byte characters to four-byte characters.
void widen(const char* from, std::size_t size, std::uint32_t* to) noexcept;

}  // namespace quorin::core
