#include "core/distinct/long_text_order.hpp"

#include <algorithm>

namespace quorin::core {

// Sorts a sample and takes every `sampled_for_each`-th text of it as the start of a bucket.
TextBuckets::TextBuckets(const std::vector<DistinctText>& texts, std::size_t size) {
    constexpr std::size_t sampled_for_each = 8;
    const std::size_t samples = std::max<std::size_t>(1, sampled_for_each * (texts.size() / size));
    std::vector<DistinctText> sample;
    sample.reserve(samples);
    for (std::size_t i = 0; i < samples; ++i) sample.push_back(texts[i * texts.size() / samples]);
    const std::vector<std::uint32_t> order = ascending(sample);
    for (std::size_t i = sampled_for_each; i < order.size(); i += sampled_for_each) {
        starts_.push_back(sample[order[i]].text);
    }
}

std::size_t TextBuckets::bucket_of(const TextView& text) const noexcept {
    const auto starts_after = [](const TextView& left, const TextView& right) { return compare(left, right) < 0; };
    const auto next = std::upper_bound(starts_.begin(), starts_.end(), text, starts_after);
    return static_cast<std::size_t>(next - starts_.begin());
}

void append_ascending(const std::vector<DistinctText>& texts, const std::vector<std::uint32_t>& numbers,
                      std::vector<std::uint32_t>& order) {
    constexpr std::size_t ahead = 16;
    std::vector<DistinctText> bucket;
    bucket.reserve(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i + ahead < numbers.size()) __builtin_prefetch(&texts[numbers[i + ahead]]);
        bucket.push_back(texts[numbers[i]]);
    }
    for (const std::uint32_t i : ascending(bucket)) order.push_back(numbers[i]);
}

}  // namespace quorin::core
