#include "columns/missing_rows.hpp"

#include "columns/membership.hpp"
#include "kernels/number_runs.hpp"

namespace quorin::columns {

namespace {

char* bytes_of(Object mask) noexcept {
    return PyArray_BYTES(as_array(mask));
}

std::uint32_t lowest(std::uint32_t bits) noexcept {
    return bits & (~bits + 1U);
}

// Only nulls can be missing: all null markers of the list mark the same rows.
MissingRows null_rows(const Column& column, std::uint32_t null_bits) {
    MissingRows missing{empty_mask(column.rows)};
    if (null_bits == 0) return missing;
    const auto mark = column.storage == Storage::float64 ? kernels::mark_nulls<double> : kernels::mark_nulls<float>;
    missing.marked = mark(column.data, column.stride, column.rows, bytes_of(missing.mask));
    if (missing.marked != 0) missing.bits = null_bits;
    return missing;
}

}  // namespace

std::optional<MissingRows> missing_rows(const Column& column, const Markers& markers, bool first_only) {
    const bool floats = column.storage == Storage::float64 || column.storage == Storage::float32;
    if (floats && markers.numbers.empty()) {
        return null_rows(column, first_only ? lowest(markers.null_bits) : markers.null_bits);
    }
    const auto masks = masks_by_value(column, markers);
    if (!masks) return std::nullopt;
    MissingRows missing;
    for (const auto& [bit, mask] : *masks) {
        missing.mask = missing.mask ? merged_masks(missing.mask, mask) : Ref::share(mask);
        missing.bits |= bit;
        if (first_only) break;
    }
    if (missing.bits == 0) {
        missing.mask = empty_mask(column.rows);
    } else {
        missing.marked = kernels::count_marked(bytes_of(missing.mask), column.rows);
    }
    return missing;
}

}  // namespace quorin::columns
