// The result of numpy_whatis from facts about the rows of a column, without distinct values, sorting or calls.
#pragma once

#include "exportable_utils/classify/native_arguments.hpp"

namespace quorin::classify {

// The pair (markers that occur, kind). With `first_only` only the first reference that occurs is a marker. Returns an
// empty Ref to give up, if the facts do not determine the result.
Ref short_answer(NativeArguments& arguments, bool first_only);

// The `most` smallest distinct texts that are not references, in an array of the column's dtype. Returns an empty Ref
// to give up, for example if the column does not consist of texts, references and nulls.
Ref least_texts(const NativeArguments& arguments, std::size_t most);

}  // namespace quorin::classify
