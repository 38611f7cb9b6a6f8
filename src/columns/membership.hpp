// Which rows of a column equal which reference values.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "columns/markers.hpp"

namespace quorin::columns {

// The mask of the rows that equal any of the values, shape (n,); nothing where an element is of no known kind, or where
// numbers meet elements of an object array.
std::optional<Ref> membership_mask(const Column& column, const Markers& values);

// A mask for each value that occurs, beside its bit, in the order of the list.
std::optional<std::vector<std::pair<std::uint32_t, Ref>>> masks_by_value(const Column& column, const Markers& values);

// An all-false mask.
Ref empty_mask(std::size_t rows);

// first | second
Ref merged_masks(Object first, Object second);

}  // namespace quorin::columns
