// MD5 of a text's UTF-8 bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/text/text_view.hpp"

namespace quorin::core {

using Digest = std::array<std::uint8_t, 16>;

// False for a text that UTF-8 has no bytes for: one with a surrogate, or with what is no character at all.
bool digest_text(TextView text, Digest& digest) noexcept;

// The digest as a number, its first byte highest, in decimal digits; tells how many.
constexpr std::size_t most_decimal_digits = 39;
std::size_t write_decimal(const Digest& digest, std::array<char, most_decimal_digits>& digits) noexcept;

}  // namespace quorin::core
