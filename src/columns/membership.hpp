// Which rows of a column equal which reference values.
#pragma once

#include <optional>
#include <vector>

#include "columns/markers.hpp"

namespace quorin::columns {

// The mask of the rows that equal any of the values, shape (n,); nothing where an element is of no known kind.
std::optional<Ref> membership_mask(const Column& column, const Markers& values);

// The rows of each value by itself, and of all of them together.
struct MarkedRows {
    Ref mask;                // where only one value occurs, the mask of that value itself
    std::vector<Ref> masks;  // one for each value that occurs, in the order of the list
    std::uint32_t bits = 0;  // of the values that occur
};
std::optional<MarkedRows> marked_rows(const Column& column, const Markers& values);

// The bit of the first of these values.
constexpr std::uint32_t lowest(std::uint32_t bits) noexcept {
    return bits & (~bits + 1U);
}

}  // namespace quorin::columns
