#include "exportable_utils/features/class_counts.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/column.hpp"
#include "core/distinct/number_table.hpp"
#include "core/distinct/text_table.hpp"
#include "exportable_utils/distinct/object_tally.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/errors.hpp"
#include "python/new_text.hpp"

namespace quorin::features {

namespace {

template <class Cells, class Skip>
std::optional<std::vector<distinct::DistinctRow>> text_classes(const ArrayColumn& column, const Cells& cells,
                                                               Skip skip) {
    core::TextTable table(column.rows);
    if (!core::add_all(table, cells, skip)) return std::nullopt;
    std::vector<distinct::DistinctRow> classes;
    classes.reserve(table.entries().size());
    for (const core::DistinctText& entry : table.entries()) {
        classes.push_back({entry.row, static_cast<npy_intp>(entry.count)});
    }
    return classes;
}

std::optional<std::vector<distinct::DistinctRow>> object_classes(const ArrayColumn& column,
                                                                 const distinct::ExcludedRows& equal,
                                                                 const std::vector<PyObject*>& nulls) {
    const auto skip = [&](std::size_t row) {
        if (equal.has(row)) return true;
        return !nulls.empty() && std::find(nulls.begin(), nulls.end(), column.object(row)) != nulls.end();
    };
    std::size_t first = 0;
    while (first < column.rows && skip(first)) ++first;
    if (first < column.rows && is_exact_text(column.object(first))) {
        if (auto classes = text_classes(column, ObjectCells(column), skip)) return classes;
    }
    distinct::ObjectTally tally(column.rows);
    const ObjectCells cells(column);
    for (std::size_t row = first; row < column.rows; ++row) {
        if (!skip(row) && !tally.add(column, cells, row)) return std::nullopt;
    }
    std::vector<distinct::DistinctRow> classes;
    classes.reserve(tally.entries().size());
    for (const distinct::ObjectTally::Entry& entry : tally.entries()) classes.push_back({entry.row, entry.count});
    return classes;
}

template <class Number>
std::vector<distinct::DistinctRow> number_classes(const ArrayColumn& column, const distinct::ExcludedRows& equal) {
    constexpr std::size_t ahead = 16;
    std::vector<distinct::DistinctRow> classes;
    core::NumberTable table;
    std::uint64_t last_key = 0;
    std::uint32_t last = 0;
    bool any = false;
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (equal.has(row)) continue;
        if (row + ahead < column.rows) table.prefetch(core::key_of(core::load<Number>(column, row + ahead)));
        const Number value = core::load<Number>(column, row);
        const auto next = static_cast<std::uint32_t>(classes.size());
        if constexpr (std::is_floating_point_v<Number>) {
            if (std::isnan(value)) {
                classes.push_back({row, 1});
                continue;
            }
        }
        const std::uint64_t key = core::key_of(value);
        // Runs of one value need no search.
        if (!any || key != last_key) {
            last = table.find_or_add(key, next);
            last_key = key;
            any = true;
        }
        if (last == next) classes.push_back({row, 0});
        ++classes[last].count;
    }
    return classes;
}

// Two values, so that counting needs no search.
std::vector<distinct::DistinctRow> boolean_classes(const ArrayColumn& column, const distinct::ExcludedRows& equal) {
    std::array<distinct::DistinctRow, 2> found{};
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (equal.has(row)) continue;
        distinct::DistinctRow& entry = found[core::load<bool>(column, row) ? 1 : 0];
        if (entry.count++ == 0) entry.row = row;
    }
    if (found[0].row > found[1].row) std::swap(found[0], found[1]);
    std::vector<distinct::DistinctRow> classes;
    for (const distinct::DistinctRow& entry : found) {
        if (entry.count != 0) classes.push_back(entry);
    }
    return classes;
}

// As the array gives it when it is indexed; the two common types without numpy's detour.
Ref scalar_at(const ArrayColumn& column, std::size_t row) {
    const int type = PyArray_TYPE(column.array);
    if (type == NPY_DOUBLE) {
        Ref scalar = Ref::take(PyDoubleArrType_Type.tp_alloc(&PyDoubleArrType_Type, 0));
        reinterpret_cast<PyDoubleScalarObject*>(scalar.get())->obval = core::load<double>(column, row);
        return scalar;
    }
    if (type == NPY_LONG) {
        Ref scalar = Ref::take(PyLongArrType_Type.tp_alloc(&PyLongArrType_Type, 0));
        reinterpret_cast<PyLongScalarObject*>(scalar.get())->obval = core::load<long>(column, row);
        return scalar;
    }
    auto* data = const_cast<char*>(column.at(row));
    return Ref::take(PyArray_Scalar(data, PyArray_DESCR(column.array), reinterpret_cast<PyObject*>(column.array)));
}

Ref element_of(const ArrayColumn& column, std::size_t row) {
    if (column.storage == Storage::objects) return Ref::share(column.object(row));
    if (column.storage != Storage::fixed_text) return scalar_at(column, row);
    core::TextView text{};
    ArrayTextCells(column).read(row, text);
    return new_text(text);
}

}  // namespace

std::optional<std::vector<distinct::DistinctRow>> classes_of(const ArrayColumn& column,
                                                             const references::References& left_out) {
    if (column.rows > core::TextTable::most_rows) return std::nullopt;
    std::vector<PyObject*> nulls;
    for (const Ref& value : left_out.objects) {
        if (is_exact_null(value.get())) nulls.push_back(value.get());
    }
    references::Members by_equality;
    if (nulls.size() < left_out.objects.size()) {
        std::optional<references::Members> found =
            references::find_members(*ColumnSource::single(reinterpret_cast<PyObject*>(column.array)), left_out,
                                     references::Match::without_nulls);
        if (!found) return std::nullopt;
        by_equality = std::move(*found);
    }
    const distinct::ExcludedRows equal(by_equality.mask, by_equality.marked);
    if (column.storage == Storage::objects) return object_classes(column, equal, nulls);
    if (column.storage == Storage::fixed_text) {
        const auto skip = [&](std::size_t row) { return equal.has(row); };
        return text_classes(column, ArrayTextCells(column), skip);
    }
    if (column.storage == Storage::boolean) return boolean_classes(column, equal);
    std::vector<distinct::DistinctRow> classes;
    const bool counted = core::with_number_type(column, [&](auto type) {
        classes = number_classes<decltype(type)>(column, equal);
        return true;
    });
    if (!counted) return std::nullopt;
    return classes;
}

std::vector<Ref> elements_of(const ArrayColumn& column, const std::vector<distinct::DistinctRow>& classes) {
    std::vector<Ref> elements;
    elements.reserve(classes.size());
    for (const distinct::DistinctRow& entry : classes) elements.push_back(element_of(column, entry.row));
    // Scalars of text take a tuple each to make, so they come when the column has been read.
    if (column.storage == Storage::fixed_text) {
        for (Ref& element : elements) element = text_scalar(element);
    }
    return elements;
}

}  // namespace quorin::features
