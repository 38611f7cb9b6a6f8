// The answer for each way in which a column can lie in memory.
#pragma once

#include <optional>

#include "exportable_utils/classify/short_answer.hpp"

namespace quorin::classify {

using references::References;

// For a column without values. Only rows that are missing make it "missing".
Answer no_values(const References& markers, core::ReferenceBits bits, bool nulls);

// Objects of which the first that is no marker is a text.
std::optional<Answer> answer_object_texts(const ArrayColumn& column, const References& markers);
std::optional<Answer> answer_fixed_texts(const ArrayColumn& column, const References& markers);
// Objects that are numbers, nulls or markers.
std::optional<Answer> answer_objects(const ArrayColumn& column, const References& markers);
// Arrays of numbers.
std::optional<Answer> answer_floats(const ArrayColumn& column, const References& markers);
std::optional<Answer> answer_integers(const ArrayColumn& column, const References& markers);

}  // namespace quorin::classify
