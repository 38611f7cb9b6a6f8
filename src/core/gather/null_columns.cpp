#include "core/gather/null_columns.hpp"

#include <algorithm>
#include <cstring>

#include "core/simd/packs.hpp"

namespace quorin::core {

namespace {

template <class Float>
bool any_null(const char* data, std::size_t size) noexcept {
    constexpr std::size_t together = sizeof(Numbers<Float>) / sizeof(Float);
    const auto nulls_at = [&](std::size_t i) {
        Numbers<Float> numbers;
        std::memcpy(&numbers, data + i * sizeof(Float), sizeof numbers);
        return is_null<Float>(numbers);
    };
    Bytes even{};
    Bytes odd{};
    std::size_t i = 0;
    for (; size - i >= 2 * together; i += 2 * together) {
        even |= nulls_at(i);
        odd |= nulls_at(i + together);
    }
    bool found = any_set(even | odd);
    for (; i < size; ++i) {
        Float number;
        std::memcpy(&number, data + i * sizeof(Float), sizeof number);
        found = found || number != number;
    }
    return found;
}

template <class Float>
bool any_null_apart(const char* data, std::ptrdiff_t stride, std::size_t size) noexcept {
    bool found = false;
    for (std::size_t i = 0; i < size; ++i) {
        Float number;
        std::memcpy(&number, data + static_cast<std::ptrdiff_t>(i) * stride, sizeof number);
        found |= number != number;
    }
    return found;
}

template <class Float>
bool column_has_null(const FloatTable& table, std::size_t column, std::size_t begin, std::size_t end) noexcept {
    const char* data = table.data + static_cast<std::ptrdiff_t>(column) * table.column_stride +
                       static_cast<std::ptrdiff_t>(begin) * table.row_stride;
    return table.row_stride == sizeof(Float) ? any_null<Float>(data, end - begin)
                                             : any_null_apart<Float>(data, table.row_stride, end - begin);
}

}  // namespace

// Block by block, so that the columns of a row-major table share the memory that is read for one of them. A block
// without any null takes one walk for all columns.
template <class Float>
std::vector<bool> null_columns(const FloatTable& table, bool one_is_enough) {
    constexpr std::size_t block_size = 4096;
    const bool row_major = table.column_stride == sizeof(Float) &&
                           table.row_stride == static_cast<std::ptrdiff_t>(table.columns * sizeof(Float));
    std::vector<bool> found(table.columns);
    std::size_t left = table.columns;
    const std::size_t together = std::max<std::size_t>(1, block_size / std::max<std::size_t>(1, table.columns));
    for (std::size_t begin = 0; begin < table.rows && left != 0; begin += together) {
        const std::size_t end = std::min(table.rows, begin + together);
        const char* block = table.data + static_cast<std::ptrdiff_t>(begin) * table.row_stride;
        if (row_major && !any_null<Float>(block, (end - begin) * table.columns)) continue;
        for (std::size_t column = 0; column < table.columns; ++column) {
            if (found[column] || !column_has_null<Float>(table, column, begin, end)) continue;
            found[column] = true;
            --left;
            if (one_is_enough) return found;
        }
    }
    return found;
}

template std::vector<bool> null_columns<double>(const FloatTable&, bool);
template std::vector<bool> null_columns<float>(const FloatTable&, bool);

}  // namespace quorin::core
