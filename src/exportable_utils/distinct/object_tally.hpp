// Counts the distinct elements of an array of objects, in the order of first occurrence. Equality is that of a Python
// dictionary: 1, 1.0 and True are equal, no text equals a number, a NaN equals only the identical object.
#pragma once

#include <algorithm>
#include <vector>

#include "core/distinct/number_table.hpp"
#include "core/distinct/text_table.hpp"
#include "python/inputs/column_source.hpp"
#include "python/inputs/object_number.hpp"

namespace quorin::distinct {

// Appends to `objects` the objects of entries[objects.size()] and the following entries.
template <class Entry>
void take_objects(const ArrayColumn& column, const std::vector<Entry>& entries, std::vector<Ref>& objects) {
    constexpr std::size_t ahead = 16;
    const std::size_t size = entries.size();
    if (objects.capacity() < size) objects.reserve(std::max(size, 2 * objects.capacity()));
    for (std::size_t i = objects.size(); i < size; ++i) {
        if (i + ahead < size) __builtin_prefetch(column.object(entries[i + ahead].row), 1);
        objects.push_back(Ref::share(column.object(entries[i].row)));
    }
}

class ObjectTally {
  public:
    struct Entry {
        std::size_t row;  // the row of the first occurrence
        npy_intp count;
        ObjectNumber number;  // the first occurrence; of type `none` if it is not a number
        std::uint8_t types;   // the types of all equal elements, one bit each; see bit_of()
        bool alike;           // whether the equal elements differ only in identity
    };

    // For a column of this many rows.
    explicit ObjectTally(std::size_t rows) : text_table_(rows) {}

    // Counts one row. Returns false if the equality of the element is not known natively. `cells` are those of
    // `column`.
    bool add(const ArrayColumn& column, const ObjectCells& cells, std::size_t row);
    // Calls use(objects, first, last), which adds these rows, for consecutive ranges of the rows of a column, as
    // ColumnSource::in_blocks() does. The tables grow between two ranges.
    template <class Use>
    bool add_in_blocks(const ColumnSource& column, Use use) {
        const std::size_t rows = column.rows();
        const std::size_t block = rows > rows_between_signals ? rows_between_signals / 4 : rows;
        return in_blocks_of(block, rows, [&](std::size_t first, std::size_t last) {
            if (first != 0) make_room(last - first, last);
            const std::optional<ArrayColumn> objects = column.borrow();
            return objects && use(*objects, first, last);
        });
    }
    // Takes references to the objects of the entries, which view their texts. Call it before the borrow ends.
    void hold(const ArrayColumn& column);

    [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return entries_; }
    // The objects of the entries, up to the last call of hold().
    [[nodiscard]] std::vector<Ref>& objects() noexcept { return held_; }
    // The texts among the entries, in their order.
    [[nodiscard]] const std::vector<core::DistinctText>& texts() const noexcept { return text_table_.entries(); }
    // Whether an entry is None or NaN.
    [[nodiscard]] bool nulls() const noexcept { return nulls_; }

    static std::uint8_t bit_of(NumberType type) noexcept {
        return static_cast<std::uint8_t>(1U << static_cast<unsigned>(type));
    }

  private:
    // In steps, between which signals are answered: nothing may be borrowed.
    void make_room(std::size_t more, std::size_t rows_so_far);
    void count(std::uint32_t number, std::size_t row, const ObjectNumber& value);
    bool add_number(PyObject* value, std::size_t row, const ObjectNumber& number);
    void add_text(std::size_t row, core::TextView text, bool scalar);
    void add_object(PyObject* value, std::size_t row, const ObjectNumber& number);
    [[nodiscard]] std::uint32_t next() const noexcept { return static_cast<std::uint32_t>(entries_.size()); }

    std::vector<Entry> entries_;
    std::vector<Ref> held_;
    std::vector<std::uint32_t> text_entries_;  // the index in entries_ of each text in text_table_
    core::TextTable text_table_;
    core::NumberTable wholes_;   // whole numbers of any type
    core::NumberTable others_;   // fractions, and whole numbers beyond 64 bits
    core::NumberTable objects_;  // None and NaN, by identity
    PyObject* last_ = nullptr;   // the element of the previous row
    std::uint32_t last_number_ = 0;
    bool nulls_ = false;
    bool scalars_ = false;
    bool beyond_exact_ = false;
};

}  // namespace quorin::distinct
