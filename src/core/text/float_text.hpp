// The shortest text of a 64-bit float.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorin::core {

// Room for any of them, such as -2.2250738585072014e-308.
using FloatText = std::array<char, 32>;

// Writes what repr() gives for the number and tells its length; 0 where the compiler's library cannot say.
std::size_t write_float(double number, FloatText& text) noexcept;

// One byte a character to four bytes a character.
void widen(const char* from, std::size_t size, std::uint32_t* to) noexcept;

}  // namespace quorin::core
