// Which rows of a column equal which reference values.
#pragma once

#include <optional>
#include <vector>

#include "exportable_utils/references/references.hpp"

namespace quorin::references {

enum class Match {
    all,
    first_only,    // only the first reference of the list that occurs
    without_nulls  // all that are not null
};

// The rows that equal any of the references.
struct Members {
    Ref mask;                // of bool, shape (n,)
    ReferenceBits bits = 0;  // of the references that occur
    std::size_t marked = 0;  // rows that the mask marks
};
// Allocates the mask, then borrows the column block by block. Foreign code may run: nothing may be borrowed by the
// caller. Nothing if an element is of no known type, or if the column changes meanwhile.
std::optional<Members> find_members(const ColumnSource& column, const References& references, Match match = Match::all);

// The rows that are null.
std::optional<Members> find_nulls(const ColumnSource& column);

// The mask of find_members(), or an empty Ref.
Ref membership_mask(const ColumnSource& column, const References& references, Match match = Match::all);

// The rows of each reference that occurs, and of all of them together.
struct MatchedRows {
    Ref mask;                // if only one reference occurs, the mask of that reference itself
    std::vector<Ref> masks;  // one for each reference that occurs, in the order of the list
    ReferenceBits bits = 0;  // of the references that occur
};
// As find_members(): foreign code may run.
std::optional<MatchedRows> matched_rows(const ColumnSource& column, const References& references);

// The bit of the first of these references.
constexpr ReferenceBits first_bit(ReferenceBits bits) noexcept {
    return bits & (~bits + 1U);
}

}  // namespace quorin::references
