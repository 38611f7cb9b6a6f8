// Finds the rows of a column that equal reference values.
#pragma once

#include <optional>
#include <vector>

#include "exportable_utils/references/references.hpp"

namespace quorin::references {

enum class Match {
    all,
    first_only,    // only the first reference of the list that occurs
    without_nulls  // all references that are not null
};

// The rows that equal any of the references.
struct Members {
    Ref mask;                // array of bool, shape (n,)
    ReferenceBits bits = 0;  // the references that occur
    std::size_t marked = 0;  // number of true elements of the mask
};
// Allocates the mask, then borrows the column block by block. Foreign code may run: the caller must not hold a borrow.
// Returns nullopt if the type of an element is not known, or if the column changes.
std::optional<Members> find_members(const ColumnSource& column, const References& references, Match match = Match::all);

std::optional<Members> find_nulls(const ColumnSource& column);

// The mask of find_members(). Returns an empty Ref to give up.
Ref membership_mask(const ColumnSource& column, const References& references, Match match = Match::all);

// The rows of each reference that occurs, and of all of them together.
struct MatchedRows {
    Ref mask;                // the union of `masks`; the identical object if there is only one
    std::vector<Ref> masks;  // one for each reference that occurs, in the order of the list
    ReferenceBits bits = 0;  // the references that occur
};
// Foreign code may run, and nullopt is returned, as in find_members().
std::optional<MatchedRows> matched_rows(const ColumnSource& column, const References& references);

// The lowest bit that is set: the first of these references in the list.
constexpr ReferenceBits first_bit(ReferenceBits bits) noexcept {
    return bits & (~bits + 1U);
}

}  // namespace quorin::references
