#include "exportable_utils/classify/short_answer.hpp"

#include "exportable_utils/classify/short_answer_parts.hpp"
#include "python/inputs/object_number.hpp"

namespace quorin::classify {

namespace {

// The first element that is neither null nor a marker tells whether the column is tried as texts or as numbers.
bool starts_with_text(const ArrayColumn& column, const References& markers) noexcept {
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        core::TextView text{};
        const core::Cell cell = cells.read(row, text);
        if (cell == core::Cell::text && markers.texts.find(text) == 0) return true;
        if (cell != core::Cell::other) continue;
        PyObject* value = column.object(row);
        if (value == nullptr || markers.numbers.empty()) return false;
        if (markers.bits_of_object(object_number_of(value)).value_or(0) == 0) return false;
    }
    return false;
}

}  // namespace

Answer no_values(const References& markers, core::ReferenceBits bits, bool nulls) {
    const core::ReferenceBits found = bits | (nulls ? markers.null_bits : 0);
    return {list_of_references(markers, found), found != 0 ? Kind::missing : Kind::unknown};
}

std::optional<Answer> answer_for(const ArrayColumn& column, const References& markers) {
    switch (column.storage) {
        case Storage::objects:
            return starts_with_text(column, markers) ? answer_object_texts(column, markers)
                                                     : answer_objects(column, markers);
        case Storage::fixed_text:
            return answer_fixed_texts(column, markers);
        case Storage::float64:
        case Storage::float32:
            return answer_floats(column, markers);
        case Storage::integer:
        case Storage::boolean:
            return answer_integers(column, markers);
    }
    return std::nullopt;
}

}  // namespace quorin::classify
