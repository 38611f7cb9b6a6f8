// How often the distinct elements of an array of objects occur, in the order in which they first do. Elements are equal
// as the interpreter has it: 1, 1.0 and True are one, a text is none of them, NaN equals only itself.
#pragma once

#include <optional>
#include <vector>

#include "core/distinct/number_table.hpp"
#include "core/distinct/text_table.hpp"
#include "python/inputs/array_column.hpp"
#include "python/inputs/object_number.hpp"

namespace quorin::distinct {

class ObjectTally {
  public:
    struct Entry {
        std::size_t row;  // of the first occurrence
        npy_intp count;
        ObjectNumber number;  // of the first occurrence; of type `none` for all that is no number
        std::uint8_t types;   // of all equal elements, a bit for each
        bool alike;           // whether nothing tells the equal elements apart but their identity
    };

    explicit ObjectTally(const ArrayColumn& column) : column_(column), cells_(column), text_table_(column.rows) {}

    // False for an element whose equality is not known here.
    bool add(std::size_t row);
    [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return entries_; }
    // The texts among the entries, in their order.
    [[nodiscard]] const std::vector<core::DistinctText>& texts() const noexcept { return text_table_.entries(); }
    // Whether None or NaN is among them.
    [[nodiscard]] bool nulls() const noexcept { return nulls_; }

    static std::uint8_t bit_of(NumberType type) noexcept {
        return static_cast<std::uint8_t>(1U << static_cast<unsigned>(type));
    }

  private:
    void count(std::uint32_t number, std::size_t row, const ObjectNumber& value);
    bool add_number(std::size_t row, const ObjectNumber& number);
    void add_text(std::size_t row, core::TextView text, bool scalar);
    void add_object(std::size_t row, const ObjectNumber& number);
    [[nodiscard]] std::uint32_t next() const noexcept { return static_cast<std::uint32_t>(entries_.size()); }

    ArrayColumn column_;
    ObjectCells cells_;
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> text_entries_;  // their numbers among the entries
    core::TextTable text_table_;
    core::NumberTable wholes_;   // whatever their type
    core::NumberTable others_;   // fractions and what no 64 bits hold as a whole number
    core::NumberTable objects_;  // None and the NaN, each by itself
    PyObject* last_ = nullptr;
    std::uint32_t last_number_ = 0;
    bool nulls_ = false;
    bool scalars_ = false;
    bool beyond_exact_ = false;
};

}  // namespace quorin::distinct
