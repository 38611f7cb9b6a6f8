// Cells of Arrow's utf8 and large_utf8: the concatenated bytes of all texts, and the offset of each text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "core/cells/utf8_text.hpp"
#include "core/cells/validity.hpp"

namespace quorin::core {

// `Offset` is std::int32_t or std::int64_t.
template <class Offset>
class Utf8Offsets {
    static_assert(std::is_same_v<Offset, std::int32_t> || std::is_same_v<Offset, std::int64_t>);

  public:
    // The rows [offset, offset + rows) of an array with these buffers. `bytes` may be null if all texts are empty.
    // Requires valid UTF-8 and buffers that are_valid() accepts.
    Utf8Offsets(const void* offsets, const void* bytes, const std::uint8_t* validity, std::size_t offset,
                std::size_t rows) noexcept
        : offsets_(static_cast<const char*>(offsets) + offset * sizeof(Offset)),
          bytes_(static_cast<const std::uint8_t*>(bytes)),
          valid_(validity, offset),
          rows_(rows) {}
    // Whether 0 <= start(0) <= start(1) <= ... <= start(rows) <= size_of_bytes.
    [[nodiscard]] bool are_valid(std::size_t size_of_bytes) const noexcept {
        if (rows_ == 0) return true;
        Offset before = start(0);
        for (std::size_t row = 1; row <= rows_; ++row) {
            const Offset next = start(row);
            if (next < before) return false;
            before = next;
        }
        return start(0) >= 0 && static_cast<std::uint64_t>(before) <= size_of_bytes;
    }

    [[nodiscard]] std::size_t size() const noexcept { return rows_; }
    void prefetch(std::size_t /*row*/) const noexcept {}
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t size) const noexcept {
        return size_of(row) > size && valid_(row);
    }
    [[nodiscard]] bool glance(std::size_t row, ShortText& text) const noexcept {
        const auto begin = static_cast<std::size_t>(start(row));
        return short_ascii(bytes_ + begin, size_of(row), begin, text) && valid_(row);
    }
    Cell read(std::size_t row, TextView& text) const noexcept {
        if (!valid_(row)) return Cell::null;
        const auto begin = static_cast<std::size_t>(start(row));
        // Arrow allows a null buffer if all texts are empty; `begin` is 0 then.
        text = utf8_text(bytes_ + begin, size_of(row), begin);  // NOLINT(clang-analyzer-core.NullPointerArithm)
        return Cell::text;
    }

  private:
    // Arrow recommends aligned buffers but does not require them.
    [[nodiscard]] Offset start(std::size_t row) const noexcept {
        Offset value;
        std::memcpy(&value, offsets_ + row * sizeof value, sizeof value);
        return value;
    }
    [[nodiscard]] std::size_t size_of(std::size_t row) const noexcept {
        return static_cast<std::size_t>(start(row + 1) - start(row));
    }
    const char* offsets_;
    const std::uint8_t* bytes_;
    Validity valid_;
    std::size_t rows_;
};

template <class Offset>
constexpr std::size_t longest_character<Utf8Offsets<Offset>> = longest_in_utf8;

}  // namespace quorin::core
