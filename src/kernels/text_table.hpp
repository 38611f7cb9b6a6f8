// Finding equal texts: which different ones a column holds, where each stands first, how often it occurs.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "kernels/cells.hpp"

namespace quorin::kernels {

struct DistinctText {
    TextView text;
    std::size_t row;  // of its first occurrence
    std::int64_t count;
};

// Open addressing, for columns whose equal texts are of the same width. Texts come in blocks, so that while one is
// looked up the memory that the next ones need is on its way. Their characters stay with the caller.
class TextTable {
  public:
    static constexpr std::size_t block = 32;
    // For texts of so many rows; no more than 2 ** 31.
    explicit TextTable(std::size_t rows) : rows_(rows), slots_(initial_slots, empty) {}
    // The texts of `size` rows from `row` on, `block` at most.
    void add(const std::array<TextView, block>& texts, std::size_t row, std::size_t size);
    // In the order of their first occurrence.
    [[nodiscard]] const std::vector<DistinctText>& entries() const noexcept { return entries_; }

  private:
    static constexpr std::uint32_t none = 0xffffffffU;
    static constexpr std::size_t initial_slots = 256;
    struct Slot {
        std::uint32_t number;  // of the entry
        std::uint32_t hash;
    };
    static constexpr Slot empty{none, 0};

    void grow(std::size_t rows_so_far);
    void find_or_add(const TextView& text, std::uint32_t hash, std::size_t row);

    std::size_t rows_;
    std::vector<Slot> slots_;
    std::vector<DistinctText> entries_;
};

// False where a cell is no text.
template <class Cells>
bool add_all(TextTable& table, const Cells& cells) {
    const std::size_t rows = cells.size();
    std::array<TextView, TextTable::block> texts;
    for (std::size_t row = 0; row < rows; row += TextTable::block) {
        const std::size_t size = std::min(TextTable::block, rows - row);
        for (std::size_t i = 0; i < size; ++i) {
            cells.prefetch(row + i + prefetch_distance);
            if (cells.read(row + i, texts[i]) != Cell::text) return false;
        }
        table.add(texts, row, size);
    }
    return true;
}

}  // namespace quorin::kernels
