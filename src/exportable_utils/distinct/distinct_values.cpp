#include "exportable_utils/distinct/distinct_values.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/column.hpp"
#include "core/distinct/key_order.hpp"
#include "core/distinct/number_table.hpp"
#include "core/distinct/text_order.hpp"
#include "core/distinct/text_table.hpp"
#include "exportable_utils/distinct/distinct_numbers.hpp"
#include "exportable_utils/distinct/object_tally.hpp"
#include "python/errors.hpp"

namespace quorin::distinct {

namespace {

// Sorted texts lie anywhere in memory.
constexpr std::size_t prefetched = 16;

std::vector<DistinctRow> ascending_texts(const std::vector<core::DistinctText>& found) {
    const std::vector<std::uint32_t> order = core::ascending(found);
    std::vector<DistinctRow> sorted;
    sorted.reserve(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i + prefetched < order.size()) __builtin_prefetch(&found[order[i + prefetched]]);
        const core::DistinctText& entry = found[order[i]];
        sorted.push_back({entry.row, static_cast<npy_intp>(entry.count)});
    }
    return sorted;
}

// Whole numbers are sorted as such; beside fractions they have to be exact as 64-bit floats.
std::optional<std::vector<DistinctRow>> ascending_numbers(const std::vector<ObjectTally::Entry>& entries) {
    const bool reals = std::any_of(entries.begin(), entries.end(), [](const ObjectTally::Entry& entry) {
        return entry.number.type == NumberType::real;
    });
    std::vector<core::Keyed> keyed;
    keyed.reserve(entries.size());
    for (const ObjectTally::Entry& entry : entries) {
        const ObjectNumber& number = entry.number;
        if (!entry.alike || number.type == NumberType::none) return std::nullopt;
        const auto position = static_cast<std::uint32_t>(keyed.size());
        if (!reals) {
            keyed.push_back({core::key_of_whole(number.whole), position});
        } else if (number.type == NumberType::real) {
            keyed.push_back({core::key_of_real(number.real), position});
        } else if (number.beyond_exact()) {
            return std::nullopt;
        } else {
            keyed.push_back({core::key_of_real(static_cast<double>(number.whole)), position});
        }
    }
    core::sort_by_key(keyed);
    std::vector<DistinctRow> sorted;
    sorted.reserve(keyed.size());
    for (const core::Keyed& key : keyed) sorted.push_back({entries[key.number].row, entries[key.number].count});
    return sorted;
}

// Whether numpy can sort what a tally holds: all texts or all numbers, nothing that has no order.
bool sortable(const ObjectTally& tally) noexcept {
    return !tally.nulls() && (tally.texts().empty() || tally.texts().size() == tally.entries().size());
}

template <class Skip>
std::optional<std::vector<DistinctRow>> ascending_objects(const ArrayColumn& column, Skip skip) {
    ObjectTally tally(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (skip(row)) continue;
        if (!tally.add(row) || !sortable(tally)) return std::nullopt;
    }
    if (tally.texts().empty()) return ascending_numbers(tally.entries());
    std::vector<core::DistinctText> found;
    found.reserve(tally.entries().size());
    for (std::size_t i = 0; i < tally.entries().size(); ++i) {
        const ObjectTally::Entry& entry = tally.entries()[i];
        if (!entry.alike) return std::nullopt;
        found.push_back({tally.texts()[i].text, entry.row, entry.count});
    }
    return ascending_texts(found);
}

// The walk goes to the end also where enough is known: what stands there may be nothing that can be sorted.
std::optional<std::size_t> count_distinct_objects(const ArrayColumn& column, std::size_t enough, bool texts) {
    ObjectTally tally(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (tally.entries().size() >= enough) {
            PyObject* value = column.object(row);
            if (value == nullptr) return std::nullopt;
            if (texts ? is_plain_text(value) : is_sortable_number(value)) continue;
            return std::nullopt;
        }
        if (!tally.add(row) || !sortable(tally) || tally.texts().empty() == texts) return std::nullopt;
    }
    return tally.entries().size();
}

// How many there can be at all.
std::size_t possible_numbers(const ArrayColumn& column) noexcept {
    constexpr std::size_t bytes = 256;
    if (column.storage == Storage::boolean) return 2;
    return column.width == 1 ? bytes : column.rows;
}

template <class Skip>
std::optional<std::vector<DistinctRow>> ascending_values(const ArrayColumn& column, Skip skip) {
    if (column.rows > core::TextTable::most_rows) return std::nullopt;
    core::TextTable table(column.rows);
    if (column.storage == Storage::fixed_text) {
        if (core::add_all(table, ArrayTextCells(column), skip)) return ascending_texts(table.entries());
        return std::nullopt;
    }
    std::size_t first = 0;
    while (skip(first)) ++first;
    if (is_exact_text(column.object(first)) && core::add_all(table, ObjectCells(column), skip)) {
        return ascending_texts(table.entries());
    }
    return ascending_objects(column, skip);
}

Ref counts_of(const std::vector<DistinctRow>& distinct) {
    Ref array = new_array(distinct.size(), NPY_INTP);
    auto* out = reinterpret_cast<npy_intp*>(PyArray_BYTES(as_array(array)));
    for (const DistinctRow& entry : distinct) *out++ = entry.count;
    return array;
}

}  // namespace

std::optional<ValuesAndCounts> distinct_values(const ArrayColumn& column, ExcludedRows left_out) {
    if (column.storage != Storage::objects && column.storage != Storage::fixed_text) {
        return distinct_numbers(column, left_out);
    }
    // Of nothing numpy makes an array of its own kind.
    if (left_out.marked() == column.rows) return std::nullopt;
    const auto distinct = left_out.marked() == 0
                              ? ascending_values(column, [](std::size_t) { return false; })
                              : ascending_values(column, [=](std::size_t row) { return left_out.has(row); });
    if (!distinct) return std::nullopt;
    return ValuesAndCounts{values_of(column, *distinct), counts_of(*distinct)};
}

std::optional<std::size_t> count_distinct_numbers(const ArrayColumn& column, std::size_t enough) {
    if (column.storage == Storage::objects) return count_distinct_objects(column, enough, false);
    enough = std::min(enough, possible_numbers(column));
    core::NumberTable numbers;
    std::uint32_t distinct = 0;
    const bool counted = core::with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        for (std::size_t row = 0; row < column.rows && distinct < enough; ++row) {
            const std::uint64_t key = core::key_of(core::load<Number>(column, row));
            if (numbers.find_or_add(key, distinct) == distinct) ++distinct;
        }
        return true;
    });
    if (!counted) return std::nullopt;
    return distinct;
}

std::optional<std::size_t> count_distinct_texts(const ArrayColumn& column, std::size_t enough) {
    if (column.storage == Storage::objects) return count_distinct_objects(column, enough, true);
    if (column.storage != Storage::fixed_text) return std::nullopt;
    const ArrayTextCells cells(column);
    core::TextTable table(column.rows);
    for (std::size_t row = 0; row < cells.size() && table.entries().size() < enough; ++row) {
        core::TextView text{};
        cells.read(row, text);
        table.add(text, row);
    }
    return table.entries().size();
}

Ref values_of(const ArrayColumn& column, const std::vector<DistinctRow>& distinct) {
    Ref array = new_array(distinct.size(), PyArray_DESCR(column.array));
    char* out = PyArray_BYTES(as_array(array));
    for (std::size_t i = 0; i < distinct.size(); ++i) {
        // The elements lie anywhere; of an object the count of its references is written.
        if (i + prefetched < distinct.size()) {
            const std::size_t row = distinct[i + prefetched].row;
            __builtin_prefetch(column.storage == Storage::objects ? static_cast<const void*>(column.object(row))
                                                                  : static_cast<const void*>(column.at(row)));
        }
        const std::size_t row = distinct[i].row;
        if (column.storage == Storage::objects) {
            PyObject*& place = *reinterpret_cast<PyObject**>(out);
            Ref::adopt(std::exchange(place, Ref::share(column.object(row)).give()));
        } else {
            std::memcpy(out, column.at(row), column.width);
        }
        out += column.width;
    }
    return array;
}

}  // namespace quorin::distinct
