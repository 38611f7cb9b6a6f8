// Gathers the facts of columns of texts, nulls and references.
#include <algorithm>
#include <cmath>
#include <vector>

#include "core/gather/text_facts.hpp"
#include "exportable_utils/classify/short_facts.hpp"
#include "python/inputs/object_number.hpp"
#include "python/new_text.hpp"

namespace quorin::classify {

namespace {

using core::Ordered;
using core::RowRange;
using core::TextFacts;

// The short answer gives up if a column has more distinct plain texts below its end marker.
constexpr std::size_t most_plain_below = 256;

// Cells of a column of objects in which references may be numbers. Such references read as nulls and are recorded.
class CellsBesideNumbers {
  public:
    struct Found {
        bool nulls = false;
        ReferenceBits numbers = 0;
    };
    CellsBesideNumbers(const ArrayColumn& column, const References& references, Found& found)
        : column_(column), cells_(column), references_(&references), found_(&found) {}
    [[nodiscard]] std::size_t size() const noexcept { return cells_.size(); }
    void prefetch(std::size_t row) const noexcept { cells_.prefetch(row); }
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t length) const noexcept {
        return cells_.longer_than(row, length);
    }
    [[nodiscard]] bool glance(std::size_t row, core::ShortText& text) const noexcept {
        return cells_.glance(row, text);
    }
    core::Cell read(std::size_t row, core::TextView& text) const noexcept {
        const core::Cell cell = cells_.read(row, text);
        if (cell == core::Cell::null) found_->nulls = true;
        if (cell != core::Cell::other) return cell;
        PyObject* value = column_.object(row);
        if (value == nullptr) return cell;
        const ObjectNumber number = object_number_of(value);
        if (number.type == NumberType::none || number.scalar) return cell;
        const ReferenceBits bits = references_->bits_of_object(number).value_or(0);
        found_->numbers |= bits;
        return bits != 0 ? core::Cell::null : cell;
    }

  private:
    ArrayColumn column_;
    ObjectCells cells_;
    const References* references_;
    Found* found_;
};

// Whether the object is a number that certainly equals no reference.
bool is_other_number(PyObject* value, const References& references) {
    if (value == nullptr) return false;
    const ObjectNumber number = object_number_of(value);
    if (number.type == NumberType::none || number.scalar || std::isnan(number.real)) return false;
    return references.numbers.empty() || references.bits_of_object(number) == ReferenceBits{0};
}

// Walks over a column that is borrowed for each block of rows. Texts that are kept between two blocks are read again,
// by their rows. All functions return false to give up.
template <class MakeCells>
class TextColumn {
  public:
    TextColumn(NativeArguments& arguments, MakeCells make_cells) : arguments_(arguments), make_cells_(make_cells) {}

    bool gather(TextFacts& facts) const;
    bool find_least_number(Ordered& least_number) const;
    bool find_end_marker(Ordered& least_number, Ordered& end_marker) const;
    bool gather_below(Ordered& end_marker, TextFacts& below, std::vector<Ordered>& plain) const;
    // Makes the markers that are not references.
    bool discover(std::vector<Ordered>& plain, Ordered& least_number, Ordered& end_marker, ShortFacts& facts) const;

  private:
    template <class Use>
    bool in_ranges(Use use) const {
        return source().in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
            return use(make_cells_(column), RowRange{first, last});
        });
    }
    [[nodiscard]] const ColumnSource& source() const noexcept { return *arguments_.column; }
    [[nodiscard]] const core::ReferenceTexts& texts() const noexcept { return arguments_.references->texts; }

    NativeArguments& arguments_;
    MakeCells make_cells_;
};

// Not with in_blocks(), because the gatherer may return to an earlier row.
template <class MakeCells>
bool TextColumn<MakeCells>::gather(TextFacts& facts) const {
    const std::size_t rows = source().rows();
    core::TextGatherer gatherer(texts(), character_tables);
    std::optional<SignalTimer> timer;
    if (rows > rows_between_signals) timer.emplace();
    for (std::size_t row = 0; row < rows;) {
        if (timer) timer->poll();
        const std::optional<ArrayColumn> column = source().borrow();
        if (!column) return false;
        const auto cells = make_cells_(*column);
        if (row != 0 && !gatherer.refresh(cells)) return false;
        row = gatherer.gather(cells, row, std::min(rows, row + rows_between_signals));
        if (!gatherer.gave_up()) continue;
        arguments_.mixed =
            column->storage == Storage::objects && is_other_number(column->object(row), *arguments_.references);
        return false;
    }
    facts = gatherer.finish();
    return true;
}

template <class MakeCells>
bool TextColumn<MakeCells>::find_least_number(Ordered& least_number) const {
    return in_ranges([&](const auto& cells, RowRange rows) {
        if (!core::refresh(cells, least_number)) return false;
        core::find_least_number(rows, cells, texts(), character_tables, least_number);
        return true;
    });
}

template <class MakeCells>
bool TextColumn<MakeCells>::find_end_marker(Ordered& least_number, Ordered& end_marker) const {
    if (!find_least_number(least_number)) return false;
    if (!least_number.found) return true;
    return in_ranges([&](const auto& cells, RowRange rows) {
        if (!core::refresh(cells, least_number) || !core::refresh(cells, end_marker)) return false;
        core::find_lone_above(rows, cells, texts(), character_tables, least_number, end_marker);
        return true;
    });
}

template <class MakeCells>
bool TextColumn<MakeCells>::gather_below(Ordered& end_marker, TextFacts& below, std::vector<Ordered>& plain) const {
    return in_ranges([&](const auto& cells, RowRange rows) {
        if (!core::refresh(cells, end_marker) || end_marker.text.size == 0) return false;
        if (!core::refresh(cells, plain)) return false;
        return core::gather_below(rows, cells, texts(), character_tables, end_marker.text, most_plain_below, below,
                                  plain) != core::Walk::gave_up;
    });
}

template <class MakeCells>
bool TextColumn<MakeCells>::discover(std::vector<Ordered>& plain, Ordered& least_number, Ordered& end_marker,
                                     ShortFacts& facts) const {
    const std::optional<ArrayColumn> column = source().borrow();
    if (!column) return false;
    const auto cells = make_cells_(*column);
    const bool texts_left = core::refresh(cells, plain) && core::refresh(cells, least_number);
    if (!texts_left || !core::refresh(cells, end_marker)) return false;
    // The result of the scan has a text of a fixed-width array as a str if it is below the least number text, and as a
    // numpy.str_ otherwise.
    const auto owned = [&](const Ordered& text, bool element) -> ShortFacts::Discovered {
        if (column->storage == Storage::objects) return {Ref::share(column->object(text.row)), false};
        return {new_text(text.text), element};
    };
    for (const Ordered& text : plain) {
        const bool above = least_number.found && core::compare(text.text, least_number.text) > 0;
        facts.texts.push_back(owned(text, above));
    }
    if (end_marker.found) facts.end_marker = owned(end_marker, true);
    return true;
}

void add_kinds(const TextFacts& texts, core::KindSet& kinds) {
    if (texts.plain) kinds.add(Kind::char_str);
    if (texts.integers) kinds.add(Kind::int_str);
    if (texts.reals) kinds.add(Kind::float_str);
}

// Adds the facts of the texts that count. Requires that the references and nulls are known.
template <class MakeCells>
bool add_texts(const TextColumn<MakeCells>& column, bool fixed_width, const TextFacts& all, ShortFacts& facts) {
    Ordered least_number;
    Ordered end_marker;
    if (all.lone && all.lone_may_be_above && !column.find_end_marker(least_number, end_marker)) return false;
    TextFacts counted = all;
    std::vector<Ordered> plain;
    if (end_marker.found) {
        counted = {};
        if (!column.gather_below(end_marker, counted, plain)) return false;
        counted.plain = !plain.empty();
    } else if (all.plain && !all.second_plain) {
        plain.push_back({true, all.first_plain, {}});
    }
    add_kinds(counted, facts.verdict.kinds);
    facts.verdict.one_text = plain.size() == 1;
    facts.verdict.end_marker = end_marker.found;
    const bool texts_are_markers = decide(facts.verdict, core::Rule::by_counts).texts_are_markers;
    if (!texts_are_markers) plain.clear();
    if (plain.empty() && !end_marker.found) return true;
    // If a lone text occurs, least_number is known, or that lone text is the only plain text and below all number
    // texts.
    if (fixed_width && !all.lone && !column.find_least_number(least_number)) return false;
    return column.discover(plain, least_number, end_marker, facts);
}

template <class MakeCells>
bool gather_texts(NativeArguments& arguments, MakeCells make_cells, const CellsBesideNumbers::Found* beside,
                  ShortFacts& facts) {
    const References& references = *arguments.references;
    const TextColumn column(arguments, make_cells);
    TextFacts all;
    if (!column.gather(all)) return false;
    facts.references = references.bits_of_texts(all.references);
    if (beside != nullptr) {
        all.nulls = beside->nulls;
        facts.references |= beside->numbers;
    }
    if (all.nulls) {
        // Nulls that are not missing cannot be sorted together with texts.
        if (references.null_bits == 0 && !references.none()) return false;
        facts.references |= references.null_bits;
    }
    return add_texts(column, arguments.column->storage() == Storage::fixed_text, all, facts);
}

}  // namespace

bool gather_object_texts(NativeArguments& arguments, ShortFacts& facts) {
    if (arguments.references->numbers.empty()) {
        return gather_texts(arguments, [](const ArrayColumn& column) { return ObjectCells(column); }, nullptr, facts);
    }
    CellsBesideNumbers::Found found;
    const auto make_cells = [&](const ArrayColumn& column) {
        return CellsBesideNumbers(column, *arguments.references, found);
    };
    return gather_texts(arguments, make_cells, &found, facts);
}

bool gather_fixed_texts(NativeArguments& arguments, ShortFacts& facts) {
    return gather_texts(arguments, [](const ArrayColumn& column) { return ArrayTextCells(column); }, nullptr, facts);
}

}  // namespace quorin::classify
