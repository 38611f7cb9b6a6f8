#include "columns/missing_rows.hpp"

#include "columns/membership.hpp"
#include "kernels/number_runs.hpp"

namespace quorin::columns {

namespace {

bool holds_only_nulls(const Column& column, const Markers& markers) noexcept {
    return (column.storage == Storage::float64 || column.storage == Storage::float32) && markers.numbers.empty();
}

}  // namespace

std::optional<MissingRows> missing_rows(const Column& column, const Markers& markers, bool first_only) {
    Markers wanted = markers;
    // Where only nulls can be missing all null markers of the list mark the same rows.
    if (holds_only_nulls(column, markers)) wanted.null_bits = lowest(markers.null_bits);
    std::optional<MarkedRows> found = marked_rows(column, wanted);
    if (!found) return std::nullopt;
    MissingRows missing{std::move(found->mask), found->bits};
    if (found->bits == 0) return missing;
    if (first_only) {
        missing.mask = std::move(found->masks.front());
        missing.bits = lowest(found->bits);
    } else if (found->bits == wanted.null_bits) {
        missing.bits = markers.null_bits;
    }
    missing.marked = kernels::count_marked(PyArray_BYTES(as_array(missing.mask)), column.rows);
    return missing;
}

}  // namespace quorin::columns
