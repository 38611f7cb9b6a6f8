// Validity bitmaps of Arrow arrays: one bit per row, least significant bit first, set for rows that have a value.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorin::core {

class Validity {
  public:
    // If `bits` is null, every row has a value. Row 0 is bit `offset`.
    explicit Validity(const std::uint8_t* bits = nullptr, std::size_t offset = 0) noexcept
        : bits_(bits), offset_(offset) {}
    [[nodiscard]] bool operator()(std::size_t row) const noexcept {
        if (bits_ == nullptr) return true;
        const std::size_t bit = offset_ + row;
        return (bits_[bit / 8] >> (bit % 8) & 1U) != 0;
    }

  private:
    const std::uint8_t* bits_;
    std::size_t offset_;
};

}  // namespace quorin::core
