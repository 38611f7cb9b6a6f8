// The shortest text of a 64-bit float.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorin::core {

// Large enough for any number, such as -2.2250738585072014e-308.
using FloatText = std::array<char, 32>;

// Writes repr(number) and returns its length; 0 if the C++ library has no std::to_chars() for floats.
std::size_t write_float(double number, FloatText& text) noexcept;

// Copies characters of one byte to characters of four bytes.
void widen(const char* from, std::size_t size, std::uint32_t* to) noexcept;

}  // namespace quorin::core
