// Columns of objects that are numbers.
#include <bit>
#include <cmath>

#include "core/float_bits.hpp"
#include "exportable_utils/classify/short_answer_parts.hpp"
#include "exportable_utils/distinct/object_tally.hpp"

namespace quorin::classify {

namespace {

using distinct::ObjectTally;

// What an array of objects holds that are numbers, nulls or markers.
struct ObjectFacts {
    core::ReferenceBits markers = 0;
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
bool gather_number(const ObjectNumber& number, const References& markers, ObjectFacts& facts) {
    facts.scalars = facts.scalars || number.scalar;
    if (number.type == NumberType::real && std::isnan(number.real)) {
        facts.nan = true;
        facts.scalar_nan = facts.scalar_nan || number.scalar;
        return true;
    }
    if (!markers.numbers.empty()) {
        const std::optional<core::ReferenceBits> bits = markers.bits_of_object(number);
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

bool gather_objects(const ArrayColumn& column, const References& markers, ObjectFacts& facts) {
    const ObjectCells cells(column);
    const bool numbers = !markers.numbers.empty();
    std::uint64_t nan_bits = ~std::uint64_t{0};  // the bits that are set in every NaN; kept without a branch
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        PyObject* value = column.object(row);
        if (value == nullptr) return false;
        const PyTypeObject* type = Py_TYPE(value);
        if (type == &PyFloat_Type && !numbers) {
            const double real = PyFloat_AS_DOUBLE(value);
            const bool nan = std::isnan(real);
            nan_bits &= std::bit_cast<std::uint64_t>(real) | (static_cast<std::uint64_t>(nan) - 1U);
            facts.nan = facts.nan || nan;
            facts.reals = facts.reals || !nan;
            facts.fractions = facts.fractions || !(nan || is_whole(real));
        } else if (type == &PyLong_Type && !numbers) {
            facts.integers = true;  // whatever its size
        } else if (value == Py_None) {
            facts.none = true;
        } else if (type == &PyUnicode_Type) {
            core::TextView text{};
            if (cells.read(row, text) != core::Cell::text) return false;
            const core::ReferenceBits found = markers.texts.find(text);
            if (found == 0) return false;
            facts.markers |= markers.bits_of_texts(found);
        } else {
            const ObjectNumber number = object_number_of(value);
            if (number.type == NumberType::none || !gather_number(number, markers, facts)) return false;
        }
    }
    return (nan_bits & core::quiet_bit<double>) != 0;
}

// Whether an integer is there that a numpy scalar might round when it is compared with it, or refuse.
bool any_beyond_exact(const ArrayColumn& column) {
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (object_number_of(column.object(row)).beyond_exact()) return true;
    }
    return false;
}

// Numbers of different types that are equal are one distinct value, and which of them stands for it is the sort's
// affair. The kinds that stand by themselves for some value are found in any case; two of them settle the mix.
bool two_kinds_for_sure(const ArrayColumn& column, const References& markers) {
    ObjectTally tally(column.rows);
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        PyObject* value = column.object(row);
        if (is_exact_null(value)) continue;
        const ObjectNumber number = object_number_of(value);
        if (number.type == NumberType::none || std::isnan(number.real)) continue;
        const std::optional<core::ReferenceBits> bits = markers.bits_of_object(number);
        if (!bits) return false;
        if (*bits == 0 && !tally.add(column, cells, row)) return false;
    }
    unsigned alone = 0;
    for (const ObjectTally::Entry& entry : tally.entries()) {
        if (std::has_single_bit(entry.types)) alone |= entry.types;
    }
    return std::popcount(alone) > 1;
}

}  // namespace

std::optional<Answer> answer_objects(const ArrayColumn& column, const References& markers) {
    ObjectFacts facts;
    if (!gather_objects(column, markers, facts)) return std::nullopt;
    if (facts.scalars && facts.integers && any_beyond_exact(column)) return std::nullopt;
    if (markers.null_bits == 0 && !markers.none()) {
        // Nulls that no marker takes away: None has no order, and NaN is a value with a fraction.
        if (facts.none || facts.scalar_nan) return std::nullopt;
        facts.fractions = facts.fractions || facts.nan;
        facts.reals = facts.reals || facts.nan;
    }
    const core::ReferenceBits found = facts.markers | (facts.none || facts.nan ? markers.null_bits : 0);
    if (!facts.reals && !facts.integers && !facts.booleans) return no_values(markers, found, false);
    Kind kind = Kind::unknown;
    if (facts.fractions) {
        kind = Kind::float_num;
    } else if (facts.reals + facts.integers + facts.booleans > 1) {
        if (!two_kinds_for_sure(column, markers)) return std::nullopt;
    } else {
        kind = facts.reals ? Kind::float_int_num : facts.integers ? Kind::int_num : Kind::boolean;
    }
    return Answer{list_of_references(markers, found), kind};
}

}  // namespace quorin::classify
