// A part of a borrowed column.
#pragma once

#include "python/inputs/array_column.hpp"

namespace quorin::classify {

// The rows `first` to `last` - 1, borrowed as well.
inline ArrayColumn part_of(const ArrayColumn& column, std::size_t first, std::size_t last) noexcept {
    ArrayColumn part = column;
    part.data = column.at(first);
    part.rows = last - first;
    return part;
}

}  // namespace quorin::classify
