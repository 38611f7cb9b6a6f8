// Cells of Arrow's utf8_view: 16 bytes per row, which contain a text of up to twelve bytes or refer to a buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/cells/utf8_text.hpp"
#include "core/cells/validity.hpp"

namespace quorin::core {

class Utf8Views {
  public:
    // The rows [offset, offset + rows) of an array with these buffers. Requires valid UTF-8 and buffers that
    // are_valid() accepts.
    Utf8Views(const void* views, const std::uint8_t* const* buffers, const std::uint8_t* validity, std::size_t offset,
              std::size_t rows) noexcept
        : views_(static_cast<const std::uint8_t*>(views) + offset * bytes_of_view),
          buffers_(buffers),
          valid_(validity, offset),
          rows_(rows) {}
    // Whether the views of all valid rows are within the `count` buffers of these sizes.
    [[nodiscard]] bool are_valid(const std::int64_t* sizes, std::size_t count) const noexcept {
        for (std::size_t row = 0; row < rows_; ++row) {
            if (!valid_(row)) continue;
            const std::int64_t size = number(row, at_size);
            if (size < 0) return false;
            if (size <= static_cast<std::int64_t>(most_inlined)) continue;
            const std::int64_t buffer = number(row, at_buffer);
            const std::int64_t start = number(row, at_start);
            if (buffer < 0 || static_cast<std::size_t>(buffer) >= count || start < 0) return false;
            if (start + size > sizes[buffer]) return false;
        }
        return true;
    }

    [[nodiscard]] std::size_t size() const noexcept { return rows_; }
    void prefetch(std::size_t /*row*/) const noexcept {}
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t size) const noexcept {
        return size_of(row) > size && valid_(row);
    }
    [[nodiscard]] bool glance(std::size_t row, ShortText& text) const noexcept {
        const std::size_t size = size_of(row);
        if (size - 1 >= 8 || std::endian::native != std::endian::little) return false;
        // Reads eight bytes, which are all in the view, and shifts out those after the text.
        text = {eight_bytes(view(row) + at_inlined) << (64 - 8 * size), size};
        return (text.bytes & beyond_ascii) == 0 && valid_(row);
    }
    Cell read(std::size_t row, TextView& text) const noexcept {
        if (!valid_(row)) return Cell::null;
        const std::size_t size = size_of(row);
        if (size <= most_inlined) {
            text = utf8_text(view(row) + at_inlined, size, row * bytes_of_view + at_inlined);
        } else {
            const auto start = static_cast<std::size_t>(number(row, at_start));
            text = utf8_text(buffers_[number(row, at_buffer)] + start, size, start);
        }
        return Cell::text;
    }

  private:
    static constexpr std::size_t bytes_of_view = 16;
    static constexpr std::size_t most_inlined = 12;
    // A view is (size, inlined text) or (size, first four bytes, index of a buffer, start of the text in the buffer).
    static constexpr std::size_t at_size = 0;
    static constexpr std::size_t at_inlined = 4;
    static constexpr std::size_t at_buffer = 8;
    static constexpr std::size_t at_start = 12;

    [[nodiscard]] const std::uint8_t* view(std::size_t row) const noexcept { return views_ + row * bytes_of_view; }
    [[nodiscard]] std::int32_t number(std::size_t row, std::size_t at) const noexcept {
        std::int32_t value = 0;
        std::memcpy(&value, view(row) + at, sizeof value);
        return value;
    }
    [[nodiscard]] std::size_t size_of(std::size_t row) const noexcept {
        return static_cast<std::uint32_t>(number(row, at_size));
    }
    const std::uint8_t* views_;
    const std::uint8_t* const* buffers_;
    Validity valid_;
    std::size_t rows_;
};

template <>
inline constexpr std::size_t longest_character<Utf8Views> = longest_in_utf8;

}  // namespace quorin::core
