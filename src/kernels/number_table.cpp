#include "kernels/number_table.hpp"

namespace quorin::kernels {

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

}  // namespace quorin::kernels
