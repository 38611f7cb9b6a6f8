#include "core/gather/null_columns.hpp"

#include <algorithm>

#include "core/gather/number_facts.hpp"
#include "core/simd/number_tests.hpp"

namespace quorin::core {

namespace {

// The cells of a range of rows of a row-major table, as one column.
template <class Float>
StridedMemory cells_of(const Table& table, std::size_t begin, std::size_t end) noexcept {
    return {table.first.at(begin), sizeof(Float), (end - begin) * table.columns};
}

}  // namespace

// Works in blocks of rows, because the columns of a row-major table share cache lines. A block of such a table that has
// no null takes one pass for all columns.
template <class Float>
std::vector<bool> null_columns(const Table& table, bool one_is_enough, Instructions allowed) {
    constexpr std::size_t block_size = 4096;
    const NumberTests<Float>& tests = number_tests<Float>(allowed);
    const bool row_major = table.is_row_major(sizeof(Float));
    std::vector<bool> found(table.columns);
    std::size_t left = table.columns;
    const std::size_t rows = table.first.rows;
    const std::size_t together = std::max<std::size_t>(1, block_size / std::max<std::size_t>(1, table.columns));
    for (std::size_t begin = 0; begin < rows && left != 0; begin += together) {
        const std::size_t end = std::min(rows, begin + together);
        if (row_major && !tests.any_null(cells_of<Float>(table, begin, end))) continue;
        for (std::size_t column = 0; column < table.columns; ++column) {
            if (found[column] || !tests.any_null(table.column(column).part(begin, end))) continue;
            found[column] = true;
            --left;
            if (one_is_enough) return found;
        }
    }
    return found;
}

template std::vector<bool> null_columns<double>(const Table&, bool, Instructions);
template std::vector<bool> null_columns<float>(const Table&, bool, Instructions);

template <class Float>
bool any_signalling_nan(const Table& table, Instructions allowed) noexcept {
    if (table.is_row_major(sizeof(Float))) {
        return any_signalling_nan<Float>(cells_of<Float>(table, 0, table.first.rows), allowed);
    }
    for (std::size_t column = 0; column < table.columns; ++column) {
        if (any_signalling_nan<Float>(table.column(column), allowed)) return true;
    }
    return false;
}

template bool any_signalling_nan<double>(const Table&, Instructions) noexcept;
template bool any_signalling_nan<float>(const Table&, Instructions) noexcept;

}  // namespace quorin::core
