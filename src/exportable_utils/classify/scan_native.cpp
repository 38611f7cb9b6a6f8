// The scan over distinct values that lie in memory as texts or as plain numbers.
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "core/distinct/number_runs.hpp"
#include "exportable_utils/classify/scan.hpp"
#include "python/inputs/array_column.hpp"
#include "python/inputs/object_number.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

using core::TextClass;

struct Tally {
    Py_ssize_t distinct = 0;
    npy_intp rows = 0;
};

// What the walk saw; counted first, written down when nothing can go wrong any more.
struct Seen {
    std::array<Tally, kinds> tallies{};
    Kind running = Kind::unknown;
    bool plain = false;
    bool integer = false;
    bool real = false;
    std::size_t first_number = 0;
    std::vector<std::size_t> plain_above;  // texts above the first number
    std::optional<std::size_t> end_marker;

    void count(Kind kind, npy_intp rows) { count(kind, 1, rows); }
    void count(Kind kind, std::size_t distinct, npy_intp rows) {
        if (distinct == 0) return;
        Tally& tally = tallies[static_cast<std::size_t>(kind)];
        tally.distinct += static_cast<Py_ssize_t>(distinct);
        tally.rows += rows;
        running = kind;
    }
    [[nodiscard]] bool number() const { return integer || real; }
};

npy_intp rows_of(const ArrayColumn& counts, std::size_t i) {
    return *reinterpret_cast<const npy_intp*>(counts.at(i));
}

template <class Cells>
bool walk_texts(const Cells& cells, const ArrayColumn& counts, Seen& seen) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells.prefetch(i + core::prefetch_distance);
        core::TextView text{};
        if (cells.read(i, text) != core::Cell::text) return false;
        if (seen.end_marker) continue;  // only its kind matters
        const bool lone = core::is_lone(text, character_tables);
        if (lone && seen.number()) {
            seen.end_marker = i;
            continue;
        }
        const TextClass text_class = lone ? TextClass::plain : core::classify_text(text, character_tables);
        if (text_class == TextClass::unsettled) return false;
        if (text_class == TextClass::plain) {
            seen.plain = true;
            if (seen.number()) seen.plain_above.push_back(i);
            seen.count(Kind::char_str, rows_of(counts, i));
            continue;
        }
        if (!seen.number()) seen.first_number = i;
        const bool integer = text_class == TextClass::integer;
        (integer ? seen.integer : seen.real) = true;
        seen.count(integer ? Kind::int_str : Kind::float_str, rows_of(counts, i));
    }
    return true;
}

// Python's numbers and the numpy scalars that are told by the same rules; of the others it is only known that they are
// not for this walk.
bool walk_objects(const ArrayColumn& values, const ArrayColumn& counts, Seen& seen) {
    const ObjectCells cells(values);
    for (std::size_t i = 0; i < values.rows; ++i) {
        cells.prefetch(i + core::prefetch_distance);
        if (values.object(i) == nullptr) return false;
        const ObjectNumber number = object_number_of(values.object(i));
        switch (number.type) {
            case NumberType::none:
                return false;
            case NumberType::boolean:
                seen.count(Kind::boolean, rows_of(counts, i));
                break;
            case NumberType::integer:
            case NumberType::large:
                seen.count(Kind::int_num, rows_of(counts, i));
                break;
            case NumberType::real: {
                const Kind running = seen.running;
                const bool whole_valued = is_whole(number.real);
                seen.count(whole_valued ? Kind::float_int_num : Kind::float_num, rows_of(counts, i));
                if (running == Kind::float_num) seen.running = running;
                break;
            }
        }
    }
    return true;
}

bool starts_with_text(const ArrayColumn& values) {
    return values.object(0) != nullptr && PyUnicode_CheckExact(values.object(0));
}

// The numbers and the counts stand side by side, as numpy.unique() makes them.
std::optional<core::FractionTally> tally_floats(const ArrayColumn& values, const ArrayColumn& counts) {
    if (values.stride != sizeof(double) || counts.stride != sizeof(npy_intp)) return std::nullopt;
    return core::tally_fractions(reinterpret_cast<const double*>(values.data),
                                 reinterpret_cast<const npy_intp*>(counts.data), values.rows);
}

npy_intp all_rows(const ArrayColumn& counts) {
    return core::sum(reinterpret_cast<const npy_intp*>(counts.data), counts.rows);
}

bool walk_floats(const ArrayColumn& values, const ArrayColumn& counts, Seen& seen) {
    const auto fractions = tally_floats(values, counts);
    if (!fractions) return false;
    seen.count(Kind::float_int_num, values.rows - fractions->distinct, all_rows(counts) - fractions->rows);
    seen.count(Kind::float_num, fractions->distinct, fractions->rows);
    return true;
}

bool walk_alike(const ArrayColumn& values, const ArrayColumn& counts, Kind kind, Seen& seen) {
    if (counts.stride != sizeof(npy_intp)) return false;
    seen.count(kind, values.rows, all_rows(counts));
    return true;
}

bool walk(const ArrayColumn& values, const ArrayColumn& counts, Seen& seen) {
    switch (values.storage) {
        case Storage::objects:
            return starts_with_text(values) ? walk_texts(ObjectCells(values), counts, seen)
                                            : walk_objects(values, counts, seen);
        case Storage::fixed_text:
            return walk_texts(ArrayTextCells(values), counts, seen);
        case Storage::float64:
            return walk_floats(values, counts, seen);
        case Storage::integer:
            return walk_alike(values, counts, Kind::int_num, seen);
        case Storage::boolean:
            return walk_alike(values, counts, Kind::boolean, seen);
        case Storage::float32:
            break;
    }
    return false;
}

Ref numpy_whole(npy_intp value) {
    const Ref dtype = Ref::take(reinterpret_cast<PyObject*>(PyArray_DescrFromType(NPY_INTP)));
    return Ref::take(PyArray_Scalar(&value, reinterpret_cast<PyArray_Descr*>(dtype.get()), nullptr));
}

}  // namespace

bool Scan::run_native(Object XX, Object xx_xounts, Object missing_values_list) {
    const std::optional<ArrayColumn> values = flat_column(XX);
    const std::optional<ArrayColumn> counts = flat_column(xx_xounts);
    if (!values || !counts || PyArray_TYPE(counts->array) != NPY_INTP || counts->rows != values->rows) return false;
    Seen seen;
    if (!walk(*values, *counts, seen)) return false;

    for (std::size_t i = 0; i < kinds; ++i) {
        const Tally& tally = seen.tallies[i];
        if (tally.distinct == 0) continue;
        dtypes_cnt.add(static_cast<Kind>(i), tally.distinct);
        dtypes_weighted_cnt.add(static_cast<Kind>(i), numpy_whole(tally.rows));
    }
    if (seen.running != Kind::unknown) dtype_str = seen.running;
    found_int_str_flag = seen.integer;
    found_float_str_flag = seen.real;
    found_string_flag = seen.plain;
    found_nonmissing_flag = dtype_str != Kind::char_str || seen.number();
    texts_below_ = seen.number() ? seen.first_number : 0;
    texts_above_ = std::move(seen.plain_above);
    if (seen.end_marker) {
        const Ref marker = item(XX, static_cast<Py_ssize_t>(*seen.end_marker));
        missing_values_list.attr("append"_py)({marker});
        append(weird_new_missing_values_list, marker);
    }
    return true;
}

}  // namespace quorin::classify
