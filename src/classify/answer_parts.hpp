// The answer for each way in which a column can lie in memory.
#pragma once

#include <optional>

#include "classify/answer.hpp"

namespace quorin::classify {

using columns::Column;
using columns::Markers;
using columns::Storage;

// For a column without values. Only rows that are missing make it "missing".
Answer no_values(const Markers& markers, std::uint32_t bits, bool nulls);

// Objects of which the first that is no marker is a text.
std::optional<Answer> answer_object_texts(const Column& column, const Markers& markers);
std::optional<Answer> answer_fixed_texts(const Column& column, const Markers& markers);
// Objects that are numbers, nulls or markers.
std::optional<Answer> answer_objects(const Column& column, const Markers& markers);
// Arrays of numbers.
std::optional<Answer> answer_floats(const Column& column, const Markers& markers);
std::optional<Answer> answer_integers(const Column& column, const Markers& markers);

}  // namespace quorin::classify
