// The classes of a column: its distinct elements and their counts, as in a collections.Counter.
#pragma once

#include <optional>
#include <vector>

#include "exportable_utils/distinct/distinct_values.hpp"
#include "exportable_utils/references/references.hpp"

namespace quorin::features {

struct Classes {
    std::vector<distinct::DistinctRow> rows;
    std::vector<Ref> objects;  // the elements, for a column of objects
};

// The classes in the order of first occurrence, without the elements that are in the list `excluded`. A null is in the
// list only if it is the identical object, which is never true for an array of numbers; each NaN of such an array is a
// class of its own. Returns nullopt if the type of an element is not known. Foreign code may run.
std::optional<Classes> classes_of(const ColumnSource& column, const references::References& excluded);

// The elements of the classes, as indexing the array returns them. Takes over `classes.objects`. Returns nullopt if the
// column has changed. Foreign code may run.
std::optional<std::vector<Ref>> elements_of(const ColumnSource& column, Classes& classes);

}  // namespace quorin::features
