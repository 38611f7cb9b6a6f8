#include "columns/answer.hpp"

#include <bit>

#include "columns/new_text.hpp"
#include "columns/numbers.hpp"
#include "columns/object_tally.hpp"
#include "interp/operations.hpp"
#include "kernels/number_facts.hpp"

namespace quorin::columns {

namespace {

using kernels::Gathered;
using kernels::Ordered;
using kernels::TextFacts;

// Distinct plain texts below the marker that ends the scan; a column with more of them goes the long way.
constexpr std::size_t most_plain_below = 256;

// A column without values. Only rows that are missing make it "missing".
Answer no_values(const Markers& markers, std::uint32_t bits, bool nulls) {
    const std::uint32_t found = bits | (nulls ? markers.null_bits : 0U);
    return {markers_of(markers, found), found != 0 ? Kind::missing : Kind::unknown};
}

Kind number_kind(const TextFacts& facts) {
    return facts.reals ? Kind::float_str : Kind::int_str;
}

// Texts of an object array are handed on as they are.
class ObjectTexts {
  public:
    explicit ObjectTexts(const Column& column) : column_(column) {}
    [[nodiscard]] Ref listed(const Ordered& text) const { return Ref::share(column_.object(text.row)); }
    [[nodiscard]] Ref scanned(const Ordered& text) const { return listed(text); }

  private:
    Column column_;
};

// Texts of a fixed-width array: a plain str where the distinct values are listed, an element of the array where they
// are scanned one by one.
class FixedTexts {
  public:
    explicit FixedTexts(const Column& column) : column_(column) {}
    [[nodiscard]] static Ref listed(const Ordered& text) { return new_text(text.text); }
    [[nodiscard]] Ref scanned(const Ordered& text) const {
        auto* data = const_cast<char*>(column_.at(text.row));
        return Ref::take(
            PyArray_Scalar(data, PyArray_DESCR(column_.array), reinterpret_cast<PyObject*>(column_.array)));
    }

  private:
    Column column_;
};

// The plain texts that were found below or beside number texts count as markers, in ascending order. Those below the
// least number text were listed at once, the others were met one by one. Where the least number was not looked for, the
// plain text is a lone one that is not above it.
template <class Texts>
void append_plain(Object misslist, const Texts& texts, const std::vector<Ordered>& plain, const Ordered& least_number) {
    for (const Ordered& text : plain) {
        const bool below = !least_number.found || kernels::compare(text.text, least_number.text) < 0;
        append(misslist, below ? texts.listed(text) : texts.scanned(text));
    }
}

// Objects among which numbers may stand that are markers: these are passed over as nulls are, and remembered.
class CellsBesideNumbers {
  public:
    CellsBesideNumbers(const Column& column, const Markers& markers)
        : column_(column), cells_(column), markers_(&markers) {}
    [[nodiscard]] std::size_t size() const noexcept { return cells_.size(); }
    void prefetch(std::size_t row) const noexcept { cells_.prefetch(row); }
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t length) const noexcept {
        return cells_.longer_than(row, length);
    }
    [[nodiscard]] bool glance(std::size_t row, kernels::ShortText& text) const noexcept {
        return cells_.glance(row, text);
    }
    kernels::Cell read(std::size_t row, kernels::TextView& text) const noexcept {
        const kernels::Cell cell = cells_.read(row, text);
        if (cell == kernels::Cell::null) nulls_ = true;
        if (cell != kernels::Cell::other) return cell;
        PyObject* value = column_.object(row);
        if (value == nullptr) return cell;
        const ObjectNumber number = number_of(value);
        if (number.type == NumberType::none || number.scalar) return cell;
        const std::uint32_t bits = markers_->bits_of_object(number).value_or(0);
        number_bits_ |= bits;
        return bits != 0 ? kernels::Cell::null : cell;
    }
    [[nodiscard]] bool nulls() const noexcept { return nulls_; }
    [[nodiscard]] std::uint32_t number_bits() const noexcept { return number_bits_; }

  private:
    Column column_;
    ObjectCells cells_;
    const Markers* markers_;
    mutable bool nulls_ = false;
    mutable std::uint32_t number_bits_ = 0;
};

template <class Texts, class Cells>
std::optional<Answer> answer_texts(const Column& column, const Markers& markers, const Cells& cells) {
    TextFacts facts;
    if (gather_facts(cells, markers.texts, script, facts) == Gathered::gave_up) return std::nullopt;
    std::uint32_t found = markers.bits_of_texts(facts.markers);
    if constexpr (std::is_same_v<Cells, CellsBesideNumbers>) {
        facts.nulls = cells.nulls();
        found |= cells.number_bits();
    }
    // Nulls that no marker takes away meet texts in the sort.
    if (facts.nulls && markers.null_bits == 0 && !markers.none()) return std::nullopt;
    if (!facts.texts) return no_values(markers, found, facts.nulls);

    Answer answer{markers_of(markers, found | (facts.nulls ? markers.null_bits : 0U)), Kind::char_str};
    if ((facts.second_plain && !facts.lone) || !facts.numbers()) return answer;
    if (!facts.plain) {
        answer.kind = number_kind(facts);
        return answer;
    }
    const Texts texts(column);
    if (std::is_same_v<Texts, ObjectTexts> && !facts.lone) {
        answer.kind = number_kind(facts);
        append(answer.misslist, column.object(facts.first_plain));
        return answer;
    }
    Ordered least_number;
    Ordered end_marker;
    if (!facts.lone || facts.lone_may_be_above) find_end_marker(cells, markers.texts, script, least_number, end_marker);
    if (!end_marker.found) {
        if (facts.second_plain) return answer;
        answer.kind = number_kind(facts);
        kernels::TextView only{};
        cells.read(facts.first_plain, only);
        append_plain(answer.misslist, texts, {{true, facts.first_plain, only}}, least_number);
        return answer;
    }
    TextFacts below;
    std::vector<Ordered> plain;
    if (gather_below(cells, markers.texts, script, end_marker.text, most_plain_below, below, plain) ==
        Gathered::gave_up) {
        return std::nullopt;
    }
    answer.kind = number_kind(below);
    append_plain(answer.misslist, texts, plain, least_number);
    append(answer.misslist, texts.scanned(end_marker));
    return answer;
}

// Rows that are neither null nor a marker, when some marker is a number. Like in the other walks an infinite number has
// a fraction.
kernels::NumberFacts gather_beside(const Column& column, const Markers& markers, std::uint32_t& found) {
    kernels::NumberFacts facts;
    with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        for (std::size_t row = 0; row < column.rows; ++row) {
            const Number number = load<Number>(column, row);
            // A marker is exact as a 64-bit float; an integer that is not cannot be equal to one by rounding alone.
            const auto value = static_cast<double>(number);
            std::uint32_t bits = 0;
            if constexpr (std::is_floating_point_v<Number>) {
                if (std::isnan(value)) {
                    facts.nulls = true;
                    continue;
                }
                bits = markers.bits_of_number(value);
                if (bits == 0) facts.fractions = facts.fractions || !is_whole(value);
            } else {
                if (std::fabs(value) < exact_limit) bits = markers.bits_of_number(value);
            }
            found |= bits;
            facts.values = facts.values || bits == 0;
        }
        return true;
    });
    return facts;
}

// NaN that no marker takes away is a value with a fraction.
std::optional<Answer> answer_floats(const Column& column, const Markers& markers) {
    std::uint32_t found = 0;
    kernels::NumberFacts facts;
    if (!markers.numbers.empty()) {
        facts = gather_beside(column, markers, found);
    } else if (column.storage == Storage::float64) {
        facts = kernels::gather_float64(column.data, column.stride, column.rows);
    } else {
        facts = kernels::gather_float32(column.data, column.stride, column.rows);
    }
    if (facts.nulls && markers.null_bits == 0 && !markers.none()) {
        facts = {.nulls = false, .values = true, .fractions = true};
    }
    if (!facts.values) return no_values(markers, found, facts.nulls);
    if (facts.nulls) found |= markers.null_bits;
    return Answer{markers_of(markers, found), facts.fractions ? Kind::float_num : Kind::float_int_num};
}

std::optional<Answer> answer_integers(const Column& column, const Markers& markers) {
    std::uint32_t found = 0;
    if (!markers.numbers.empty()) {
        if (markers.beyond_exact()) return std::nullopt;
        if (!gather_beside(column, markers, found).values) return no_values(markers, found, false);
    }
    return Answer{markers_of(markers, found), column.storage == Storage::boolean ? Kind::boolean : Kind::int_num};
}

// What an array of objects holds that are numbers, nulls or markers.
struct ObjectFacts {
    std::uint32_t markers = 0;
    bool none = false;
    bool nan = false;
    bool scalar_nan = false;  // of a numpy type
    bool scalars = false;
    bool booleans = false;
    bool integers = false;
    bool reals = false;
    bool fractions = false;  // a real number with a fraction, or infinite
};

// A number that is no marker. False where that is not to be told.
bool gather_number(const ObjectNumber& number, const Markers& markers, ObjectFacts& facts) {
    facts.scalars = facts.scalars || number.scalar;
    if (number.type == NumberType::real && std::isnan(number.real)) {
        facts.nan = true;
        facts.scalar_nan = facts.scalar_nan || number.scalar;
        return true;
    }
    if (!markers.numbers.empty()) {
        const std::optional<std::uint32_t> bits = markers.bits_of_object(number);
        if (!bits) return false;
        facts.markers |= *bits;
        if (*bits != 0) return true;
    }
    switch (number.type) {
        case NumberType::none:
            return false;
        case NumberType::boolean:
            facts.booleans = true;
            break;
        case NumberType::integer:
        case NumberType::large:
            facts.integers = true;
            break;
        case NumberType::real:
            facts.reals = true;
            facts.fractions = facts.fractions || !is_whole(number.real);
            break;
    }
    return true;
}

bool gather_objects(const Column& column, const Markers& markers, ObjectFacts& facts) {
    const ObjectCells cells(column);
    const bool numbers = !markers.numbers.empty();
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + kernels::prefetch_distance);
        PyObject* value = column.object(row);
        if (value == nullptr) return false;
        const PyTypeObject* type = Py_TYPE(value);
        if (type == &PyFloat_Type && !numbers) {
            const double real = PyFloat_AS_DOUBLE(value);
            const bool nan = std::isnan(real);
            facts.nan = facts.nan || nan;
            facts.reals = facts.reals || !nan;
            facts.fractions = facts.fractions || !(nan || is_whole(real));
        } else if (type == &PyLong_Type && !numbers) {
            facts.integers = true;  // whatever its size
        } else if (value == Py_None) {
            facts.none = true;
        } else if (type == &PyUnicode_Type) {
            kernels::TextView text{};
            if (cells.read(row, text) != kernels::Cell::text) return false;
            const std::uint32_t found = markers.texts.find(text);
            if (found == 0) return false;
            facts.markers |= markers.bits_of_texts(found);
        } else {
            const ObjectNumber number = number_of(value);
            if (number.type == NumberType::none || !gather_number(number, markers, facts)) return false;
        }
    }
    return true;
}

// Whether an integer is there that a numpy scalar might round when it is compared with it, or refuse.
bool any_beyond_exact(const Column& column) {
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (number_of(column.object(row)).beyond_exact()) return true;
    }
    return false;
}

// Numbers of different types that are equal are one distinct value, and which of them stands for it is the sort's
// affair. The kinds that stand by themselves for some value are found in any case; two of them settle the mix.
bool two_kinds_for_sure(const Column& column, const Markers& markers) {
    ObjectTally tally(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        PyObject* value = column.object(row);
        if (is_plain_null(value)) continue;
        const ObjectNumber number = number_of(value);
        if (number.type == NumberType::none || std::isnan(number.real)) continue;
        const std::optional<std::uint32_t> bits = markers.bits_of_object(number);
        if (!bits) return false;
        if (*bits == 0 && !tally.add(row)) return false;
    }
    unsigned alone = 0;
    for (const ObjectTally::Entry& entry : tally.entries()) {
        if (std::has_single_bit(entry.types)) alone |= entry.types;
    }
    return std::popcount(alone) > 1;
}

std::optional<Answer> answer_objects(const Column& column, const Markers& markers) {
    ObjectFacts facts;
    if (!gather_objects(column, markers, facts)) return std::nullopt;
    if (facts.scalars && facts.integers && any_beyond_exact(column)) return std::nullopt;
    if (markers.null_bits == 0 && !markers.none()) {
        // Nulls that no marker takes away: None has no order, and NaN is a value with a fraction.
        if (facts.none || facts.scalar_nan) return std::nullopt;
        facts.fractions = facts.fractions || facts.nan;
        facts.reals = facts.reals || facts.nan;
    }
    const std::uint32_t found = facts.markers | (facts.none || facts.nan ? markers.null_bits : 0U);
    if (!facts.reals && !facts.integers && !facts.booleans) return no_values(markers, found, false);
    Answer answer{markers_of(markers, found), Kind::unknown};
    if (facts.fractions) {
        answer.kind = Kind::float_num;
    } else if (facts.reals + facts.integers + facts.booleans > 1) {
        if (!two_kinds_for_sure(column, markers)) return std::nullopt;
    } else {
        answer.kind = facts.reals ? Kind::float_int_num : facts.integers ? Kind::int_num : Kind::boolean;
    }
    return answer;
}

// The first element that is neither null nor a marker tells whether the column is tried as texts or as numbers.
bool starts_with_text(const Column& column, const Markers& markers) noexcept {
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        kernels::TextView text{};
        const kernels::Cell cell = cells.read(row, text);
        if (cell == kernels::Cell::text && markers.texts.find(text) == 0) return true;
        if (cell != kernels::Cell::other) continue;
        PyObject* value = column.object(row);
        if (value == nullptr || markers.numbers.empty()) return false;
        if (markers.bits_of_object(number_of(value)).value_or(0) == 0) return false;
    }
    return false;
}

std::optional<Answer> answer_among_objects(const Column& column, const Markers& markers) {
    if (!starts_with_text(column, markers)) return answer_objects(column, markers);
    if (markers.numbers.empty()) return answer_texts<ObjectTexts>(column, markers, ObjectCells(column));
    return answer_texts<ObjectTexts>(column, markers, CellsBesideNumbers(column, markers));
}

}  // namespace

std::optional<Answer> answer_for(const Column& column, const Markers& markers) {
    switch (column.storage) {
        case Storage::objects:
            return answer_among_objects(column, markers);
        case Storage::fixed_text:
            return answer_texts<FixedTexts>(column, markers, FixedTextCells(column));
        case Storage::float64:
        case Storage::float32:
            return answer_floats(column, markers);
        case Storage::integer:
        case Storage::boolean:
            return answer_integers(column, markers);
    }
    return std::nullopt;
}

}  // namespace quorin::columns
