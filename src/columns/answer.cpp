#include "columns/answer.hpp"

#include <algorithm>

#include "columns/numbers.hpp"
#include "interp/operations.hpp"
#include "kernels/number_facts.hpp"

namespace quorin::columns {

namespace {

using kernels::Gathered;
using kernels::Ordered;
using kernels::TextFacts;

// Distinct plain texts below the marker that ends the scan; a column with more of them goes the long way.
constexpr std::size_t most_plain_below = 256;

// Below this every whole number is exact as a 64-bit float.
constexpr double exact_limit = 9007199254740992.0;

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
    using Cells = ObjectCells;
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
    using Cells = FixedTextCells;
    explicit FixedTexts(const Column& column) : column_(column) {}
    [[nodiscard]] static Ref listed(const Ordered& text) {
        return Ref::take(PyUnicode_FromKindAndData(PyUnicode_4BYTE_KIND, text.text.characters,
                                                   static_cast<Py_ssize_t>(text.text.length)));
    }
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

template <class Texts>
std::optional<Answer> answer_texts(const Column& column, const Markers& markers) {
    const typename Texts::Cells cells(column);
    TextFacts facts;
    if (gather_facts(cells, markers.texts, script, facts) == Gathered::gave_up) return std::nullopt;
    // Nulls that no marker takes away meet texts in the sort.
    if (facts.nulls && markers.null_bits == 0 && !markers.none()) return std::nullopt;
    const std::uint32_t found = markers.bits_of_texts(facts.markers);
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
                if (bits == 0) facts.fractions = facts.fractions || std::isinf(value) || std::floor(value) != value;
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
        const auto beyond = [](const Markers::Number& number) { return std::fabs(number.value) >= exact_limit; };
        if (std::any_of(markers.numbers.begin(), markers.numbers.end(), beyond)) return std::nullopt;
        if (!gather_beside(column, markers, found).values) return no_values(markers, found, false);
    }
    return Answer{markers_of(markers, found), column.storage == Storage::boolean ? Kind::boolean : Kind::int_num};
}

// Python numbers in an object array. Numbers of different types that are equal are one distinct value, and which of
// them stands for it is the sort's affair: only a fraction, which equals no number of another type, settles a mix.
std::optional<Answer> answer_objects(const Column& column, const Markers& markers) {
    if (!markers.numbers.empty()) return std::nullopt;
    kernels::NumberFacts floats;
    bool integers = false;
    bool booleans = false;
    for (std::size_t row = 0; row < column.rows; ++row) {
        PyObject* value = column.object(row);
        if (value == nullptr) return std::nullopt;
        if (is_plain_null(value)) {
            floats.nulls = true;
        } else if (PyFloat_CheckExact(value)) {
            const double number = PyFloat_AS_DOUBLE(value);
            floats.values = true;
            floats.fractions = floats.fractions || std::isinf(number) || std::floor(number) != number;
        } else if (PyLong_CheckExact(value)) {
            integers = true;
        } else if (PyBool_Check(value)) {
            booleans = true;
        } else {
            return std::nullopt;
        }
    }
    if (floats.nulls && markers.null_bits == 0 && !markers.none()) return std::nullopt;
    Answer answer{markers_of(markers, floats.nulls ? markers.null_bits : 0U), Kind::unknown};
    if (!floats.values && !integers && !booleans) return no_values(markers, 0, floats.nulls);
    if (floats.fractions) {
        answer.kind = Kind::float_num;
    } else if (floats.values + integers + booleans > 1) {
        return std::nullopt;
    } else {
        answer.kind = floats.values ? Kind::float_int_num : integers ? Kind::int_num : Kind::boolean;
    }
    return answer;
}

// The first element that is not null tells whether the column is tried as texts or as numbers.
bool starts_with_text(const Column& column) noexcept {
    for (std::size_t row = 0; row < column.rows; ++row) {
        PyObject* value = column.object(row);
        if (value != nullptr && !is_plain_null(value)) return PyUnicode_CheckExact(value);
    }
    return false;
}

}  // namespace

std::optional<Answer> answer_for(const Column& column, const Markers& markers) {
    switch (column.storage) {
        case Storage::objects:
            return starts_with_text(column) ? answer_texts<ObjectTexts>(column, markers)
                                            : answer_objects(column, markers);
        case Storage::fixed_text:
            return answer_texts<FixedTexts>(column, markers);
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
