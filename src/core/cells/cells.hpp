// The interface through which kernels read the cells of a column, whatever its memory layout.
//
// A kernel over texts is a template over a `Cells` type with these members:
//     std::size_t size() const
//     Cell read(std::size_t row, TextView& text) const
//         the type of the cell; sets `text` for a text
//     bool glance(std::size_t row, ShortText& text) const
//         sets `text` and returns true for an ASCII text of one to eight characters; may return false for one if the
//         test is slow
//     void prefetch(std::size_t row) const
//         a hint that the row will be read soon; `row` may be beyond the last row
//     bool longer_than(std::size_t row, std::size_t size) const
//         true for a text of more than `size` units; may return false for one if the test is slow
// `longest_character<Cells>` is specialised for cells in UTF-8.
#pragma once

#include <cstddef>

#include "core/text/text_view.hpp"

namespace quorin::core {

enum class Cell {
    text,
    null,  // None, NaN or an unset validity bit
    other  // of a type that kernels do not read
};

// The maximum number of units per character.
template <class Cells>
constexpr std::size_t longest_character = 1;

// Rows to prefetch ahead: enough for the latency of memory, few enough that the lines stay in the cache.
constexpr std::size_t prefetch_distance = 64;

}  // namespace quorin::core
