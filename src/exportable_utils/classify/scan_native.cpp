// The native route of the scan.
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "core/distinct/number_runs.hpp"
#include "exportable_utils/classify/scan.hpp"
#include "python/inputs/column_source.hpp"
#include "python/inputs/object_number.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

using core::TextClass;

// The counts, before any of them is written to a Scan. Positions are positions in XX.
struct Counted {
    struct Tally {
        Py_ssize_t distinct = 0;
        npy_intp rows = 0;
    };
    std::array<Tally, core::kind_count> tallies{};
    Kind running = Kind::unknown;
    bool integer_texts = false;
    bool real_texts = false;
    std::size_t first_number_text = 0;
    std::vector<std::size_t> texts_above;
    std::optional<std::size_t> end_marker;

    void add(Kind kind, npy_intp rows) { add(kind, 1, rows); }
    void add(Kind kind, std::size_t distinct, npy_intp rows) {
        if (distinct == 0) return;
        Tally& tally = tallies[static_cast<std::size_t>(kind)];
        tally.distinct += static_cast<Py_ssize_t>(distinct);
        tally.rows += rows;
        running = kind;
    }
    [[nodiscard]] bool number_texts() const { return integer_texts || real_texts; }
};

// A range of distinct values and their numbers of rows, which starts at position `first` of XX.
struct Values {
    ArrayColumn values;
    ArrayColumn counts;
    std::size_t first;

    [[nodiscard]] npy_intp rows_of(std::size_t i) const { return *reinterpret_cast<const npy_intp*>(counts.at(i)); }
    // True for the counts of numpy.unique().
    [[nodiscard]] bool contiguous_counts() const { return counts.stride == sizeof(npy_intp); }
    [[nodiscard]] const npy_intp* count_data() const { return reinterpret_cast<const npy_intp*>(counts.data); }
};

bool count_text(core::TextView text, std::size_t position, npy_intp rows, Counted& counted) {
    const bool lone = core::is_lone(text, character_tables);
    if (lone && counted.number_texts()) {
        counted.end_marker = position;
        return true;
    }
    const TextClass text_class = lone ? TextClass::plain : core::classify_text(text, character_tables);
    if (text_class == TextClass::unsettled) return false;
    if (text_class == TextClass::plain) {
        if (counted.number_texts()) counted.texts_above.push_back(position);
        counted.add(Kind::char_str, rows);
        return true;
    }
    if (!counted.number_texts()) counted.first_number_text = position;
    const bool integer = text_class == TextClass::integer;
    (integer ? counted.integer_texts : counted.real_texts) = true;
    counted.add(integer ? Kind::int_str : Kind::float_str, rows);
    return true;
}

// Elements after the end marker are not counted, but must be texts.
template <class Cells>
bool count_texts(const Cells& cells, const Values& part, Counted& counted) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells.prefetch(i + core::prefetch_distance);
        core::TextView text{};
        if (cells.read(i, text) != core::Cell::text) return false;
        if (counted.end_marker) continue;
        if (!count_text(text, part.first + i, part.rows_of(i), counted)) return false;
    }
    return true;
}

// Counts Python numbers, and the numpy scalars of the same kinds.
bool count_objects(const Values& part, Counted& counted) {
    const ObjectCells cells(part.values);
    for (std::size_t i = 0; i < part.values.rows; ++i) {
        cells.prefetch(i + core::prefetch_distance);
        if (part.values.object(i) == nullptr) return false;
        const ObjectNumber number = object_number_of(part.values.object(i));
        switch (number.type) {
            case NumberType::none:
                return false;
            case NumberType::boolean:
                counted.add(Kind::boolean, part.rows_of(i));
                break;
            case NumberType::integer:
            case NumberType::large:
                counted.add(Kind::int_num, part.rows_of(i));
                break;
            case NumberType::real: {
                const Kind running = counted.running;
                counted.add(is_whole(number.real) ? Kind::float_int_num : Kind::float_num, part.rows_of(i));
                if (running == Kind::float_num) counted.running = running;
                break;
            }
        }
    }
    return true;
}

bool count_floats(const Values& part, Counted& counted) {
    if (part.values.stride != sizeof(double) || !part.contiguous_counts()) return false;
    const std::size_t distinct = part.values.rows;
    const auto* numbers = reinterpret_cast<const double*>(part.values.data);
    const core::FractionTally fractions = core::tally_fractions(numbers, part.count_data(), distinct);
    const npy_intp rows = core::sum(part.count_data(), distinct);
    const bool fraction_before = counted.running == Kind::float_num;
    counted.add(Kind::float_int_num, distinct - fractions.distinct, rows - fractions.rows);
    counted.add(Kind::float_num, fractions.distinct, fractions.rows);
    if (fraction_before) counted.running = Kind::float_num;
    return true;
}

bool count_all(const Values& part, Kind kind, Counted& counted) {
    if (!part.contiguous_counts()) return false;
    counted.add(kind, part.values.rows, core::sum(part.count_data(), part.values.rows));
    return true;
}

bool count_values(const Values& part, bool texts, Counted& counted) {
    switch (part.values.storage) {
        case Storage::objects:
            return texts ? count_texts(ObjectCells(part.values), part, counted) : count_objects(part, counted);
        case Storage::fixed_text:
            return count_texts(ArrayTextCells(part.values), part, counted);
        case Storage::float64:
            return count_floats(part, counted);
        case Storage::integer:
            return count_all(part, Kind::int_num, counted);
        case Storage::boolean:
            return count_all(part, Kind::boolean, counted);
        case Storage::float32:
            break;
    }
    return false;
}

bool starts_with_text(const ColumnSource& values) {
    const std::optional<ArrayColumn> column = values.borrow();
    return column && column->storage == Storage::objects && is_exact_text(column->object(0));
}

bool count_in_blocks(Object XX, Object xx_xounts, Counted& counted) {
    const std::optional<ColumnSource> values = ColumnSource::flat(XX);
    const std::optional<ColumnSource> counts = ColumnSource::flat(xx_xounts);
    if (!values || !counts || values->rows() != counts->rows()) return false;
    const bool texts = starts_with_text(*values);
    return values->in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        const std::optional<ArrayColumn> count_column = counts->borrow();
        if (!count_column || PyArray_TYPE(count_column->array) != NPY_INTP) return false;
        const Values part{rows_of(column, first, last), rows_of(*count_column, first, last), first};
        return count_values(part, texts, counted);
    });
}

Ref numpy_whole(npy_intp value) {
    const Ref dtype = Ref::take(reinterpret_cast<PyObject*>(PyArray_DescrFromType(NPY_INTP)));
    return Ref::take(PyArray_Scalar(&value, reinterpret_cast<PyArray_Descr*>(dtype.get()), nullptr));
}

}  // namespace

bool scan_memory(Object XX, Object xx_xounts, Object missing_values_list, Scan& scan) {
    Counted counted;
    const Ref done = native_route([&] { return count_in_blocks(XX, xx_xounts, counted) ? Ref::truth(true) : Ref(); });
    if (!done) return false;
    for (std::size_t i = 0; i < core::kind_count; ++i) {
        const Counted::Tally& tally = counted.tallies[i];
        if (tally.distinct != 0) scan.counts.add(static_cast<Kind>(i), tally.distinct, numpy_whole(tally.rows));
    }
    scan.running = counted.running;
    scan.integer_texts = counted.integer_texts;
    scan.real_texts = counted.real_texts;
    scan.texts_below = counted.number_texts() ? counted.first_number_text : 0;
    scan.texts_above = std::move(counted.texts_above);
    if (counted.end_marker) {
        const Ref marker = item(XX, static_cast<Py_ssize_t>(*counted.end_marker));
        missing_values_list.attr("append"_py)({marker});
        append(scan.weird_new_missing_values_list, marker);
    }
    return true;
}

}  // namespace quorin::classify
