// What is left of a column once markers are taken out.
#pragma once

#include "columns/markers.hpp"

namespace quorin::columns {

// The array that numpy.asarray() makes of the elements that the list of markers does not contain, where these all
// integers that it can hold or all floats. Empty otherwise, and where an element is of no known kind.
Ref numbers_without(const Column& column, const Markers& markers);

// X[~mask] for a column of numbers: the rows that are not marked, in an array of their own.
Ref rows_without(const Column& column, const std::uint8_t* mask);

}  // namespace quorin::columns
