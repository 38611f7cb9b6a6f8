// The rows of a column that hold missing-value markers.
#pragma once

#include <optional>

#include "columns/markers.hpp"

namespace quorin::columns {

struct MissingRows {
    Ref mask;                // of shape (n,)
    std::uint32_t bits = 0;  // of the markers that occur
    std::size_t marked = 0;  // rows that the mask marks
};

// Nothing where an element is of no known kind, or where numbers meet elements of an object array. With `first_only`
// the first marker of the list that occurs stands for all of them.
std::optional<MissingRows> missing_rows(const Column& column, const Markers& markers, bool first_only = false);

}  // namespace quorin::columns
