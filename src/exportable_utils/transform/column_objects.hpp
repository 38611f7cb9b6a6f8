// The cells of a column as Python objects.
#pragma once

#include <cstddef>

#include "python/inputs/array_column.hpp"

namespace quorin::transform {

// The rows in whose place a filling value is wanted; none without a mask.
struct Replaced {
    const char* mask = nullptr;  // a byte for each row
    std::ptrdiff_t stride = 1;
    bool inverted = false;  // the rows where the byte is zero
    Object filling;

    [[nodiscard]] bool at(std::size_t row) const noexcept {
        return mask != nullptr && (mask[static_cast<std::ptrdiff_t>(row) * stride] != 0) != inverted;
    }
};

// Writes an object for each row, as numpy's astype(object) makes them, into places that hold nothing yet: `out` is the
// first, the next one lies `stride` bytes behind it. Throws where an object cannot be made.
void write_objects(const ArrayColumn& column, const Replaced& replaced, char* out, std::ptrdiff_t stride);

}  // namespace quorin::transform
