// The classifier's short answer for a column, drawn from facts of its rows: no distinct values, no sort, no call of the
// interpreter.
#pragma once

#include <optional>

#include "classify/kinds.hpp"
#include "columns/markers.hpp"

namespace quorin::classify {

struct Answer {
    Ref misslist;  // the markers that occur, discovered ones last
    Kind kind;
};

// Nothing where the facts that are known here do not settle the answer.
std::optional<Answer> answer_for(const columns::Column& column, const columns::Markers& markers);

}  // namespace quorin::classify
