// What is left of a column once markers are taken out.
#pragma once

#include "columns/markers.hpp"

namespace quorin::columns {

// The array that numpy.asarray() makes of the elements that the list of markers does not contain, where these are all
// integers that it can hold or all floats. Nothing otherwise, and where an element is of no known kind.
Ref numbers_without(const Column& column, const Markers& markers);

}  // namespace quorin::columns
