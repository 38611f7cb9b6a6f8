// Gathers the facts of columns of objects that are numbers.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "core/float_bits.hpp"
#include "exportable_utils/classify/short_facts.hpp"
#include "exportable_utils/distinct/object_tally.hpp"

namespace quorin::classify {

namespace {

using distinct::ObjectTally;

class NumberObjects {
  public:
    explicit NumberObjects(const References& references) : references_(references) {}

    // Returns false to give up.
    bool gather(const ArrayColumn& column, std::size_t first, std::size_t last);

    ReferenceBits found = 0;
    bool none = false;
    bool nan = false;
    bool scalar_nan = false;  // a NaN of a numpy type
    bool scalars = false;     // numbers of numpy types
    bool booleans = false;
    bool integers = false;
    bool reals = false;
    bool fractions = false;   // numbers with a fraction, and infinities
    bool other_text = false;  // a text that is not a reference
    [[nodiscard]] bool numbers() const noexcept { return reals || integers || booleans; }

  private:
    bool add(PyObject* value);
    bool add_number(const ObjectNumber& number);
    void add_kind(const ObjectNumber& number);

    const References& references_;
};

// Facts about floats. The least and the greatest nan_rank() determine three of them without a branch per element.
class FloatFacts {
  public:
    void add(double real) noexcept {
        const std::uint64_t rank = core::nan_rank(real);
        least_ = std::min(least_, rank);
        greatest_ = std::max(greatest_, rank);
        if (!fractions_) fractions_ = !core::is_nan_rank<double>(rank) && !is_whole(real);
    }
    [[nodiscard]] bool signalling_nan() const noexcept { return core::is_signalling_rank<double>(least_); }
    [[nodiscard]] bool nan() const noexcept { return core::is_nan_rank<double>(least_); }
    [[nodiscard]] bool reals() const noexcept { return !core::is_nan_rank<double>(greatest_); }
    [[nodiscard]] bool fractions() const noexcept { return fractions_; }

  private:
    std::uint64_t least_ = ~std::uint64_t{0};
    std::uint64_t greatest_ = 0;
    bool fractions_ = false;
};

// Adds the exact floats of the rows from `row` on, up to the first other object, and returns the row of that, or
// `last`. Not inlined, so that the loop has all registers.
[[gnu::noinline]] std::size_t add_floats(const ObjectCells& cells, std::size_t row, std::size_t last,
                                         FloatFacts& floats) noexcept {
    FloatFacts facts = floats;
    for (; row < last; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        PyObject* value = cells.object(row);
        if (value == nullptr || Py_TYPE(value) != &PyFloat_Type) break;
        facts.add(PyFloat_AS_DOUBLE(value));
    }
    floats = facts;
    return row;
}

bool NumberObjects::gather(const ArrayColumn& column, std::size_t first, std::size_t last) {
    const ObjectCells cells(column);
    const bool compared = !references_.numbers.empty();
    FloatFacts floats;
    bool whole_numbers = false;
    std::size_t row = first;
    for (; row < last; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        PyObject* value = cells.object(row);
        if (value == nullptr) break;
        const PyTypeObject* type = Py_TYPE(value);
        if (type == &PyFloat_Type && !compared) {
            row = add_floats(cells, row, last, floats) - 1;
        } else if (type == &PyLong_Type && !compared) {
            whole_numbers = true;  // the size does not matter
        } else if (!add(value)) {
            break;
        }
    }
    nan = nan || floats.nan();
    reals = reals || floats.reals();
    fractions = fractions || floats.fractions();
    integers = integers || whole_numbers;
    // numpy warns about a signalling NaN.
    return row == last && !floats.signalling_nan();
}

bool NumberObjects::add(PyObject* value) {
    if (value == Py_None) {
        none = true;
        return true;
    }
    if (PyUnicode_CheckExact(value)) {
        const std::optional<core::TextView> text = text_view_of(value);
        const ReferenceBits bits = text ? references_.texts.find(*text) : 0;
        found |= references_.bits_of_texts(bits);
        other_text = bits == 0;
        return !other_text;
    }
    const ObjectNumber number = object_number_of(value);
    return number.type != NumberType::none && add_number(number);
}

bool NumberObjects::add_number(const ObjectNumber& number) {
    scalars = scalars || number.scalar;
    if (number.type == NumberType::real && std::isnan(number.real)) {
        nan = true;
        scalar_nan = scalar_nan || number.scalar;
        return true;
    }
    if (!references_.numbers.empty()) {
        const std::optional<ReferenceBits> bits = references_.bits_of_object(number);
        if (!bits) return false;
        found |= *bits;
        if (*bits != 0) return true;
    }
    add_kind(number);
    return true;
}

void NumberObjects::add_kind(const ObjectNumber& number) {
    switch (number.type) {
        case NumberType::none:
            break;
        case NumberType::boolean:
            booleans = true;
            break;
        case NumberType::integer:
        case NumberType::large:
            integers = true;
            break;
        case NumberType::real:
            reals = true;
            fractions = fractions || !is_whole(number.real);
            break;
    }
}

// Whether there is an integer that may be rounded, or raise, when it is compared with a numpy scalar.
bool any_beyond_exact(const ColumnSource& source) {
    const bool none = source.in_blocks([](const ArrayColumn& column, std::size_t row, std::size_t last) {
        for (; row < last; ++row) {
            PyObject* value = column.object(row);
            if (value == nullptr || object_number_of(value).beyond_exact()) return false;
        }
        return true;
    });
    return !none;
}

// Counts the rows that are neither null nor a reference. Returns false to give up.
bool tally_numbers(const ArrayColumn& column, std::size_t first, std::size_t last, const References& references,
                   ObjectTally& tally) {
    const ObjectCells cells(column);
    for (std::size_t row = first; row < last; ++row) {
        PyObject* value = column.object(row);
        if (value == nullptr) return false;
        if (is_exact_null(value)) continue;
        const ObjectNumber number = object_number_of(value);
        if (number.type == NumberType::none || std::isnan(number.real)) continue;
        const std::optional<ReferenceBits> bits = references.bits_of_object(number);
        if (!bits) return false;
        if (*bits == 0 && !tally.add(column, cells, row)) return false;
    }
    return true;
}

// Whether two kinds occur among the distinct values. Equal numbers of different types are one distinct value, whose
// type depends on the sort; so each of the two kinds must have a value that equals no value of another kind.
bool two_kinds(const NativeArguments& arguments) {
    const std::size_t rows = arguments.column->rows();
    ObjectTally tally(rows);
    const auto add = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        if (!tally_numbers(column, first, last, *arguments.references, tally)) return false;
        if (last != rows) tally.hold(column);
        return true;
    };
    if (!tally.add_in_blocks(*arguments.column, add)) return false;
    unsigned alone = 0;
    for (const ObjectTally::Entry& entry : tally.entries()) {
        if (std::has_single_bit(entry.types)) alone |= entry.types;
    }
    return std::popcount(alone) > 1;
}

}  // namespace

bool gather_number_objects(NativeArguments& arguments, ShortFacts& facts) {
    const References& references = *arguments.references;
    NumberObjects objects(references);
    const auto gather = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        return objects.gather(column, first, last);
    };
    if (!arguments.column->in_blocks(gather)) {
        arguments.mixed = objects.other_text && objects.numbers();
        return false;
    }
    if (objects.scalars && objects.integers && any_beyond_exact(*arguments.column)) return false;
    if (references.null_bits == 0 && !references.none()) {
        // Nulls that are not missing: None cannot be sorted, and NaN counts as a fraction.
        if (objects.none || objects.scalar_nan) return false;
        objects.fractions = objects.fractions || objects.nan;
        objects.reals = objects.reals || objects.nan;
    }
    facts.references = objects.found | (objects.none || objects.nan ? references.null_bits : 0);
    if (objects.fractions) {
        facts.verdict.kinds.add(Kind::float_num);
        return true;
    }
    if (objects.reals) facts.verdict.kinds.add(Kind::float_int_num);
    if (objects.integers) facts.verdict.kinds.add(Kind::int_num);
    if (objects.booleans) facts.verdict.kinds.add(Kind::boolean);
    return facts.verdict.kinds.size() < 2 || two_kinds(arguments);
}

}  // namespace quorin::classify
