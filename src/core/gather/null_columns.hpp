// Finds the columns with nulls in a table of floats.
#pragma once

#include <vector>

#include "core/column.hpp"
#include "core/simd/instructions.hpp"

namespace quorin::core {

// For each column, whether it holds a null. With `one_is_enough` the search ends at the first column that does.
template <class Float>
std::vector<bool> null_columns(const Table& table, bool one_is_enough, Instructions allowed = Instructions::best);

template <class Float>
bool any_signalling_nan(const Table& table, Instructions allowed = Instructions::best) noexcept;

}  // namespace quorin::core
