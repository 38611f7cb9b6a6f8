#include "core/distinct/key_order.hpp"

#include <algorithm>
#include <array>

namespace quorin::core {

namespace {

constexpr std::size_t digits = 8;  // bytes of a key
constexpr std::size_t values = 256;
using Histogram = std::array<std::uint32_t, values>;

std::size_t digit_of(std::uint64_t key, std::size_t place) noexcept {
    return static_cast<std::size_t>(key >> (8 * place)) & (values - 1);
}

// Calls use(first, last) for consecutive ranges of so many entries, and pause() before each.
template <class Use>
void in_steps(std::size_t size, const std::function<void()>& pause, Use use) {
    constexpr std::size_t step = std::size_t{1} << 16U;
    for (std::size_t first = 0; first < size; first += step) {
        pause();
        use(first, std::min(size, first + step));
    }
}

}  // namespace

// Radix sort from the least significant digit on; each pass is stable. Skips a digit that is the same in all keys.
void sort_by_key(std::vector<Keyed>& entries, const std::function<void()>& pause) {
    constexpr std::size_t few = 512;
    if (entries.size() < few) {
        std::sort(entries.begin(), entries.end(), [](const Keyed& left, const Keyed& right) {
            return left.key != right.key ? left.key < right.key : left.number < right.number;
        });
        return;
    }
    std::array<Histogram, digits> histograms{};
    std::vector<Keyed> sorted;
    sorted.reserve(entries.size());
    in_steps(entries.size(), pause, [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            for (std::size_t place = 0; place < digits; ++place) ++histograms[place][digit_of(entries[i].key, place)];
        }
        sorted.resize(last);
    });
    for (std::size_t place = 0; place < digits; ++place) {
        Histogram& starts = histograms[place];
        if (starts[digit_of(entries.front().key, place)] == entries.size()) continue;
        std::uint32_t start = 0;
        for (std::uint32_t& entry : starts) {
            const std::uint32_t size = entry;
            entry = start;
            start += size;
        }
        in_steps(entries.size(), pause, [&](std::size_t first, std::size_t last) {
            for (std::size_t i = first; i < last; ++i) {
                sorted[starts[digit_of(entries[i].key, place)]++] = entries[i];
            }
        });
        entries.swap(sorted);
    }
}

}  // namespace quorin::core
