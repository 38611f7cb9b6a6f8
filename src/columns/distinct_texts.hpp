// Finding the distinct texts of a column, in whatever cells they stand.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "columns/distinct.hpp"
#include "kernels/text_order.hpp"

namespace quorin::columns {

// In the order of their first occurrence.
struct Texts {
    std::vector<kernels::TextView> texts;
    std::vector<Distinct> entries;
};

// Without the rows that are skipped; nothing where any other element is no plain text. The places in the table are
// asked for a block of rows ahead.
template <class Cells, class Skip>
std::optional<Texts> distinct_texts(const Cells& cells, Skip skip) {
    constexpr std::size_t block = 16;
    Texts found;
    kernels::TextTable table;
    const auto text_of = [&](std::uint32_t number) { return found.texts[number]; };
    std::uint32_t last = 0;
    std::array<kernels::TextView, block> texts{};
    std::array<std::uint64_t, block> hashes{};
    std::array<std::size_t, block> rows{};
    for (std::size_t row = 0; row < cells.size();) {
        std::size_t size = 0;
        for (; row < cells.size() && size < block; ++row) {
            cells.prefetch(row + kernels::prefetch_distance);
            if (skip(row)) continue;
            if (cells.read(row, texts[size]) != kernels::Cell::text) return std::nullopt;
            hashes[size] = kernels::hash_text(texts[size]);
            table.prefetch(hashes[size]);
            rows[size++] = row;
        }
        for (std::size_t i = 0; i < size; ++i) {
            // Neighbours are often the same object.
            if (!found.texts.empty() && texts[i].characters == found.texts[last].characters) {
                ++found.entries[last].count;
                continue;
            }
            const auto next = static_cast<std::uint32_t>(found.texts.size());
            last = table.find_or_add(texts[i], hashes[i], next, text_of);
            if (last == next) {
                found.texts.push_back(texts[i]);
                found.entries.push_back({rows[i], 1});
            } else {
                ++found.entries[last].count;
            }
        }
    }
    return found;
}

}  // namespace quorin::columns
