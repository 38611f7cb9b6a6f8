// A cache of values computed from texts, for columns with few distinct texts.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/distinct/text_table.hpp"

namespace quorin::core {

// A direct-mapped cache: a text replaces another text in the same slot. The texts are either all in UTF-8 or all in
// fixed-width characters. The caller owns the characters, which must not change.
template <class Value>
class RecentTexts {
  public:
    // For a column of this many rows.
    explicit RecentTexts(std::size_t rows) : places_(std::bit_ceil(std::clamp<std::size_t>(rows, 1, most_places))) {}

    // Returns the cached value of an equal text, or caches make().
    template <class Make>
    const Value& get(TextView text, Make make) {
        const std::uint32_t hash = hash_text(text);
        Place& place = places_[hash & (places_.size() - 1)];
        if (!place.used || place.hash != hash || !same_units(place.text, text)) {
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
