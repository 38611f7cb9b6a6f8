// A hash table of numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace quorin::core {

// pattern(a) == pattern(b) if and only if a == b or both are NaN.
std::uint64_t pattern_of(double value) noexcept;

template <class Number>
std::uint64_t key_of(Number value) noexcept {
    if constexpr (std::is_floating_point_v<Number>) return pattern_of(static_cast<double>(value));
    return static_cast<std::uint64_t>(value);
}

// Maps 64-bit keys to numbers that the caller chooses. Open addressing.
class NumberTable {
  public:
    NumberTable() : slots_(initial_slots, empty) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    // Returns the number of the key. A new key gets the number `next`.
    std::uint32_t find_or_add(std::uint64_t key, std::uint32_t next) {
        std::size_t slot = place_of(key);
        while (slots_[slot].number != none) {
            if (slots_[slot].key == key) return slots_[slot].number;
            slot = (slot + 1) & (slots_.size() - 1);
        }
        slots_[slot] = {key, next};
        if (2 * ++size_ > slots_.size()) grow();
        return next;
    }

    // For long columns: makes room for so many more keys in steps of a few milliseconds. Returns false after each step
    // but the last. Nothing may be added between two steps.
    bool make_room(std::size_t more);

    [[gnu::always_inline]] void prefetch(std::uint64_t key) const noexcept {
        // A smaller table stays in the cache.
        if (slots_.size() > small) __builtin_prefetch(&slots_[place_of(key)]);
    }

  private:
    static constexpr std::uint32_t none = 0xffffffffU;
    static constexpr std::size_t initial_slots = 256;
    static constexpr std::size_t small = 4096;
    struct Slot {
        std::uint64_t key;
        std::uint32_t number;
    };
    static constexpr Slot empty{0, none};

    // Combines both halves of the product, because integers differ in their low bits and short fractions in their high
    // bits.
    [[nodiscard]] std::size_t place_of(std::uint64_t key) const noexcept {
        __extension__ using Product = unsigned __int128;
        const Product product = static_cast<Product>(key) * 0x9e3779b97f4a7c15ULL;
        return static_cast<std::size_t>(static_cast<std::uint64_t>(product) ^
                                        static_cast<std::uint64_t>(product >> 64U)) &
               (slots_.size() - 1);
    }
    void grow();
    void insert(const Slot& entry) noexcept;

    std::vector<Slot> slots_;
    std::size_t size_ = 0;
    // While make_room() works: the number of slots to be, the old slots, and how many of them are moved.
    std::size_t wanted_ = 0;
    std::vector<Slot> old_;
    std::size_t moved_ = 0;
};

}  // namespace quorin::core
