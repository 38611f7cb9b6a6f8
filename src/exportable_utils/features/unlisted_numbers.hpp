// What is left of a column once markers are taken out.
#pragma once

#include "exportable_utils/references/references.hpp"

namespace quorin::features {

// The array that numpy.asarray() makes of the elements that the list of markers does not contain, where these are all
// integers that it can hold or all floats. Nothing otherwise, and where an element is of no known kind.
Ref numbers_without(const ArrayColumn& column, const references::References& markers);

}  // namespace quorin::features
