// A hash table of the distinct texts of a column, with the row of the first occurrence and the count of each.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "core/cells/cells.hpp"

namespace quorin::core {

// The hash of a text, never 0. Equal for texts that are equal by same_units().
std::uint32_t hash_text(const TextView& text) noexcept;

struct DistinctText {
    TextView text;
    std::size_t row;  // the row of the first occurrence
    std::int64_t count;
};

// Open addressing. The texts are either all in UTF-8 or all in fixed-width characters, and equal texts have the same
// width. Texts are added in blocks, so that memory is prefetched for a whole block before the first look-up. The caller
// owns the characters.
class TextTable {
  public:
    static constexpr std::size_t block = 32;
    static constexpr std::size_t most_rows = 0x7fffffff;
    // For a column of this many rows. Indices of entries have 32 bits: a caller with more than `most_rows` rows must
    // limit the number of entries.
    explicit TextTable(std::size_t rows) : rows_(rows), slots_(initial_slots, empty) {}
    struct Block {
        std::array<TextView, block> texts;
        std::array<std::size_t, block> rows;  // ascending
        std::size_t size = 0;
    };
    void add(const Block& texts);
    // Adds one text and returns the index of its entry.
    std::uint32_t add(const TextView& text, std::size_t row);
    // For long columns: makes room for `more` entries in steps of a few milliseconds. Call it until it returns true; do
    // not add texts before. Reads no text.
    bool make_room(std::size_t more, std::size_t rows_so_far);
    // The distinct texts in the order of first occurrence.
    [[nodiscard]] const std::vector<DistinctText>& entries() const noexcept { return entries_; }
    // Moves the entries out and frees the slots. The table cannot be used afterwards.
    [[nodiscard]] std::vector<DistinctText> take_entries() noexcept {
        std::vector<Slot>().swap(slots_);
        return std::move(entries_);
    }

  private:
    static constexpr std::uint32_t none = 0xffffffffU;
    static constexpr std::size_t initial_slots = 256;
    struct Slot {
        std::uint32_t number;  // index of the entry
        std::uint32_t hash;
    };
    static constexpr Slot empty{none, 0};
    // The state of make_room(): a larger table under construction.
    struct Growth {
        std::vector<Slot> slots;
        std::vector<DistinctText> entries;
        std::size_t size;       // final size of `slots`
        std::size_t moved = 0;  // number of old slots that have been moved
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

// Adds the texts of the rows `first` to `last` - 1 that are not skipped. Returns false if one of them is not a text.
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

template <class Cells, class Skip>
bool add_all(TextTable& table, const Cells& cells, Skip skip) {
    return add_rows(table, cells, 0, cells.size(), skip);
}

template <class Cells>
bool add_all(TextTable& table, const Cells& cells) {
    return add_all(table, cells, [](std::size_t) { return false; });
}

}  // namespace quorin::core
