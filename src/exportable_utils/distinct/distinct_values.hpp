// The distinct values of a column.
//
// Functions that take a ColumnSource allocate and answer signals, so the caller must not hold a borrow. They return
// nullopt, or an empty Ref, if numpy's result cannot be computed natively or if the column changes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/distinct/text_table.hpp"
#include "exportable_utils/distinct/growth.hpp"
#include "exportable_utils/distinct/object_tally.hpp"
#include "python/inputs/column_source.hpp"

namespace quorin::distinct {

struct DistinctRow {
    std::size_t row;  // the row of the first occurrence
    npy_intp count;
};

// The rows to skip. The caller keeps the mask alive; no other code may have a reference to it.
class ExcludedRows {
  public:
    ExcludedRows() noexcept = default;
    ExcludedRows(Object mask, std::size_t marked) noexcept
        : marked_(marked), marks_(marked == 0 ? nullptr : PyArray_BYTES(as_array(mask))) {}
    [[nodiscard]] std::size_t marked() const noexcept { return marked_; }
    // A byte for each row; null if no row is excluded.
    [[nodiscard]] const char* marks() const noexcept { return marks_; }
    [[nodiscard]] bool has(std::size_t row) const noexcept { return marks_ != nullptr && marks_[row] != 0; }

  private:
    std::size_t marked_ = 0;
    const char* marks_ = nullptr;
};

struct ValuesAndCounts {
    Ref values;
    Ref counts;
};

// numpy.unique(column[~mask], return_counts=True). Texts, and numbers in an array of objects, are hashed first, so that
// only the distinct ones are sorted. Returns nullopt if numpy's sort would fail, or if the result depends on which of
// several equal but different objects the sort puts first: 1, 1.0 and True; 0.0 and -0.0.
std::optional<ValuesAndCounts> distinct_values(const ColumnSource& column, const ExcludedRows& excluded);

// While one exists, distinct_values() gives up at once for this array, which is known not to be sortable natively. For
// callers that pass the array to get_unique_values() by name.
class KnownUnsortable {
  public:
    explicit KnownUnsortable(Object array) noexcept : array_(Ref::share(array)), outer_(std::exchange(inner, this)) {}
    ~KnownUnsortable() { inner = outer_; }
    KnownUnsortable(const KnownUnsortable&) = delete;
    KnownUnsortable& operator=(const KnownUnsortable&) = delete;
    KnownUnsortable(KnownUnsortable&&) = delete;
    KnownUnsortable& operator=(KnownUnsortable&&) = delete;
    static bool is(Object array) noexcept {
        for (const KnownUnsortable* known = inner; known != nullptr; known = known->outer_) {
            if (known->array_.is(array)) return true;
        }
        return false;
    }

  private:
    Ref array_;
    KnownUnsortable* outer_;
    static inline thread_local KnownUnsortable* inner = nullptr;
};

// min(enough, number of distinct values that numpy.unique() finds), for a column of numbers of any dtype, objects
// included. All NaN count as one value. Returns nullopt for texts, and if an object is null or of another type.
std::optional<std::size_t> count_distinct_numbers(const ColumnSource& column, std::size_t enough);

// The same for a column of texts.
std::optional<std::size_t> count_distinct_texts(const ColumnSource& column, std::size_t enough);

// Elements of a column of objects or of fixed-width text, taken while it is borrowed.
class TakenElements {
  public:
    void add(const ArrayColumn& column, std::size_t row);
    // A new array of the column's dtype with these elements. Foreign code: nothing may be borrowed.
    Ref array(const ColumnSource& column);

  private:
    std::vector<Ref> objects_;
    std::vector<char> texts_;
};

// The distinct texts of a column, in the order of first occurrence.
class DistinctTexts {
  public:
    // For a column of this many rows.
    explicit DistinctTexts(std::size_t rows) : table_(rows) {}
    // Adds the rows `first` to `last` - 1 for which skip(row) is false. Returns false if one of them is not a text.
    template <class Skip>
    bool add(const ArrayColumn& column, std::size_t first, std::size_t last, Skip skip) {
        if (column.storage == Storage::fixed_text) {
            return core::add_rows(table_, ArrayTextCells(column), first, last, skip);
        }
        if (!core::add_rows(table_, ObjectCells(column), first, last, skip)) return false;
        // Owned, so that the entries stay valid after the borrow.
        take_objects(column, entries(), objects_);
        return true;
    }
    // Adds all rows of a column for which skip(column, row) is false. Returns false as add() does, or if the column
    // changes.
    template <class Skip>
    bool add_all(const ColumnSource& column, Skip skip) {
        constexpr std::size_t step = rows_between_signals / 4;
        const std::size_t rows = column.rows();
        const bool is_long = rows > rows_between_signals;
        return in_blocks_of(is_long ? step : rows, rows, [&](std::size_t first, std::size_t last) {
            if (is_long) make_room(last - first, last);
            const std::optional<ArrayColumn> texts = column.borrow();
            if (!texts) return false;
            const auto skip_row = [&](std::size_t row) { return skip(*texts, row); };
            if (!add(*texts, first, last, skip_row)) return false;
            added_ = last;
            return true;
        });
    }
    // Grows the table in steps, and answers signals between them.
    void make_room(std::size_t more, std::size_t rows_so_far) {
        SignalTimer timer;
        grow(table_, timer, more, rows_so_far);
        if (!objects_.empty()) grow(objects_, timer, more);
    }
    // The number of rows that add_all() has added.
    [[nodiscard]] std::size_t added() const noexcept { return added_; }
    // For fixed-width text the entries view the array's memory: check that it has not changed before you read them.
    [[nodiscard]] const std::vector<core::DistinctText>& entries() const noexcept { return table_.entries(); }
    [[nodiscard]] std::vector<core::DistinctText> take_entries() noexcept { return table_.take_entries(); }
    // The object of each entry, for a column of objects.
    [[nodiscard]] std::vector<Ref>& objects() noexcept { return objects_; }

  private:
    core::TextTable table_;
    std::vector<Ref> objects_;
    std::size_t added_ = 0;
};

}  // namespace quorin::distinct
