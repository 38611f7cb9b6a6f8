// Finding equal texts and sorting different ones.
#pragma once

#include <cstdint>
#include <vector>

#include "kernels/cells.hpp"

namespace quorin::kernels {

// Equal for equal texts of the same width.
std::uint64_t hash_text(TextView text) noexcept;

// Open addressing with numbers of texts as entries. The texts themselves stay with the caller.
class TextTable {
  public:
    TextTable() : slots_(initial_slots, empty) {}

    // The number under which an equal text stands, or `next`, under which this one stands from now on.
    template <class TextOf>
    std::uint32_t find_or_add(TextView text, std::uint32_t next, TextOf text_of) {
        return find_or_add(text, hash_text(text), next, text_of);
    }
    // The same where the hash is known; prefetch() has had the time to bring the place near.
    template <class TextOf>
    std::uint32_t find_or_add(TextView text, std::uint64_t hash, std::uint32_t next, TextOf text_of) {
        std::size_t slot = hash & (slots_.size() - 1);
        while (slots_[slot].number != none) {
            if (slots_[slot].hash == static_cast<std::uint32_t>(hash >> 32U) &&
                same(text_of(slots_[slot].number), text)) {
                return slots_[slot].number;
            }
            slot = (slot + 1) & (slots_.size() - 1);
        }
        slots_[slot] = {next, static_cast<std::uint32_t>(hash >> 32U)};
        low_bits_.push_back(static_cast<std::uint32_t>(hash));
        if (2 * low_bits_.size() > slots_.size()) grow();
        return next;
    }

    [[gnu::always_inline]] void prefetch(std::uint64_t hash) const noexcept {
        __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]);
    }

  private:
    static constexpr std::uint32_t none = 0xffffffffU;
    static constexpr std::size_t initial_slots = 64;
    struct Slot {
        std::uint32_t number;
        std::uint32_t hash;  // the upper half
    };
    static constexpr Slot empty{none, 0};

    void grow();

    std::vector<Slot> slots_;
    std::vector<std::uint32_t> low_bits_;  // of the hash of each text, by number
};

// The numbers of the texts in ascending order by code point.
std::vector<std::uint32_t> ascending(const std::vector<TextView>& texts);

}  // namespace quorin::kernels
