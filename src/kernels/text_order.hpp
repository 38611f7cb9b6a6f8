// Sorting different texts.
#pragma once

#include <cstdint>
#include <vector>

#include "kernels/text_table.hpp"

namespace quorin::kernels {

// The numbers of the texts in ascending order by code point.
std::vector<std::uint32_t> ascending(const std::vector<DistinctText>& texts);

}  // namespace quorin::kernels
