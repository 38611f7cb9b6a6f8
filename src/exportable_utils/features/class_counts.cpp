#include "exportable_utils/features/class_counts.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/column.hpp"
#include "core/distinct/number_table.hpp"
#include "core/distinct/text_table.hpp"
#include "exportable_utils/distinct/growth.hpp"
#include "exportable_utils/distinct/object_tally.hpp"
#include "exportable_utils/references/matching_rows.hpp"
#include "python/errors.hpp"
#include "python/new_text.hpp"

namespace quorin::features {

namespace {

using distinct::DistinctRow;
using distinct::ExcludedRows;

constexpr std::size_t elements_between_polls = 4096;

template <class Entry>
std::vector<DistinctRow> rows_of_entries(const std::vector<Entry>& entries) {
    std::vector<DistinctRow> rows;
    rows.reserve(entries.size());
    SignalTimer timer;
    for (const Entry& entry : entries) {
        if (rows.size() % elements_between_polls == elements_between_polls - 1) timer.poll();
        rows.push_back({entry.row, static_cast<npy_intp>(entry.count)});
    }
    return rows;
}

// `skip` takes the borrowed column and a row.
template <class Skip>
std::optional<Classes> text_classes(const ColumnSource& column, Skip skip) {
    distinct::DistinctTexts texts(column.rows());
    if (!texts.add_all(column, skip)) return std::nullopt;
    return Classes{rows_of_entries(texts.entries()), std::move(texts.objects())};
}

template <class Skip>
std::optional<Classes> tallied_classes(const ColumnSource& column, Skip skip) {
    distinct::ObjectTally tally(column.rows());
    const bool known =
        tally.add_in_blocks(column, [&](const ArrayColumn& objects, std::size_t first, std::size_t last) {
            const ObjectCells cells(objects);
            for (std::size_t row = first; row < last; ++row) {
                if (!skip(objects, row) && !tally.add(objects, cells, row)) return false;
            }
            tally.hold(objects);
            return true;
        });
    if (!known) return std::nullopt;
    return Classes{rows_of_entries(tally.entries()), std::move(tally.objects())};
}

template <class Skip>
bool starts_with_text(const ColumnSource& column, Skip skip) {
    const std::optional<ArrayColumn> objects = column.borrow();
    if (!objects) return false;
    std::size_t row = 0;
    while (row < objects->rows && skip(*objects, row)) ++row;
    return row < objects->rows && is_exact_text(objects->object(row));
}

std::optional<Classes> object_classes(const ColumnSource& column, const ExcludedRows& excluded,
                                      const std::vector<PyObject*>& excluded_nulls) {
    const auto skip = [&](const ArrayColumn& objects, std::size_t row) {
        if (excluded.has(row)) return true;
        return !excluded_nulls.empty() &&
               std::find(excluded_nulls.begin(), excluded_nulls.end(), objects.object(row)) != excluded_nulls.end();
    };
    if (starts_with_text(column, skip)) {
        if (auto classes = text_classes(column, skip)) return classes;
    }
    return tallied_classes(column, skip);
}

class NumberClasses {
  public:
    template <class Number>
    void add(const ArrayColumn& column, std::size_t first, std::size_t last, const ExcludedRows& excluded) {
        constexpr std::size_t ahead = 16;
        std::uint64_t last_key = 0;
        std::uint32_t last_class = 0;
        bool any = false;
        for (std::size_t row = first; row < last; ++row) {
            if (excluded.has(row)) continue;
            if (row + ahead < column.rows) table_.prefetch(core::key_of(core::load<Number>(column, row + ahead)));
            const Number value = core::load<Number>(column, row);
            if constexpr (std::is_floating_point_v<Number>) {
                if (std::isnan(value)) {
                    classes_.push_back({row, 1});
                    continue;
                }
            }
            const std::uint64_t key = core::key_of(value);
            const auto next = static_cast<std::uint32_t>(classes_.size());
            // Searches once for a run of equal values.
            if (!any || key != last_key) {
                last_class = table_.find_or_add(key, next);
                last_key = key;
                any = true;
            }
            if (last_class == next) classes_.push_back({row, 0});
            ++classes_[last_class].count;
        }
    }
    // In steps, between which signals are answered: nothing may be borrowed.
    void make_room(std::size_t more) {
        SignalTimer timer;
        distinct::grow(table_, timer, more);
        distinct::grow(classes_, timer, more);
    }
    [[nodiscard]] std::vector<DistinctRow>& classes() noexcept { return classes_; }

  private:
    core::NumberTable table_;
    std::vector<DistinctRow> classes_;
};

std::optional<Classes> number_classes(const ColumnSource& column, const ExcludedRows& excluded) {
    NumberClasses counted;
    const bool known = in_blocks(column.rows(), [&](std::size_t first, std::size_t last) {
        if (first != 0) counted.make_room(last - first);
        const std::optional<ArrayColumn> numbers = column.borrow();
        if (!numbers) return false;
        return core::with_number_type(*numbers, [&](auto type) {
            counted.add<decltype(type)>(*numbers, first, last, excluded);
            return true;
        });
    });
    if (!known) return std::nullopt;
    return Classes{std::move(counted.classes()), {}};
}

// Counts false and true without a hash table.
std::optional<Classes> boolean_classes(const ColumnSource& column, const ExcludedRows& excluded) {
    std::array<DistinctRow, 2> found{};
    const bool known = column.in_blocks([&](const ArrayColumn& values, std::size_t first, std::size_t last) {
        for (std::size_t row = first; row < last; ++row) {
            if (excluded.has(row)) continue;
            DistinctRow& entry = found[core::load<bool>(values, row) ? 1 : 0];
            if (entry.count++ == 0) entry.row = row;
        }
        return true;
    });
    if (!known) return std::nullopt;
    if (found[0].row > found[1].row) std::swap(found[0], found[1]);
    Classes classes;
    for (const DistinctRow& entry : found) {
        if (entry.count != 0) classes.rows.push_back(entry);
    }
    return classes;
}

// array[row], with a fast path for the two most frequent dtypes.
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

// array[row], but a str for an element of fixed-width text; see make_text_scalars().
Ref number_or_text_at(const ArrayColumn& column, std::size_t row) {
    if (column.storage != Storage::fixed_text) return scalar_at(column, row);
    core::TextView text{};
    ArrayTextCells(column).read(row, text);
    return new_text(text);
}

bool copy_elements(const ColumnSource& column, const std::vector<DistinctRow>& rows, std::vector<Ref>& elements) {
    elements.reserve(rows.size());
    LongBorrow borrow(column);
    for (const DistinctRow& entry : rows) {
        if (elements.size() % elements_between_polls == elements_between_polls - 1) borrow.pause();
        if (!borrow.column()) return false;
        elements.push_back(number_or_text_at(*borrow.column(), entry.row));
    }
    return true;
}

// Converts str objects to numpy.str_, the scalars of a text array.
void make_text_scalars(std::vector<Ref>& texts) {
    SignalTimer timer;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i % elements_between_polls == elements_between_polls - 1) timer.poll();
        texts[i] = text_scalar(texts[i]);
    }
}

}  // namespace

std::optional<Classes> classes_of(const ColumnSource& column, const references::References& excluded) {
    if (column.rows() > core::TextTable::most_rows) return std::nullopt;
    std::vector<PyObject*> excluded_nulls;
    for (const Ref& value : excluded.objects) {
        if (is_exact_null(value.get())) excluded_nulls.push_back(value.get());
    }
    references::Members by_equality;
    if (excluded_nulls.size() < excluded.objects.size()) {
        auto found = references::find_members(column, excluded, references::Match::without_nulls);
        if (!found) return std::nullopt;
        by_equality = std::move(*found);
    }
    const ExcludedRows excluded_rows(by_equality.mask, by_equality.marked);
    switch (column.storage()) {
        case Storage::objects:
            return object_classes(column, excluded_rows, excluded_nulls);
        case Storage::fixed_text:
            return text_classes(column,
                                [&](const ArrayColumn& /*texts*/, std::size_t row) { return excluded_rows.has(row); });
        case Storage::boolean:
            return boolean_classes(column, excluded_rows);
        case Storage::float64:
        case Storage::float32:
        case Storage::integer:
            break;
    }
    return number_classes(column, excluded_rows);
}

std::optional<std::vector<Ref>> elements_of(const ColumnSource& column, Classes& classes) {
    if (column.storage() == Storage::objects) return std::move(classes.objects);
    std::vector<Ref> elements;
    if (!copy_elements(column, classes.rows, elements)) return std::nullopt;
    if (column.storage() == Storage::fixed_text) make_text_scalars(elements);
    return elements;
}

}  // namespace quorin::features
