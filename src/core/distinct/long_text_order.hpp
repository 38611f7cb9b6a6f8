// Sorts many distinct texts in steps, so that a caller can answer signals between them.
#pragma once

#include <cstdint>
#include <vector>

#include "core/distinct/text_order.hpp"

namespace quorin::core {

// Divides texts into buckets: every text of a bucket sorts before every text of the next bucket.
class TextBuckets {
  public:
    // Makes buckets of about `size` texts.
    TextBuckets(const std::vector<DistinctText>& texts, std::size_t size);
    [[nodiscard]] std::size_t count() const noexcept { return starts_.size() + 1; }
    [[nodiscard]] std::size_t bucket_of(const TextView& text) const noexcept;

  private:
    std::vector<TextView> starts_;  // first texts of all buckets except the first, ascending
};

// Appends `numbers` to `order`, in the ascending order of their texts.
void append_ascending(const std::vector<DistinctText>& texts, const std::vector<std::uint32_t>& numbers,
                      std::vector<std::uint32_t>& order);

// The same as ascending(), but calls pause() every few milliseconds; if that returns false, the result is empty. If the
// texts change during a pause, the order is wrong, but there is no access out of bounds.
template <class Pause>
std::vector<std::uint32_t> ascending_in_steps(const std::vector<DistinctText>& texts, Pause pause) {
    constexpr std::size_t few = 1U << 16U;
    constexpr std::size_t step = 1U << 14U;
    if (texts.size() <= 2 * few) return ascending(texts);
    const TextBuckets buckets(texts, step);
    std::vector<std::vector<std::uint32_t>> numbers(buckets.count());
    for (std::uint32_t number = 0; number < texts.size(); ++number) {
        if (number % step == 0 && !pause()) return {};
        numbers[buckets.bucket_of(texts[number].text)].push_back(number);
    }
    std::vector<std::uint32_t> order;
    order.reserve(texts.size());
    for (const std::vector<std::uint32_t>& bucket : numbers) {
        if (!pause()) return {};
        append_ascending(texts, bucket, order);
    }
    return order;
}

}  // namespace quorin::core
