// Columns of texts, and of texts beside nulls and markers.
#include <utility>
#include <vector>

#include "exportable_utils/classify/short_answer_parts.hpp"
#include "python/inputs/object_number.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

using core::Ordered;
using core::TextFacts;
using core::Walk;

// Distinct plain texts below the marker that ends the scan; a column with more of them goes the long way.
constexpr std::size_t most_plain_below = 256;

Kind number_kind(const TextFacts& facts) {
    return facts.reals ? Kind::float_str : Kind::int_str;
}

// The markers that occur, those of the caller's list before those that the column gave away. All are held, and none but
// plain texts are made, before a list or a tuple is.
class Misslist {
  public:
    Misslist(const ArrayColumn& column, std::vector<Ref> held) : column_(column), held_(std::move(held)) {}
    // Those below the least number text were listed at once, the others were met one by one. Where the least number was
    // not looked for, the plain text is a lone one that is not above it.
    void add(const Ordered& text, const Ordered& least_number) {
        const bool below = !least_number.found || core::compare(text.text, least_number.text) < 0;
        below ? add_listed(text) : add_scanned(text);
    }
    // One that the classifier meets as it stands in the array, which of fixed-width text is a scalar.
    void add_scanned(const Ordered& text) {
        if (column_.storage == Storage::fixed_text) scalars_.push_back(held_.size());
        add_listed(text);
    }
    Ref list() && {
        for (const std::size_t i : scalars_) held_[i] = text_scalar(held_[i]);
        return list_holding(held_);
    }

  private:
    void add_listed(const Ordered& text) {
        held_.push_back(column_.storage == Storage::objects ? Ref::share(column_.object(text.row))
                                                            : new_text(text.text));
    }

    ArrayColumn column_;
    std::vector<Ref> held_;
    std::vector<std::size_t> scalars_;
};

// Objects among which numbers may stand that are markers: these are passed over as nulls are, and remembered.
class CellsBesideNumbers {
  public:
    CellsBesideNumbers(const ArrayColumn& column, const References& markers)
        : column_(column), cells_(column), markers_(&markers) {}
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
        if (cell == core::Cell::null) nulls_ = true;
        if (cell != core::Cell::other) return cell;
        PyObject* value = column_.object(row);
        if (value == nullptr) return cell;
        const ObjectNumber number = object_number_of(value);
        if (number.type == NumberType::none || number.scalar) return cell;
        const core::ReferenceBits bits = markers_->bits_of_object(number).value_or(0);
        number_bits_ |= bits;
        return bits != 0 ? core::Cell::null : cell;
    }
    [[nodiscard]] bool nulls() const noexcept { return nulls_; }
    [[nodiscard]] core::ReferenceBits number_bits() const noexcept { return number_bits_; }

  private:
    ArrayColumn column_;
    ObjectCells cells_;
    const References* markers_;
    mutable bool nulls_ = false;
    mutable core::ReferenceBits number_bits_ = 0;
};

template <class Cells>
std::optional<Answer> answer_texts(const ArrayColumn& column, const References& markers, const Cells& cells) {
    TextFacts facts;
    if (gather_facts(cells, markers.texts, character_tables, facts) == Walk::gave_up) return std::nullopt;
    core::ReferenceBits found = markers.bits_of_texts(facts.references);
    if constexpr (std::is_same_v<Cells, CellsBesideNumbers>) {
        facts.nulls = cells.nulls();
        found |= cells.number_bits();
    }
    // Nulls that no marker takes away meet texts in the sort.
    if (facts.nulls && markers.null_bits == 0 && !markers.none()) return std::nullopt;
    if (!facts.texts) return no_values(markers, found, facts.nulls);

    if (facts.nulls) found |= markers.null_bits;
    if ((facts.second_plain && !facts.lone) || !facts.numbers())
        return Answer{list_of_references(markers, found), Kind::char_str};
    if (!facts.plain) return Answer{list_of_references(markers, found), number_kind(facts)};
    core::TextView plain_text{};
    cells.read(facts.first_plain, plain_text);
    const Ordered only_plain{true, facts.first_plain, plain_text};
    Ordered least_number;
    Ordered end_marker;
    // Of objects it is the same one wherever it stands.
    if (facts.lone ? facts.lone_may_be_above : column.storage == Storage::fixed_text) {
        find_end_marker(cells, markers.texts, character_tables, least_number, end_marker);
    }
    if (!end_marker.found && facts.second_plain) return Answer{list_of_references(markers, found), Kind::char_str};
    Misslist misslist(column, held(markers, found));
    if (!end_marker.found) {
        misslist.add(only_plain, least_number);
        return Answer{std::move(misslist).list(), number_kind(facts)};
    }
    TextFacts below;
    std::vector<Ordered> plain;
    if (gather_below(cells, markers.texts, character_tables, end_marker.text, most_plain_below, below, plain) ==
        Walk::gave_up) {
        return std::nullopt;
    }
    for (const Ordered& text : plain) misslist.add(text, least_number);
    misslist.add_scanned(end_marker);
    return Answer{std::move(misslist).list(), number_kind(below)};
}

}  // namespace

std::optional<Answer> answer_object_texts(const ArrayColumn& column, const References& markers) {
    if (markers.numbers.empty()) return answer_texts(column, markers, ObjectCells(column));
    return answer_texts(column, markers, CellsBesideNumbers(column, markers));
}

std::optional<Answer> answer_fixed_texts(const ArrayColumn& column, const References& markers) {
    return answer_texts(column, markers, ArrayTextCells(column));
}

}  // namespace quorin::classify
