// The distinct texts of a column: the row in which each occurs first, and how often it occurs.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "core/cells/cells.hpp"

namespace quorin::core {

// Equal for equal texts in the same encoding, as same_units() defines it, and never 0.
std::uint32_t hash_text(const TextView& text) noexcept;

struct DistinctText {
    TextView text;
    std::size_t row;  // of its first occurrence
    std::int64_t count;
};

// Open addressing. The texts are either all in UTF-8 or all in fixed-width characters, equal ones in the same. Texts
// are added in blocks, so that memory is prefetched for a whole block before the first look-up. The characters stay
// with the caller.
class TextTable {
  public:
    static constexpr std::size_t block = 32;
    static constexpr std::size_t most_rows = 0x7fffffff;
    // For a column of this many rows. Entries have numbers of 32 bits: a caller with more than `most_rows` rows has to
    // stop at some number of entries.
    explicit TextTable(std::size_t rows) : rows_(rows), slots_(initial_slots, empty) {}
    struct Block {
        std::array<TextView, block> texts;
        std::array<std::size_t, block> rows;  // ascending
        std::size_t size = 0;
    };
    void add(const Block& texts);
    // Adds one text; returns the number of its entry.
    std::uint32_t add(const TextView& text, std::size_t row);
    // For long columns: makes room for so many more entries in steps of a few milliseconds. Returns false after each
    // step but the last, and reads no text. Nothing may be added between two steps.
    bool make_room(std::size_t more, std::size_t rows_so_far);
    // In the order of their first occurrence.
    [[nodiscard]] const std::vector<DistinctText>& entries() const noexcept { return entries_; }
    // The same. Frees the rest of the table, to which nothing may be added any more.
    [[nodiscard]] std::vector<DistinctText> take_entries() noexcept {
        std::vector<Slot>().swap(slots_);
        return std::move(entries_);
    }

  private:
    static constexpr std::uint32_t none = 0xffffffffU;
    static constexpr std::size_t initial_slots = 256;
    struct Slot {
        std::uint32_t number;  // of the entry
        std::uint32_t hash;
    };
    static constexpr Slot empty{none, 0};
    // A larger table, while it is made.
    struct Growth {
        std::vector<Slot> slots;
        std::vector<DistinctText> entries;
        std::size_t size;       // of `slots` when they are complete
        std::size_t moved = 0;  // slots
    };

    [[nodiscard]] std::size_t grown_size(std::size_t entries, std::size_t rows_so_far) const noexcept;
    static void move(const Slot* from, const Slot* end, std::vector<Slot>& to) noexcept;
    void grow(std::size_t rows_so_far);
    std::uint32_t find_or_add(const TextView& text, std::uint32_t hash, std::size_t row);

    std::size_t rows_;
    std::vector<Slot> slots_;
    std::vector<DistinctText> entries_;
    std::optional<Growth> growth_;
};

// Adds the texts of the rows `first` to `last` - 1 that are not skipped. False if one of these is not a text.
template <class Cells, class Skip>
bool add_rows(TextTable& table, const Cells& cells, std::size_t first, std::size_t last, Skip skip) {
    TextTable::Block block;
    for (std::size_t row = first; row < last;) {
        std::size_t size = 0;
        for (; row < last && size < TextTable::block; ++row) {
            cells.prefetch(row + prefetch_distance);
            if (skip(row)) continue;
            if (cells.read(row, block.texts[size]) != Cell::text) return false;
            block.rows[size++] = row;
        }
        block.size = size;
        table.add(block);
    }
    return true;
}

// Adds the texts of all rows.
template <class Cells, class Skip>
bool add_all(TextTable& table, const Cells& cells, Skip skip) {
    return add_rows(table, cells, 0, cells.size(), skip);
}

template <class Cells>
bool add_all(TextTable& table, const Cells& cells) {
    return add_all(table, cells, [](std::size_t) { return false; });
}

}  // namespace quorin::core
