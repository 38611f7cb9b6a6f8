#include "exportable_utils/classify/least_texts.hpp"

#include "core/gather/least_distinct.hpp"
#include "exportable_utils/distinct/distinct_values.hpp"

namespace quorin::classify {

std::optional<Ref> least_texts(const ArrayColumn& column, const references::References& markers, std::size_t most) {
    std::vector<core::KeyedText> least;
    bool nulls = false;
    const bool texts = column.storage == Storage::objects
                           ? core::least_distinct(ObjectCells(column), markers.texts, most, least, nulls)
                       : column.storage == Storage::fixed_text
                           ? core::least_distinct(ArrayTextCells(column), markers.texts, most, least, nulls)
                           : false;
    // Nulls that no marker takes away are distinct values, too.
    if (!texts || (nulls && markers.null_bits == 0 && !markers.none())) return std::nullopt;
    distinct::TakenElements taken;
    for (const core::KeyedText& entry : least) taken.add(column, entry.row);
    const std::optional<ColumnSource> source = ColumnSource::single(reinterpret_cast<PyObject*>(column.array));
    return taken.array(*source);
}

}  // namespace quorin::classify
