// Columns of numbers that are no objects.
#include <cmath>

#include "core/column.hpp"
#include "core/gather/number_facts.hpp"
#include "exportable_utils/classify/short_answer_parts.hpp"

namespace quorin::classify {

namespace {

// Rows that are neither null nor a marker, when some marker is a number. Like in the other walks an infinite number has
// a fraction.
core::NumberFacts gather_beside(const ArrayColumn& column, const References& markers, core::ReferenceBits& found) {
    core::NumberFacts facts;
    core::with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        for (std::size_t row = 0; row < column.rows; ++row) {
            const Number number = core::load<Number>(column, row);
            // A marker is exact as a 64-bit float; an integer that is not cannot be equal to one by rounding alone.
            const auto value = static_cast<double>(number);
            core::ReferenceBits bits = 0;
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

}  // namespace

// NaN that no marker takes away is a value with a fraction.
std::optional<Answer> answer_floats(const ArrayColumn& column, const References& markers) {
    core::ReferenceBits found = 0;
    core::NumberFacts facts;
    if (!markers.numbers.empty()) {
        facts = gather_beside(column, markers, found);
    } else if (column.storage == Storage::float64) {
        facts = core::gather_numbers<double>(column);
    } else {
        facts = core::gather_numbers<float>(column);
    }
    // numpy warns of a signalling NaN.
    if (facts.nulls && core::any_signalling_nan(column)) return std::nullopt;
    if (facts.nulls && markers.null_bits == 0 && !markers.none()) {
        facts = {.nulls = false, .values = true, .fractions = true};
    }
    if (!facts.values) return no_values(markers, found, facts.nulls);
    if (facts.nulls) found |= markers.null_bits;
    return Answer{list_of_references(markers, found), facts.fractions ? Kind::float_num : Kind::float_int_num};
}

std::optional<Answer> answer_integers(const ArrayColumn& column, const References& markers) {
    core::ReferenceBits found = 0;
    if (!markers.numbers.empty()) {
        if (markers.beyond_exact()) return std::nullopt;
        if (!gather_beside(column, markers, found).values) return no_values(markers, found, false);
    }
    return Answer{list_of_references(markers, found),
                  column.storage == Storage::boolean ? Kind::boolean : Kind::int_num};
}

}  // namespace quorin::classify
