// A small memory for what was worked out of a text, so that a column of few different texts asks for it few times.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/distinct/text_table.hpp"

namespace quorin::core {

// What is remembered of a text gives way to another text that falls into the same place: the memory stays small
// whatever a column holds. The texts themselves stay with the caller, unchanged.
template <class Value>
class RecentTexts {
  public:
    // For a column of so many rows.
    explicit RecentTexts(std::size_t rows) : places_(std::bit_ceil(std::clamp<std::size_t>(rows, 1, most_places))) {}

    // The value of an equal text that was met lately, or else what make() gives for this one.
    template <class Make>
    const Value& get(TextView text, Make make) {
        const std::uint32_t hash = hash_text(text);
        Place& place = places_[hash & (places_.size() - 1)];
        if (!place.used || place.hash != hash || !same(place.text, text)) {
            place.value = make();
            place.text = text;
            place.hash = hash;
            place.used = true;
        }
        return place.value;
    }

  private:
    static constexpr std::size_t most_places = 1024;
    struct Place {
        std::uint32_t hash = 0;
        TextView text{};
        bool used = false;
        Value value{};
    };
    std::vector<Place> places_;
};

}  // namespace quorin::core
