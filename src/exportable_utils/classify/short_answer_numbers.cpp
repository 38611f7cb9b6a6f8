// Gathers the facts of arrays of numbers.
#include <cmath>

#include "core/column.hpp"
#include "core/gather/number_facts.hpp"
#include "exportable_utils/classify/short_facts.hpp"

namespace quorin::classify {

namespace {

void merge(core::NumberFacts& facts, const core::NumberFacts& more) noexcept {
    facts.nulls = facts.nulls || more.nulls;
    facts.values = facts.values || more.values;
    facts.fractions = facts.fractions || more.fractions;
    facts.signalling_nan = facts.signalling_nan || more.signalling_nan;
}

// The facts of the rows that are neither null nor a reference.
template <class Number>
core::NumberFacts gather_others(const ArrayColumn& column, const References& references, ReferenceBits& found) {
    core::NumberFacts facts;
    for (std::size_t row = 0; row < column.rows; ++row) {
        const Number number = core::load<Number>(column, row);
        // Not compared if it is an integer of magnitude >= 2^53, which may be rounded here: all references are smaller.
        const auto value = static_cast<double>(number);
        ReferenceBits bits = 0;
        if constexpr (std::is_floating_point_v<Number>) {
            if (std::isnan(value)) {
                facts.nulls = true;
                facts.signalling_nan = facts.signalling_nan || core::is_signalling_nan(number);
                continue;
            }
            bits = references.bits_of_number(value);
            if (bits == 0) facts.fractions = facts.fractions || !is_whole(value);
        } else {
            if (std::fabs(value) < exact_limit) bits = references.bits_of_number(value);
        }
        found |= bits;
        facts.values = facts.values || bits == 0;
    }
    return facts;
}

core::NumberFacts gather_all(const ArrayColumn& column) {
    return column.storage == Storage::float64 ? core::gather_numbers<double>(column)
                                              : core::gather_numbers<float>(column);
}

bool gather_numbers(const NativeArguments& arguments, core::NumberFacts& facts, ReferenceBits& found) {
    const References& references = *arguments.references;
    return arguments.column->in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        const ArrayColumn part = rows_of(column, first, last);
        if (references.numbers.empty()) {
            merge(facts, gather_all(part));
            return true;
        }
        return core::with_number_type(part, [&](auto type) {
            merge(facts, gather_others<decltype(type)>(part, references, found));
            return true;
        });
    });
}

}  // namespace

bool gather_floats(NativeArguments& arguments, ShortFacts& facts) {
    const References& references = *arguments.references;
    core::NumberFacts numbers;
    if (!gather_numbers(arguments, numbers, facts.references)) return false;
    // numpy warns about a signalling NaN.
    if (numbers.signalling_nan) return false;
    if (numbers.nulls && references.null_bits == 0 && !references.none()) {
        // A NaN that is not missing counts as a fraction.
        facts.verdict.kinds.add(Kind::float_num);
        return true;
    }
    if (numbers.nulls) facts.references |= references.null_bits;
    if (numbers.values) facts.verdict.kinds.add(numbers.fractions ? Kind::float_num : Kind::float_int_num);
    return true;
}

bool gather_integers(NativeArguments& arguments, ShortFacts& facts) {
    const References& references = *arguments.references;
    core::NumberFacts numbers{.nulls = false, .values = true};
    if (!references.numbers.empty()) {
        if (references.beyond_exact()) return false;
        numbers = {};
        if (!gather_numbers(arguments, numbers, facts.references)) return false;
    }
    if (!numbers.values) return true;
    const bool booleans = arguments.column->storage() == Storage::boolean;
    facts.verdict.kinds.add(booleans ? Kind::boolean : Kind::int_num);
    return true;
}

}  // namespace quorin::classify
