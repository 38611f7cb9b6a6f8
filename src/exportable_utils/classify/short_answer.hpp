// The classifier's short answer for a column, drawn from facts of its rows: no distinct values, no sort, no call of the
// interpreter.
#pragma once

#include <optional>

#include "exportable_utils/classify/kinds.hpp"
#include "exportable_utils/references/references.hpp"

namespace quorin::classify {

struct Answer {
    Ref misslist;  // the markers that occur, discovered ones last
    Kind kind;
};

// Nothing where the facts that are known here do not settle the answer.
std::optional<Answer> answer_for(const ArrayColumn& column, const references::References& markers);

}  // namespace quorin::classify
