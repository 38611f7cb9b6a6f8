// How kernels see the cells of a column, wherever they lie.
//
// A kernel over texts is a template over a `Cells` type that offers
//     std::size_t size() const
//     Cell read(std::size_t row, TextView& text) const   what the cell is; `text` is set for a text
//     bool glance(std::size_t row, ShortText& text) const
//         whether it is an ASCII text of one to eight characters, where that is quick to see: false tells nothing
//     void prefetch(std::size_t row) const               a hint that the row will be read soon
//     bool longer_than(std::size_t row, std::size_t length) const
//         whether it is a text of more characters, where that is quick to see: false tells nothing
#pragma once

#include <cstddef>

#include "core/text/text_view.hpp"

namespace quorin::core {

enum class Cell {
    text,
    null,  // no value: None, NaN
    other  // of no kind that the kernels know
};

// Far enough that memory answers in time, near enough that the cache still holds what it answered.
constexpr std::size_t prefetch_distance = 64;

}  // namespace quorin::core
