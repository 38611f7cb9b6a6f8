// Cells of fixed-width text: four bytes per character, padded with zeros.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/cells/cells.hpp"

namespace quorin::core {

class FixedWidthText {
  public:
    FixedWidthText(const char* data, std::ptrdiff_t stride, std::size_t rows, std::size_t longest) noexcept
        : data_(data), stride_(stride), rows_(rows), longest_(longest) {}
    [[nodiscard]] std::size_t size() const noexcept { return rows_; }
    void prefetch(std::size_t /*row*/) const noexcept {}
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t size) const noexcept {
        return size < longest_ && characters(row)[size] != 0;
    }
    // For widths of 4 to 16 characters. Finds the length without a branch, from the highest byte that is not zero.
    [[nodiscard]] bool glance(std::size_t row, ShortText& text) const noexcept {
        constexpr std::size_t most = 16;
        if (longest_ < 4 || longest_ > most || std::endian::native != std::endian::little) return false;
        const std::uint32_t* at = characters(row);
        if (longest_ > 8 && at[8] != 0) return false;
        Four all{};
        std::uint64_t value = four_from(at, all);
        std::uint64_t beyond = 0;
        if (longest_ <= 8) {
            // The two loads may overlap.
            value |= std::uint64_t{four_from(at + longest_ - 4, all)} << (8 * (longest_ - 4));
        } else {
            value |= std::uint64_t{four_from(at + 4, all)} << 32U;
            Four others{};
            for (std::size_t i = 8; i + 4 < longest_; i += 4) beyond |= four_from(at + i, others);
            beyond |= four_from(at + longest_ - 4, others) >> (longest_ < 12 ? 8 * (12 - longest_) : 0);
            all |= others;
        }
        const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(all);
        if (value == 0 || beyond != 0 || ((halves[0] | halves[1]) & 0xffffff80ffffff80) != 0) return false;
        const auto zeros = static_cast<unsigned>(__builtin_clzll(value)) / 8;
        text = {value << (8 * zeros), 8 - zeros};
        return true;
    }
    // A text may contain NUL characters, so its end is searched from the back, two characters at a time.
    Cell read(std::size_t row, TextView& text) const noexcept {
        const std::uint32_t* at = characters(row);
        std::size_t length = longest_;
        while (length > 1 && eight_bytes(at + length - 2) == 0) length -= 2;
        if (length > 0 && at[length - 1] == 0) --length;
        text = {at, length, 4};
        return Cell::text;
    }

  private:
    using Four [[gnu::vector_size(16)]] = std::uint32_t;
    // Narrows four characters to bytes, the first in the lowest byte, and adds their bits to `all`.
    static std::uint32_t four_from(const std::uint32_t* at, Four& all) noexcept {
        using FourBytes [[gnu::vector_size(4)]] = std::uint8_t;
        Four four;
        std::memcpy(&four, at, sizeof four);
        all |= four;
        return std::bit_cast<std::uint32_t>(__builtin_convertvector(four, FourBytes));
    }
    [[nodiscard]] const std::uint32_t* characters(std::size_t row) const noexcept {
        return reinterpret_cast<const std::uint32_t*>(data_ + static_cast<std::ptrdiff_t>(row) * stride_);
    }
    const char* data_;
    std::ptrdiff_t stride_;
    std::size_t rows_;
    std::size_t longest_;
};

}  // namespace quorin::core
