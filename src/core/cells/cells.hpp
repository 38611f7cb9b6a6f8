// How kernels see the cells of a column in any memory.
//
// A kernel over texts is a template over a `Cells` type with these members:
//     std::size_t size() const
//     Cell read(std::size_t row, TextView& text) const
//         the type of the cell; sets `text` for a text
//     bool glance(std::size_t row, ShortText& text) const
//         true for an ASCII text of one to eight characters, which `text` is set to; may be false for one if finding
//         out is slow
//     void prefetch(std::size_t row) const
//         a hint that the row will be read soon; `row` may be beyond the last
//     bool longer_than(std::size_t row, std::size_t size) const
//         true for a text of more units; may be false for one if finding out is slow
// `longest_character<Cells>` is specialised for cells in UTF-8.
#pragma once

#include <cstddef>

#include "core/text/text_view.hpp"

namespace quorin::core {

enum class Cell {
    text,
    null,  // no value: None, NaN, an unset bit of validity
    other  // of a type that kernels do not know
};

// The most units that one character of a text takes.
template <class Cells>
constexpr std::size_t longest_character = 1;

// Far enough ahead that memory arrives in time, near enough that it is still in the cache when it is read.
constexpr std::size_t prefetch_distance = 64;

}  // namespace quorin::core
