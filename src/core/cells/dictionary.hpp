// Dictionary-encoded cells: each row holds the index of a cell of the dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/cells/cells.hpp"
#include "core/cells/validity.hpp"

namespace quorin::core {

// `Index` is any integer type, `Entries` any type of cells. A row is null if it is not valid or its entry is null, and
// Cell::other if its index is out of range.
template <class Index, class Entries>
class DictionaryCells {
    static_assert(std::is_integral_v<Index>);

  public:
    // The rows [offset, offset + rows) of an array of indices with these buffers.
    DictionaryCells(const void* indices, const std::uint8_t* validity, std::size_t offset, std::size_t rows,
                    const Entries& entries) noexcept
        : indices_(static_cast<const char*>(indices) + offset * sizeof(Index)),
          valid_(validity, offset),
          rows_(rows),
          entries_(entries) {}

    [[nodiscard]] std::size_t size() const noexcept { return rows_; }
    void prefetch(std::size_t /*row*/) const noexcept {}
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t size) const noexcept {
        const std::size_t entry = index(row);
        return entry < entries_.size() && valid_(row) && entries_.longer_than(entry, size);
    }
    [[nodiscard]] bool glance(std::size_t row, ShortText& text) const noexcept {
        const std::size_t entry = index(row);
        return entry < entries_.size() && valid_(row) && entries_.glance(entry, text);
    }
    Cell read(std::size_t row, TextView& text) const noexcept {
        if (!valid_(row)) return Cell::null;
        const std::size_t entry = index(row);
        return entry < entries_.size() ? entries_.read(entry, text) : Cell::other;
    }

  private:
    // A negative index converts to one that is out of range.
    [[nodiscard]] std::size_t index(std::size_t row) const noexcept {
        Index value;
        std::memcpy(&value, indices_ + row * sizeof value, sizeof value);
        return static_cast<std::size_t>(value);
    }
    const char* indices_;
    Validity valid_;
    std::size_t rows_;
    Entries entries_;
};

template <class Index, class Entries>
constexpr std::size_t longest_character<DictionaryCells<Index, Entries>> = longest_character<Entries>;

}  // namespace quorin::core
