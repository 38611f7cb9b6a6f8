// Sorts by 64-bit keys.
#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <vector>

namespace quorin::core {

struct Keyed {
    std::uint64_t key;
    std::uint32_t number;
};

// Stable sort by key. Requires that `number` is ascending; it then is ascending within equal keys of the result. Calls
// pause() every few milliseconds.
void sort_by_key(std::vector<Keyed>& entries, const std::function<void()>& pause = [] {});

// For all a, b that are not NaN: key(a) < key(b) if and only if a < b.
constexpr std::uint64_t sign_bit = std::uint64_t{1} << 63U;
inline std::uint64_t key_of_whole(std::int64_t value) noexcept {
    return static_cast<std::uint64_t>(value) ^ sign_bit;
}
inline std::uint64_t key_of_real(double value) noexcept {
    const auto pattern = std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
    return (pattern & sign_bit) != 0 ? ~pattern : pattern | sign_bit;
}

}  // namespace quorin::core
