// Which rows of a column equal which reference values.
#pragma once

#include <optional>
#include <vector>

#include "exportable_utils/references/references.hpp"

namespace quorin::references {

// The rows that equal any of the values.
struct Members {
    Ref mask;                // of shape (n,)
    std::uint32_t bits = 0;  // of the values that occur
    std::size_t marked = 0;  // rows that the mask marks
};
// Nothing where an element is of no known kind. With `first_only` the first value of the list that occurs stands for
// all of them.
std::optional<Members> find_members(const ArrayColumn& column, const References& values, bool first_only = false);

// Writes 1 for each row that equals a value into `out`, which is a byte for each row and 0 before. Allocates no array,
// so the column may stay borrowed. Returns how many rows that are.
std::optional<std::size_t> mark_members(const ArrayColumn& column, const References& values, std::uint8_t* out);

// Their mask.
std::optional<Ref> membership_mask(const ArrayColumn& column, const References& values);

// The rows of each value by itself, and of all of them together.
struct MarkedRows {
    Ref mask;                // where only one value occurs, the mask of that value itself
    std::vector<Ref> masks;  // one for each value that occurs, in the order of the list
    std::uint32_t bits = 0;  // of the values that occur
};
std::optional<MarkedRows> marked_rows(const ArrayColumn& column, const References& values);

// The bit of the first of these values.
constexpr std::uint32_t lowest(std::uint32_t bits) noexcept {
    return bits & (~bits + 1U);
}

}  // namespace quorin::references
