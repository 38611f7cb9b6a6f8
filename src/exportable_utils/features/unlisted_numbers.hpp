// The elements of a column that are not in a list.
#pragma once

#include "exportable_utils/references/references.hpp"

namespace quorin::features {

// numpy.asarray([element for element in column if element not in references]), for a column of objects in which the
// unlisted elements are all ints of at most 64 bits or all floats. Returns an empty Ref for any other column, and if no
// element is left: numpy then makes an array of its default dtype. Foreign code may run.
Ref numbers_without(const ColumnSource& column, const references::References& references);

}  // namespace quorin::features
