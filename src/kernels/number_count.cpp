#include "kernels/number_count.hpp"

#include <bit>
#include <cmath>
#include <limits>

namespace quorin::kernels {

namespace {

// At most half full, so that a free slot is never far.
std::size_t slots_for(std::size_t most) noexcept {
    return std::bit_ceil(2 * most + 2);
}

}  // namespace

NumberSet::NumberSet(std::size_t most)
    : mask_(slots_for(most) - 1), patterns_(slots_for(most)), used_(slots_for(most)) {}

std::uint64_t pattern_of(double value) noexcept {
    if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();
    if (value == 0.0) value = 0.0;
    return std::bit_cast<std::uint64_t>(value + 0.0);
}

}  // namespace quorin::kernels
