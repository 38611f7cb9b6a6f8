// The least distinct texts of a column, as a sample for tests that look at a few of them.
#pragma once

#include <optional>

#include "exportable_utils/references/references.hpp"

namespace quorin::classify {

// The first `most` elements of the distinct texts that are no markers, in an array of the column's dtype; nothing for a
// column of anything but texts and missing nulls.
std::optional<Ref> least_texts(const ArrayColumn& column, const references::References& markers, std::size_t most);

}  // namespace quorin::classify
