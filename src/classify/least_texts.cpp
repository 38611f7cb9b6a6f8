#include "classify/least_texts.hpp"

#include "columns/distinct.hpp"
#include "kernels/least_distinct.hpp"

namespace quorin::classify {

using columns::Column;
using columns::Distinct;
using columns::Storage;

std::optional<Ref> least_texts(const Column& column, const columns::Markers& markers, std::size_t most) {
    std::vector<kernels::KeyedText> least;
    bool nulls = false;
    const bool texts = column.storage == Storage::objects
                           ? kernels::least_distinct(columns::ObjectCells(column), markers.texts, most, least, nulls)
                       : column.storage == Storage::fixed_text
                           ? kernels::least_distinct(columns::FixedTextCells(column), markers.texts, most, least, nulls)
                           : false;
    // Nulls that no marker takes away are distinct values, too.
    if (!texts || (nulls && markers.null_bits == 0 && !markers.none())) return std::nullopt;
    std::vector<Distinct> listed;
    listed.reserve(least.size());
    for (const kernels::KeyedText& entry : least) listed.push_back({entry.row, 1});
    return columns::values_of(column, listed);
}

}  // namespace quorin::classify
