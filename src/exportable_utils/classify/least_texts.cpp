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
    std::vector<distinct::DistinctRow> listed;
    listed.reserve(least.size());
    for (const core::KeyedText& entry : least) listed.push_back({entry.row, 1});
    return distinct::values_of(column, listed);
}

}  // namespace quorin::classify
