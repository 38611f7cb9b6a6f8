#include "core/distinct/number_table.hpp"

#include <bit>
#include <cmath>
#include <limits>

namespace quorin::core {

std::uint64_t pattern_of(double value) noexcept {
    if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();
    return std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
}

void NumberTable::grow() {
    constexpr std::size_t factor = 4;
    std::vector<Slot> old(slots_.size() * factor, empty);
    old.swap(slots_);
    for (const Slot& entry : old) {
        if (entry.number == none) continue;
        std::size_t slot = place_of(entry.key);
        while (slots_[slot].number != none) slot = (slot + 1) & (slots_.size() - 1);
        slots_[slot] = entry;
    }
}

}  // namespace quorin::core
