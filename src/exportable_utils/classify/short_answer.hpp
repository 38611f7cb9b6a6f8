// The classifier's result for a column from facts about its rows: without distinct values, sorting or calls.
#pragma once

#include "exportable_utils/classify/native_arguments.hpp"

namespace quorin::classify {

// The pair of the markers that occur and the kind. Returns an empty Ref if the facts that are gathered do not decide.
// With `first_only` only the first reference that occurs is a marker.
Ref short_answer(NativeArguments& arguments, bool first_only);

// The first `most` distinct texts that are not references, in an array of the column's dtype. Returns an empty Ref for
// a column of anything but texts, references and nulls.
Ref least_texts(const NativeArguments& arguments, std::size_t most);

}  // namespace quorin::classify
