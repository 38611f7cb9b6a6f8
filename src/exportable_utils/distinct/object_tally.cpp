#include "exportable_utils/distinct/object_tally.hpp"

#include <bit>
#include <cmath>

#include "exportable_utils/distinct/growth.hpp"

namespace quorin::distinct {

namespace {

// 2^63, the smallest integer that does not fit in a signed 64-bit integer.
constexpr double beyond_64_bits = 9223372036854775808.0;

bool can_be_distinguished(const ObjectNumber& left, const ObjectNumber& right) noexcept {
    return left.type != right.type || left.scalar != right.scalar ||
           std::signbit(left.real) != std::signbit(right.real);
}

}  // namespace

void ObjectTally::count(std::uint32_t number, std::size_t row, const ObjectNumber& value) {
    last_number_ = number;
    if (number == next()) {
        entries_.push_back({row, 1, value, bit_of(value.type), true});
        return;
    }
    Entry& entry = entries_[number];
    ++entry.count;
    entry.types |= bit_of(value.type);
    entry.alike = entry.alike && !can_be_distinguished(entry.number, value);
}

bool ObjectTally::add(const ArrayColumn& column, const ObjectCells& cells, std::size_t row) {
    cells.prefetch(row + core::prefetch_distance);
    PyObject* value = column.object(row);
    if (value == nullptr) return false;
    // Short cut: consecutive elements are often the same object.
    if (value == last_) {
        ++entries_[last_number_].count;
        return true;
    }
    core::TextView text{};
    if (cells.read(row, text) == core::Cell::text) {
        add_text(row, text, false);
    } else if (const ObjectNumber number = object_number_of(value); number.type != NumberType::none) {
        if (!add_number(value, row, number)) return false;
    } else if (value == Py_None) {
        add_object(value, row, number);
    } else if (is_plain_text(value)) {
        const std::optional<core::TextView> scalar = text_view_of(value);
        if (!scalar) return false;
        add_text(row, *scalar, true);
    } else {
        return false;
    }
    last_ = value;
    return true;
}

void ObjectTally::make_room(std::size_t more, std::size_t rows_so_far) {
    SignalTimer timer;
    grow(entries_, timer, more);
    grow(held_, timer, more);
    if (!texts().empty()) {
        grow(text_entries_, timer, more);
        grow(text_table_, timer, more, rows_so_far);
    }
    for (core::NumberTable* table : {&wholes_, &others_, &objects_}) {
        if (table->size() != 0) grow(*table, timer, more);
    }
}

void ObjectTally::hold(const ArrayColumn& column) {
    take_objects(column, entries_, held_);
    // It may be an object that no entry owns, which foreign code can free.
    last_ = nullptr;
}

void ObjectTally::add_object(PyObject* value, std::size_t row, const ObjectNumber& number) {
    nulls_ = true;
    count(objects_.find_or_add(reinterpret_cast<std::uintptr_t>(value), next()), row, number);
}

bool ObjectTally::add_number(PyObject* value, std::size_t row, const ObjectNumber& number) {
    if (number.type == NumberType::large) return false;
    // numpy rounds large integers when it compares them with a scalar.
    scalars_ = scalars_ || number.scalar;
    beyond_exact_ = beyond_exact_ || number.beyond_exact();
    if (scalars_ && beyond_exact_) return false;
    const auto count_whole = [&](std::int64_t key) {
        count(wholes_.find_or_add(static_cast<std::uint64_t>(key), next()), row, number);
    };
    if (number.type != NumberType::real) {
        count_whole(number.whole);
    } else if (std::isnan(number.real)) {
        add_object(value, row, number);
    } else if (-beyond_64_bits <= number.real && number.real < beyond_64_bits && is_whole(number.real)) {
        count_whole(static_cast<std::int64_t>(number.real));
    } else {
        count(others_.find_or_add(std::bit_cast<std::uint64_t>(number.real), next()), row, number);
    }
    return true;
}

void ObjectTally::add_text(std::size_t row, core::TextView text, bool scalar) {
    const std::uint32_t found = text_table_.add(text, row);
    if (found == text_entries_.size()) text_entries_.push_back(next());
    count(text_entries_[found], row, {NumberType::none, scalar, 0, 0});
}

}  // namespace quorin::distinct
