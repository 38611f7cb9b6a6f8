#include "exportable_utils/classify/short_answer.hpp"

#include <bit>
#include <utility>

#include "core/gather/least_distinct.hpp"
#include "exportable_utils/classify/kind_counts.hpp"
#include "exportable_utils/classify/short_facts.hpp"
#include "exportable_utils/distinct/distinct_values.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

// The class of an element: `unknown` for a null or a reference. The first other class decides which kind of column it
// is; if there is none, the column counts as numbers.
enum class First { text, other, unknown };

First class_of(const ObjectCells& cells, const ArrayColumn& column, std::size_t row, const References& references) {
    core::TextView text{};
    switch (cells.read(row, text)) {
        case core::Cell::text:
            return references.texts.find(text) == 0 ? First::text : First::unknown;
        case core::Cell::null:
            return First::unknown;
        case core::Cell::other:
            break;
    }
    PyObject* value = column.object(row);
    if (value == nullptr || references.numbers.empty()) return First::other;
    const ReferenceBits bits = references.bits_of_object(object_number_of(value)).value_or(0);
    return bits == 0 ? First::other : First::unknown;
}

bool starts_with_text(const NativeArguments& arguments) {
    First first = First::unknown;
    arguments.column->in_blocks([&](const ArrayColumn& column, std::size_t row, std::size_t last) {
        const ObjectCells cells(column);
        for (; row < last && first == First::unknown; ++row) {
            first = class_of(cells, column, row, *arguments.references);
        }
        return first == First::unknown;
    });
    return first == First::text;
}

bool gather(NativeArguments& arguments, ShortFacts& facts) {
    switch (arguments.column->storage()) {
        case Storage::objects:
            return starts_with_text(arguments) ? gather_object_texts(arguments, facts)
                                               : gather_number_objects(arguments, facts);
        case Storage::fixed_text:
            return gather_fixed_texts(arguments, facts);
        case Storage::float64:
        case Storage::float32:
            return gather_floats(arguments, facts);
        case Storage::integer:
        case Storage::boolean:
            return gather_integers(arguments, facts);
    }
    return false;
}

Ref marker_of(ShortFacts::Discovered& found) {
    return found.scalar ? text_scalar(found.text) : std::move(found.text);
}

}  // namespace

Ref short_answer(NativeArguments& arguments, bool first_only) {
    ShortFacts facts;
    if (!arguments.known() || !gather(arguments, facts)) return {};
    // With first_only the rows of all references but one are not missing: gives up.
    if (first_only && std::popcount(facts.references) > 1) return {};
    facts.verdict.missing_rows = facts.references != 0;
    const core::Verdict verdict = decide(facts.verdict, core::Rule::by_counts);
    std::vector<Ref> markers = references::held(*arguments.references, facts.references);
    for (ShortFacts::Discovered& found : facts.texts) markers.push_back(marker_of(found));
    if (facts.end_marker.text) markers.push_back(marker_of(facts.end_marker));
    const Ref misslist = list_holding(markers);
    return tuple({misslist, name_of(verdict.kind)});
}

Ref least_texts(const NativeArguments& arguments, std::size_t most) {
    const ColumnSource& source = *arguments.column;
    const core::ReferenceTexts& texts = arguments.references->texts;
    if (source.storage() != Storage::objects && source.storage() != Storage::fixed_text) return {};
    core::LeastDistinct gatherer(most);
    const auto gather_range = [&](const auto& cells, core::RowRange rows) {
        if (rows.first != 0 && !gatherer.refresh(cells)) return false;
        return gatherer.gather(rows, cells, texts) != core::Walk::gave_up;
    };
    const bool gathered = source.in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        return column.storage == Storage::objects ? gather_range(ObjectCells(column), {first, last})
                                                  : gather_range(ArrayTextCells(column), {first, last});
    });
    if (!gathered) return {};
    // Nulls that are not missing are distinct values: gives up.
    if (gatherer.nulls() && arguments.references->null_bits == 0 && !arguments.references->none()) return {};
    distinct::TakenElements taken;
    if (const std::optional<ArrayColumn> column = source.borrow()) {
        for (const core::KeyedText& entry : std::move(gatherer).finish()) taken.add(*column, entry.row);
    } else {
        return {};
    }
    return taken.array(source);
}

}  // namespace quorin::classify
