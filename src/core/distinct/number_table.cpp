#include "core/distinct/number_table.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace quorin::core {

std::uint64_t pattern_of(double value) noexcept {
    if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();
    return std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
}

void NumberTable::insert(const Slot& entry) noexcept {
    if (entry.number == none) return;
    std::size_t slot = place_of(entry.key);
    while (slots_[slot].number != none) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = entry;
}

void NumberTable::grow() {
    constexpr std::size_t growth = 4;
    std::vector<Slot> old(slots_.size() * growth, empty);
    old.swap(slots_);
    for (const Slot& entry : old) insert(entry);
}

bool NumberTable::make_room(std::size_t more) {
    // Memory that is new to the process is slow: 1 MB of slots takes about a millisecond.
    constexpr std::size_t step = std::size_t{1} << 16U;
    if (old_.empty()) {
        // No larger than needed: to give 1 GB back to the system takes longer than a step.
        wanted_ = std::max(slots_.size(), std::bit_ceil(2 * (size_ + more)));
        if (wanted_ == slots_.size()) return true;
        old_.reserve(wanted_);
        old_.swap(slots_);
        moved_ = 0;
        return false;
    }
    if (slots_.size() < wanted_) {
        slots_.resize(std::min(wanted_, slots_.size() + 2 * step), empty);
        return false;
    }
    const std::size_t last = std::min(old_.size(), moved_ + step);
    for (; moved_ < last; ++moved_) insert(old_[moved_]);
    if (moved_ < old_.size()) return false;
    std::vector<Slot>().swap(old_);
    return true;
}

}  // namespace quorin::core
