// Growth of the containers of a long column in steps, between which signals are answered: nothing may be borrowed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

#include "python/signals.hpp"

namespace quorin::distinct {

// Makes room in a table, of which make_room() returns false after each step but the last.
template <class Table, class... Sizes>
void grow(Table& table, SignalTimer& timer, Sizes... sizes) {
    while (!table.make_room(sizes...)) timer.poll();
}

// Makes room for so many more values. At least doubles the room, since a new part of memory takes a millisecond for 1
// MB.
template <class Value>
void grow(std::vector<Value>& values, SignalTimer& timer, std::size_t more) {
    constexpr std::size_t step = std::size_t{1} << 15U;
    const std::size_t size = values.size();
    if (size + more <= values.capacity()) return;
    std::vector<Value> larger;
    larger.reserve(std::max(size + more, 2 * values.capacity()));
    for (std::size_t first = 0; first < size; first += step) {
        const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = values.begin() + static_cast<std::ptrdiff_t>(std::min(size, first + step));
        larger.insert(larger.end(), std::make_move_iterator(begin), std::make_move_iterator(end));
        timer.poll();
    }
    values.swap(larger);
}

}  // namespace quorin::distinct
