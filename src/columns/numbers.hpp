// Columns of numbers, element by element, whatever their dtype.
#pragma once

#include <cstdint>
#include <type_traits>

#include "columns/column.hpp"

namespace quorin::columns {

// A boolean may be a byte of any value, in an array that was one of bytes before; all of them but zero are true.
template <class Number>
Number load(const Column& column, std::size_t row) noexcept {
    if constexpr (std::is_same_v<Number, bool>) {
        return *column.at(row) != 0;
    } else {
        return *reinterpret_cast<const Number*>(column.at(row));
    }
}

// Calls `use` with a value of the type that the column's elements have, which tells the type and nothing else; false
// for a column that holds no plain numbers.
template <class Use>
bool with_number_type(const Column& column, Use use) {
    switch (column.storage) {
        case Storage::float64:
            return use(double{});
        case Storage::float32:
            return use(float{});
        case Storage::boolean:
            return use(bool{});
        case Storage::integer:
            break;
        case Storage::objects:
        case Storage::fixed_text:
            return false;
    }
    const bool is_signed = PyTypeNum_ISSIGNED(PyArray_TYPE(column.array));
    switch (column.width) {
        case 1:
            return is_signed ? use(std::int8_t{}) : use(std::uint8_t{});
        case 2:
            return is_signed ? use(std::int16_t{}) : use(std::uint16_t{});
        case 4:
            return is_signed ? use(std::int32_t{}) : use(std::uint32_t{});
        case 8:
            return is_signed ? use(std::int64_t{}) : use(std::uint64_t{});
        default:
            return false;
    }
}

}  // namespace quorin::columns
