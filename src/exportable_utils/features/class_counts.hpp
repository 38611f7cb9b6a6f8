// The classes of a column as a dictionary of its elements counts them.
#pragma once

#include <optional>
#include <vector>

#include "exportable_utils/distinct/distinct_values.hpp"
#include "exportable_utils/references/references.hpp"

namespace quorin::features {

// In the order of first occurrence, without the elements that the list `left_out` contains. A null is contained only as
// the very object that it is, so that none read from an array of numbers is; and each NaN read from such an array is an
// object and a class of its own. Nothing where an element is of no known kind.
std::optional<std::vector<distinct::DistinctRow>> classes_of(const ArrayColumn& column,
                                                             const references::References& left_out);

// The elements themselves: the objects, or the array's scalars. Each takes one of the rows of `classes`.
std::vector<Ref> elements_of(const ArrayColumn& column, const std::vector<distinct::DistinctRow>& classes);

}  // namespace quorin::features
