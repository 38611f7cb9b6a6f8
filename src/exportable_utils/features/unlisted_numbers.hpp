// The elements of a column that a list does not hold.
#pragma once

#include "exportable_utils/references/references.hpp"

namespace quorin::features {

// numpy.asarray([element for element in column if element not in references]), for a column of objects of which these
// are all ints of 64 bits or all floats. Empty for any other column, and if no element is left, since numpy then makes
// an array of its default dtype. Foreign code may run.
Ref numbers_without(const ColumnSource& column, const references::References& references);

}  // namespace quorin::features
