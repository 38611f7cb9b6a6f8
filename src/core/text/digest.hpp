// MD5 of a text's bytes in UTF-8.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/text/text_view.hpp"

namespace quorin::core {

using Digest = std::array<std::uint8_t, 16>;

// False if the text cannot be encoded in UTF-8: it holds a surrogate or a number above U+10FFFF.
bool digest_text(TextView text, Digest& digest) noexcept;

// Writes the digest as a decimal number, its first byte being the highest; returns the number of digits.
constexpr std::size_t most_decimal_digits = 39;
std::size_t write_decimal(const Digest& digest, std::array<char, most_decimal_digits>& digits) noexcept;

}  // namespace quorin::core
