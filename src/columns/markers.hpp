// A list of missing-value markers, read for native routes.
#pragma once

#include <optional>
#include <vector>

#include "columns/column.hpp"

namespace quorin::columns {

struct Markers {
    // One marker of the list, in its order.
    struct Entry {
        PyObject* object;
        bool null;
        std::uint32_t bit;  // of a text; 0 for a null and for a number
    };
    std::vector<Entry> entries;
    kernels::MarkerSet texts;
    bool null = false;
    bool number = false;
    [[nodiscard]] bool none() const noexcept { return entries.empty(); }
};

// Nothing for any list but None and an exact list of texts, nulls and plain numbers.
std::optional<Markers> plain_markers(Object list);

// The markers that occur, as a list.
Ref markers_found(const Markers& markers, std::uint32_t bits, bool nulls);

}  // namespace quorin::columns
