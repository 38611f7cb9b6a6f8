// The classes of a column as a dictionary of its elements counts them.
#pragma once

#include <optional>
#include <vector>

#include "columns/distinct.hpp"
#include "columns/markers.hpp"

namespace quorin::columns {

// In the order of first occurrence, without the elements that the list `left_out` contains. A null is contained only as
// the very object that it is, so that none read from an array of numbers is; and each NaN read from such an array is an
// object and a class of its own. Nothing where an element is of no known kind.
std::optional<std::vector<Distinct>> classes_of(const Column& column, const Markers& left_out);

// The elements themselves: the objects, or the array's scalars. Each takes one of the rows of `classes`.
std::vector<Ref> elements_of(const Column& column, const std::vector<Distinct>& classes);

}  // namespace quorin::columns
