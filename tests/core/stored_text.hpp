// A text as columns store it: 1, 2 or 4 bytes a character, or compact.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "core/cells/cells.hpp"

namespace quorin::tests {

enum class Stored { one_byte, two_bytes, four_bytes, compact };

constexpr std::array every_storage{Stored::one_byte, Stored::two_bytes, Stored::four_bytes, Stored::compact};

class StoredText {
  public:
    StoredText(const std::u32string& text, Stored stored) : length_(text.size()), stored_(stored) {
        // What lies before a compact text must not matter; the other storages end where the allocation does.
        if (stored == Stored::compact)
            bytes_ = {'5', 0xff, '.', '1', 0x80, '7', '-', '9', 0, '3', 'x', ' ', '+', 0xfe, '0', '8'};
        for (const char32_t c : text) append(c);
    }
    [[nodiscard]] core::TextView view() const {
        if (stored_ != Stored::compact) return {bytes_.data(), length_, width()};
        return {bytes_.data() + 16, length_, 1, std::endian::native == std::endian::little};
    }

  private:
    [[nodiscard]] int width() const { return stored_ == Stored::four_bytes ? 4 : stored_ == Stored::two_bytes ? 2 : 1; }
    void append(char32_t c) {
        std::array<std::uint8_t, 4> stored{};
        if (stored_ == Stored::four_bytes) {
            std::memcpy(stored.data(), &c, 4);
        } else if (stored_ == Stored::two_bytes) {
            const auto two = static_cast<std::uint16_t>(c);
            std::memcpy(stored.data(), &two, 2);
        } else {
            stored[0] = static_cast<std::uint8_t>(c);
        }
        bytes_.insert(bytes_.end(), stored.begin(), stored.begin() + width());
    }
    std::size_t length_;
    Stored stored_;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace quorin::tests
