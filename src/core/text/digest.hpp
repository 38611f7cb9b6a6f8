// The MD5 digest of the UTF-8 bytes of a text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/text/text_view.hpp"

namespace quorin::core {

using Digest = std::array<std::uint8_t, 16>;

// Returns false if the text cannot be encoded in UTF-8: it has a surrogate or a character above U+10FFFF.
bool digest_text(TextView text, Digest& digest) noexcept;

// Writes the digest, a big-endian number, in decimal. Returns the number of digits.
constexpr std::size_t most_decimal_digits = 39;
std::size_t write_decimal(const Digest& digest, std::array<char, most_decimal_digits>& digits) noexcept;

}  // namespace quorin::core
