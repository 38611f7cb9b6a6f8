// The memory of a column: first element, stride and element type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace quorin::core {

// objects: pointers, which the core does not dereference. fixed_text: four bytes per character, padded with zeros.
// integer: one of eight types, by width and sign.
enum class Storage { objects, fixed_text, float64, float32, integer, boolean };

// Elements at a constant stride, in bytes, which may be negative or 0.
struct StridedMemory {
    const char* data;
    std::ptrdiff_t stride;
    std::size_t rows;

    [[nodiscard]] const char* at(std::size_t row) const noexcept {
        return data + static_cast<std::ptrdiff_t>(row) * stride;
    }
    // The rows begin to end - 1.
    [[nodiscard]] StridedMemory part(std::size_t begin, std::size_t end) const noexcept {
        return {at(begin), stride, end - begin};
    }
};

// Columns of one element type: the first column, the number of columns and their distance in bytes.
struct Table {
    StridedMemory first;
    std::size_t columns;
    std::ptrdiff_t column_stride;

    [[nodiscard]] StridedMemory column(std::size_t index) const noexcept {
        return {first.data + static_cast<std::ptrdiff_t>(index) * column_stride, first.stride, first.rows};
    }
    // Whether all cells are contiguous, row by row.
    [[nodiscard]] bool is_row_major(std::size_t width) const noexcept {
        return column_stride == static_cast<std::ptrdiff_t>(width) &&
               first.stride == static_cast<std::ptrdiff_t>(columns * width);
    }
};

// A view: the caller keeps the memory alive and unchanged.
struct Column : StridedMemory {
    Storage storage;
    std::size_t width;       // bytes per element
    bool is_signed = false;  // for Storage::integer
};

// A boolean is true for every byte except 0, because an array of booleans may be a view of an array of bytes.
template <class Number>
Number load(const StridedMemory& column, std::size_t row) noexcept {
    if constexpr (std::is_same_v<Number, bool>) {
        return *column.at(row) != 0;
    } else {
        return *reinterpret_cast<const Number*>(column.at(row));
    }
}

// Calls `use` with a zero of the element type and returns its result. Returns false if the elements are not numbers.
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
