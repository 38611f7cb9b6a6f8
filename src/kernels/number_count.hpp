// How many different numbers a column holds, up to a number beyond which it does not matter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorin::kernels {

// Numbers as 64-bit patterns that are the same exactly for equal numbers.
class NumberSet {
  public:
    // Room for `most` different numbers.
    explicit NumberSet(std::size_t most);
    // The number of different ones so far, this one included.
    std::size_t add(std::uint64_t pattern) noexcept {
        if (size_ != 0 && pattern == last_) return size_;
        last_ = pattern;
        std::size_t slot = static_cast<std::size_t>(pattern * 0x9e3779b97f4a7c15ULL >> 32U) & mask_;
        while (used_[slot] != 0) {
            if (patterns_[slot] == pattern) return size_;
            slot = (slot + 1) & mask_;
        }
        used_[slot] = 1;
        patterns_[slot] = pattern;
        return ++size_;
    }

  private:
    std::size_t mask_;
    std::size_t size_ = 0;
    std::uint64_t last_ = 0;
    std::vector<std::uint64_t> patterns_;
    std::vector<std::uint8_t> used_;
};

// NaN counts as one number, 0.0 and -0.0 as the same.
std::uint64_t pattern_of(double value) noexcept;

}  // namespace quorin::kernels
