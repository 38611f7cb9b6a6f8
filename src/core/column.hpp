// A column as memory: where its elements start, how far apart they are, what type they have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace quorin::core {

// `objects`: pointers that only the owner of the memory can follow. `fixed_text`: four bytes a character, padded with
// zeros. `integer` is one of eight types, by width and sign.
enum class Storage { objects, fixed_text, float64, float32, integer, boolean };

// Elements at equal distances. `stride` in bytes; it may be negative or 0.
struct StridedMemory {
    const char* data;
    std::ptrdiff_t stride;
    std::size_t rows;

    [[nodiscard]] const char* at(std::size_t row) const noexcept {
        return data + static_cast<std::ptrdiff_t>(row) * stride;
    }
};

// A view: the memory must stay alive and unchanged while it is in use.
struct Column : StridedMemory {
    Storage storage;
    std::size_t width;       // bytes of one element
    bool is_signed = false;  // of an integer
};

// A boolean may be any byte, in an array that was one of bytes before; every byte but 0 is true.
template <class Number>
Number load(const StridedMemory& column, std::size_t row) noexcept {
    if constexpr (std::is_same_v<Number, bool>) {
        return *column.at(row) != 0;
    } else {
        return *reinterpret_cast<const Number*>(column.at(row));
    }
}

// Calls `use` with a zero of the type of the column's elements and returns its result; false for a column that does
// not hold numbers.
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
    switch (column.width) {
        case 1:
            return column.is_signed ? use(std::int8_t{}) : use(std::uint8_t{});
        case 2:
            return column.is_signed ? use(std::int16_t{}) : use(std::uint16_t{});
        case 4:
            return column.is_signed ? use(std::int32_t{}) : use(std::uint32_t{});
        case 8:
            return column.is_signed ? use(std::int64_t{}) : use(std::uint64_t{});
        default:
            return false;
    }
}

}  // namespace quorin::core
