#include "core/distinct/text_table.hpp"

#include <algorithm>
#include <bit>

namespace quorin::core {

namespace {

__extension__ using Product = unsigned __int128;

// Set in every hash, because empty slots have the hash 0.
constexpr std::uint32_t never_zero = 0x80000000U;

// Arbitrary odd numbers.
constexpr std::uint64_t first_salt = 0x9e3779b97f4a7c15ULL;
constexpr std::uint64_t second_salt = 0xd1b54a32d192ed03ULL;

std::uint64_t mixed(std::uint64_t a, std::uint64_t b) noexcept {
    const Product product = static_cast<Product>(a ^ first_salt) * (b ^ second_salt);
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

std::uint32_t four_bytes(const std::uint8_t* at) noexcept {
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, at, sizeof bytes);
    return bytes;
}

// The last eight bytes and the eight before them. If there are fewer, they are in the high bytes and the rest is 0.
struct LastSixteen {
    std::uint64_t before;
    std::uint64_t last;
};

std::uint64_t up_to_eight(const std::uint8_t* bytes, std::size_t size) noexcept {
    if (size == 8) return eight_bytes(bytes);
    if (size >= 4) {
        const std::uint64_t first = std::uint64_t{four_bytes(bytes)} << (64 - 8 * size);
        return first | std::uint64_t{four_bytes(bytes + size - 4)} << 32U;
    }
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < size; ++i) found |= std::uint64_t{bytes[i]} << (64 - 8 * (size - i));
    return found;
}

LastSixteen last_sixteen(const std::uint8_t* bytes, std::size_t size) noexcept {
    if (size >= 16) return {eight_bytes(bytes + size - 16), eight_bytes(bytes + size - 8)};
    if (size > 8) return {up_to_eight(bytes, size - 8), eight_bytes(bytes + size - 8)};
    return {0, up_to_eight(bytes, size)};
}

// The same for a padded text, with the bytes before the text masked out.
LastSixteen last_sixteen_of_padded(const std::uint8_t* bytes, std::size_t size) noexcept {
    const EndMasks& masks = end_masks[size < 16 ? size : 16];
    return {eight_bytes(bytes + size - 16) & masks.before, eight_bytes(bytes + size - 8) & masks.last};
}

// Always inlined: a call per text costs as much as the hash of a short text.
[[gnu::always_inline]] inline std::uint32_t hash_of(const TextView& text) noexcept {
    const std::uint8_t* bytes = text.bytes();
    const std::size_t size = text.size * static_cast<std::size_t>(text.width);
    const LastSixteen end = text.is_padded() ? last_sixteen_of_padded(bytes, size) : last_sixteen(bytes, size);
    std::uint64_t hash = mixed(end.last + size, end.before);
    for (std::size_t i = 0; i + 16 < size; i += 16) {
        hash = mixed(hash + eight_bytes(bytes + i), eight_bytes(bytes + i + 8));
    }
    return static_cast<std::uint32_t>(hash >> 32U) | never_zero;
}

}  // namespace

std::uint32_t hash_text(const TextView& text) noexcept {
    return hash_of(text);
}

// Tables are at most half full, so that probes are short. Small tables double. Larger ones grow to the number of
// distinct texts that is extrapolated from the rows so far, because one copy is cheaper than one per doubling; the
// factor is limited, because the first rows may not be typical.
std::size_t TextTable::grown_size(std::size_t entries, std::size_t rows_so_far) const noexcept {
    constexpr std::size_t small = 4096;
    constexpr std::size_t most_at_once = 64;
    const std::size_t doubled = std::max(slots_.size() * 2, std::bit_ceil(2 * entries));
    if (doubled <= small) return doubled;
    const double expected =
        static_cast<double>(entries_.size()) * static_cast<double>(rows_) / static_cast<double>(rows_so_far);
    const auto slots = static_cast<std::size_t>(2 * expected) + 2 * block;
    return std::bit_ceil(std::clamp(slots, doubled, std::max(doubled, slots_.size() * most_at_once)));
}

void TextTable::move(const Slot* from, const Slot* end, std::vector<Slot>& to) noexcept {
    for (; from != end; ++from) {
        if (from->number == none) continue;
        std::size_t slot = from->hash & (to.size() - 1);
        while (to[slot].number != none) slot = (slot + 1) & (to.size() - 1);
        to[slot] = *from;
    }
}

void TextTable::grow(std::size_t rows_so_far) {
    std::vector<Slot> slots(grown_size(entries_.size() + 1, rows_so_far), empty);
    entries_.reserve(slots.size() / 2);
    move(slots_.data(), slots_.data() + slots_.size(), slots);
    slots_.swap(slots);
}

bool TextTable::make_room(std::size_t more, std::size_t rows_so_far) {
    // The first write to new memory causes page faults: 1 MB of slots or entries takes about a millisecond.
    constexpr std::size_t step = 1U << 15U;
    if (!growth_) {
        if (2 * (entries_.size() + more) <= slots_.size()) return true;
        growth_.emplace();
        growth_->size = grown_size(entries_.size() + more, rows_so_far);
        growth_->slots.reserve(growth_->size);
        growth_->entries.reserve(growth_->size / 2);
        return false;
    }
    Growth& growth = *growth_;
    if (growth.slots.size() < growth.size) {
        growth.slots.resize(std::min(growth.size, growth.slots.size() + 4 * step), empty);
    } else if (growth.moved < slots_.size()) {
        const std::size_t last = std::min(slots_.size(), growth.moved + 2 * step);
        move(slots_.data() + growth.moved, slots_.data() + last, growth.slots);
        growth.moved = last;
    } else if (growth.entries.size() < entries_.size()) {
        const auto first = entries_.begin() + static_cast<std::ptrdiff_t>(growth.entries.size());
        const std::size_t left = entries_.size() - growth.entries.size();
        growth.entries.insert(growth.entries.end(), first, first + static_cast<std::ptrdiff_t>(std::min(left, step)));
    } else {
        slots_.swap(growth.slots);
        entries_.swap(growth.entries);
        growth_.reset();
        return true;
    }
    return false;
}

// The general case: probes further slots, and adds the text if it is new.
std::uint32_t TextTable::find_or_add(const TextView& text, std::uint32_t hash, std::size_t row) {
    std::size_t slot = hash & (slots_.size() - 1);
    for (; slots_[slot].number != none; slot = (slot + 1) & (slots_.size() - 1)) {
        if (slots_[slot].hash != hash) continue;
        DistinctText& entry = entries_[slots_[slot].number];
        if (!same_units(entry.text, text)) continue;
        ++entry.count;
        return slots_[slot].number;
    }
    const auto number = static_cast<std::uint32_t>(entries_.size());
    slots_[slot] = {number, hash};
    entries_.push_back({text, row, 1});
    return number;
}

std::uint32_t TextTable::add(const TextView& text, std::size_t row) {
    if (2 * (entries_.size() + 1) > slots_.size()) grow(row + 1);
    return find_or_add(text, hash_of(text), row);
}

void TextTable::add(const Block& texts) {
    // Smaller tables stay in the cache.
    constexpr std::size_t cached = 1024;
    const std::size_t size = texts.size;
    if (size == 0) return;
    if (2 * (entries_.size() + size) > slots_.size()) grow(texts.rows[size - 1] + 1);
    std::array<std::uint32_t, block> hashes;
    const Slot* const slots = slots_.data();
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = 0; i < size; ++i) hashes[i] = hash_of(texts.texts[i]);
    if (entries_.size() > cached) {
        for (std::size_t i = 0; i < size; ++i) __builtin_prefetch(&slots[hashes[i] & mask]);
        for (std::size_t i = 0; i < size; ++i) {
            const Slot slot = slots[hashes[i] & mask];
            if (slot.hash == hashes[i]) __builtin_prefetch(&entries_[slot.number]);
        }
    }
    for (std::size_t i = 0; i < size; ++i) {
        const Slot slot = slots[hashes[i] & mask];
        if (slot.hash == hashes[i] && same_units(entries_[slot.number].text, texts.texts[i])) {
            ++entries_[slot.number].count;
        } else {
            find_or_add(texts.texts[i], hashes[i], texts.rows[i]);
        }
    }
}

}  // namespace quorin::core
