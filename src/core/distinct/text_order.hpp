// Sorts distinct texts.
#pragma once

#include <cstdint>
#include <vector>

#include "core/distinct/text_table.hpp"

namespace quorin::core {

// The indices of the texts, in ascending order of the texts by code point.
std::vector<std::uint32_t> ascending(const std::vector<DistinctText>& texts);

}  // namespace quorin::core
