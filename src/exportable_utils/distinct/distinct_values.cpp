#include "exportable_utils/distinct/distinct_values.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/column.hpp"
#include "core/distinct/key_order.hpp"
#include "core/distinct/long_text_order.hpp"
#include "core/distinct/number_table.hpp"
#include "exportable_utils/distinct/distinct_numbers.hpp"
#include "python/errors.hpp"
#include "python/inputs/object_slots.hpp"

namespace quorin::distinct {

namespace {

using Order = std::vector<std::uint32_t>;  // indices of entries

// Entries in sorted order are spread over memory, so they are prefetched this far ahead.
constexpr std::size_t prefetched = 16;

// This many entries take a few milliseconds, because of cache misses.
constexpr std::size_t entries_between_signals = std::size_t{1} << 14U;

// Puts an object into a slot of a new array of objects, which holds None or null.
void put(char* place, Ref object) noexcept {
    replace_object(reinterpret_cast<PyObject**>(place), std::move(object));
}

Ref array_of_objects(PyArray_Descr* dtype, const Order& order, std::vector<Ref>& objects) {
    Ref array = new_nulls(order.size(), dtype);
    char* out = PyArray_BYTES(as_array(array));
    in_blocks_of(entries_between_signals, order.size(), [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i, out += sizeof(PyObject*)) put(out, std::move(objects[order[i]]));
        return true;
    });
    return array;
}

template <class Entry>
Ref array_of_fixed_texts(const ColumnSource& column, PyArray_Descr* dtype, const std::vector<Entry>& entries,
                         const Order& order) {
    Ref array = new_array(order.size(), dtype);
    char* out = PyArray_BYTES(as_array(array));
    const bool done = in_blocks_of(entries_between_signals, order.size(), [&](std::size_t first, std::size_t last) {
        const std::optional<ArrayColumn> texts = column.borrow();
        if (!texts) return false;
        for (std::size_t i = first; i < last; ++i, out += texts->width) {
            if (i + prefetched < last) __builtin_prefetch(texts->at(entries[order[i + prefetched]].row));
            std::memcpy(out, texts->at(entries[order[i]].row), texts->width);
        }
        return true;
    });
    return done ? std::move(array) : Ref();
}

template <class Entry>
Ref array_of_counts(const std::vector<Entry>& entries, const Order& order) {
    Ref array = new_array(order.size(), NPY_INTP);
    auto* counts = reinterpret_cast<npy_intp*>(PyArray_BYTES(as_array(array)));
    in_blocks_of(entries_between_signals, order.size(), [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            if (i + prefetched < last) __builtin_prefetch(&entries[order[i + prefetched]]);
            counts[i] = static_cast<npy_intp>(entries[order[i]].count);
        }
        return true;
    });
    return array;
}

// The entries in `order`. Returns nullopt if it is empty, which means that they cannot be sorted.
template <class Entry>
std::optional<ValuesAndCounts> arrays_of(const ColumnSource& column, const std::vector<Entry>& entries,
                                         const Order& order, std::vector<Ref>& objects) {
    const Ref dtype = column.dtype();
    if (order.empty() || !dtype) return std::nullopt;
    auto* descriptor = reinterpret_cast<PyArray_Descr*>(dtype.get());
    ValuesAndCounts found;
    found.counts = array_of_counts(entries, order);
    found.values = column.storage() == Storage::objects ? array_of_objects(descriptor, order, objects)
                                                        : array_of_fixed_texts(column, descriptor, entries, order);
    if (!found.values) return std::nullopt;
    return found;
}

// The ascending order of numbers; empty if they cannot be sorted natively. Integers are sorted as int64. If floats
// occur too, all are sorted as float64, for which each integer has to be exact. Answers signals.
Order ascending_numbers(const std::vector<ObjectTally::Entry>& entries) {
    const bool reals = std::any_of(entries.begin(), entries.end(), [](const ObjectTally::Entry& entry) {
        return entry.number.type == NumberType::real;
    });
    SignalTimer timer;
    std::vector<core::Keyed> keyed;
    keyed.reserve(entries.size());
    for (const ObjectTally::Entry& entry : entries) {
        if (keyed.size() % entries_between_signals == entries_between_signals - 1) timer.poll();
        const ObjectNumber& number = entry.number;
        if (!entry.alike || number.type == NumberType::none) return {};
        const auto position = static_cast<std::uint32_t>(keyed.size());
        if (!reals) {
            keyed.push_back({core::key_of_whole(number.whole), position});
        } else if (number.type == NumberType::real) {
            keyed.push_back({core::key_of_real(number.real), position});
        } else if (number.beyond_exact()) {
            return {};
        } else {
            keyed.push_back({core::key_of_real(static_cast<double>(number.whole)), position});
        }
    }
    core::sort_by_key(keyed, [&] { timer.poll(); });
    Order order;
    order.reserve(keyed.size());
    for (const core::Keyed& key : keyed) order.push_back(key.number);
    return order;
}

// Whether numpy can sort the elements: all are texts or all are numbers, and none is null.
bool sortable(const ObjectTally& tally) noexcept {
    return !tally.nulls() && (tally.texts().empty() || tally.texts().size() == tally.entries().size());
}

std::optional<ValuesAndCounts> sorted_objects(const ColumnSource& column, const ExcludedRows& excluded) {
    ObjectTally tally(column.rows());
    const bool done = tally.add_in_blocks(column, [&](const ArrayColumn& objects, std::size_t first, std::size_t last) {
        const ObjectCells cells(objects);
        for (std::size_t row = first; row < last; ++row) {
            if (excluded.has(row)) continue;
            if (!tally.add(objects, cells, row) || !sortable(tally)) return false;
        }
        tally.hold(objects);
        return true;
    });
    if (!done) return std::nullopt;
    if (tally.texts().empty()) {
        return arrays_of(column, tally.entries(), ascending_numbers(tally.entries()), tally.objects());
    }
    const bool alike = std::all_of(tally.entries().begin(), tally.entries().end(),
                                   [](const ObjectTally::Entry& entry) { return entry.alike; });
    if (!alike) return std::nullopt;
    SignalTimer timer;
    const Order order = core::ascending_in_steps(tally.texts(), [&] {
        timer.poll();
        return true;
    });
    return arrays_of(column, tally.entries(), order, tally.objects());
}

std::optional<ValuesAndCounts> sorted_texts(const ColumnSource& column, DistinctTexts& texts) {
    const std::vector<core::DistinctText> entries = texts.take_entries();
    Order order;
    {
        LongBorrow borrow(column);
        if (!borrow.column()) return std::nullopt;
        order = core::ascending_in_steps(entries, [&] { return borrow.pause(); });
    }
    return arrays_of(column, entries, order, texts.objects());
}

// Whether an ObjectTally may be able to sort a column that starts with a text and of which the rows from `row` on are
// not hashed yet: the next element that is not a str has to be a numpy.str_.
bool has_text_scalar_next(const ColumnSource& column, const ExcludedRows& excluded, std::size_t row) {
    const std::optional<ArrayColumn> objects = column.borrow();
    if (!objects || objects->storage != Storage::objects) return false;
    while (row < objects->rows && (excluded.has(row) || is_exact_text(objects->object(row)))) ++row;
    return row < objects->rows && objects->object(row) != nullptr && is_plain_text(objects->object(row));
}

bool hash_texts(const ColumnSource& column, const ExcludedRows& excluded, DistinctTexts& texts) {
    if (excluded.marked() == 0) return texts.add_all(column, [](const ArrayColumn&, std::size_t) { return false; });
    return texts.add_all(column, [&](const ArrayColumn&, std::size_t row) { return excluded.has(row); });
}

// Whether the first element that is not excluded is a text.
bool starts_with_text(const ColumnSource& column, const ExcludedRows& excluded) {
    const std::optional<ArrayColumn> objects = column.borrow();
    if (!objects || objects->storage == Storage::fixed_text) return objects.has_value();
    std::size_t row = 0;
    while (excluded.has(row)) ++row;
    return is_exact_text(objects->object(row));
}

// Checks all rows, also after `enough` values: a later element may not be sortable.
std::optional<std::size_t> count_distinct_objects(const ColumnSource& column, std::size_t enough, bool texts) {
    ObjectTally tally(column.rows());
    const bool done = tally.add_in_blocks(column, [&](const ArrayColumn& objects, std::size_t first, std::size_t last) {
        const ObjectCells cells(objects);
        for (std::size_t row = first; row < last; ++row) {
            if (tally.entries().size() >= enough) {
                PyObject* value = objects.object(row);
                if (value == nullptr || !(texts ? is_plain_text(value) : is_sortable_number(value))) return false;
                continue;
            }
            if (!tally.add(objects, cells, row) || !sortable(tally) || tally.texts().empty() == texts) return false;
        }
        tally.hold(objects);
        return true;
    });
    if (!done) return std::nullopt;
    return tally.entries().size();
}

// An upper bound of the number of distinct values, by the dtype and the number of rows.
std::size_t possible_numbers(const ColumnSource& column) noexcept {
    constexpr std::size_t bytes = 256;
    if (column.storage() == Storage::boolean) return 2;
    return column.width() == 1 ? bytes : column.rows();
}

}  // namespace

std::optional<ValuesAndCounts> distinct_values(const ColumnSource& column, const ExcludedRows& excluded) {
    if (column.storage() != Storage::objects && column.storage() != Storage::fixed_text) {
        return distinct_numbers(column, excluded);
    }
    // numpy returns an array of another dtype if no element is left.
    if (excluded.marked() == column.rows() || column.rows() > core::TextTable::most_rows) return std::nullopt;
    if (KnownUnsortable::is(column.array())) return std::nullopt;
    if (starts_with_text(column, excluded)) {
        DistinctTexts texts(column.rows());
        if (hash_texts(column, excluded, texts)) return sorted_texts(column, texts);
        if (!has_text_scalar_next(column, excluded, texts.added())) return std::nullopt;
    }
    return sorted_objects(column, excluded);
}

std::optional<std::size_t> count_distinct_numbers(const ColumnSource& column, std::size_t enough) {
    if (column.storage() == Storage::objects) return count_distinct_objects(column, enough, false);
    enough = std::min(enough, possible_numbers(column));
    core::NumberTable table;
    std::uint32_t distinct = 0;
    const bool counted = column.in_blocks([&](const ArrayColumn& numbers, std::size_t first, std::size_t last) {
        return core::with_number_type(numbers, [&](auto type) {
            using Number = decltype(type);
            for (std::size_t row = first; row < last && distinct < enough; ++row) {
                const std::uint64_t key = core::key_of(core::load<Number>(numbers, row));
                if (table.find_or_add(key, distinct) == distinct) ++distinct;
            }
            return true;
        });
    });
    if (!counted) return std::nullopt;
    return distinct;
}

std::optional<std::size_t> count_distinct_texts(const ColumnSource& column, std::size_t enough) {
    if (column.storage() == Storage::objects) return count_distinct_objects(column, enough, true);
    if (column.storage() != Storage::fixed_text) return std::nullopt;
    core::TextTable table(column.rows());
    const bool done = column.in_blocks([&](const ArrayColumn& texts, std::size_t first, std::size_t last) {
        const ArrayTextCells cells(texts);
        for (std::size_t row = first; row < last && table.entries().size() < enough; ++row) {
            core::TextView text{};
            cells.read(row, text);
            table.add(text, row);
        }
        return true;
    });
    if (!done) return std::nullopt;
    return table.entries().size();
}

void TakenElements::add(const ArrayColumn& column, std::size_t row) {
    if (column.storage == Storage::objects) {
        objects_.push_back(Ref::share(column.object(row)));
    } else {
        texts_.insert(texts_.end(), column.at(row), column.at(row) + column.width);
    }
}

Ref TakenElements::array(const ColumnSource& column) {
    const Ref dtype = column.dtype();
    if (!dtype) return {};
    auto* descriptor = reinterpret_cast<PyArray_Descr*>(dtype.get());
    if (column.storage() != Storage::objects) {
        Ref array = new_array(texts_.size() / column.width(), descriptor);
        std::copy(texts_.begin(), texts_.end(), PyArray_BYTES(as_array(array)));
        return array;
    }
    Ref array = new_nulls(objects_.size(), descriptor);
    char* out = PyArray_BYTES(as_array(array));
    for (Ref& object : objects_) {
        put(out, std::move(object));
        out += sizeof(PyObject*);
    }
    return array;
}

}  // namespace quorin::distinct
