// Finds the n smallest distinct texts of a column. Most other texts are rejected by their key alone.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

#include "core/gather/text_facts.hpp"

namespace quorin::core {

struct KeyedText {
    std::uint64_t key;
    TextView text;
    std::size_t row;  // the row of the first occurrence
};

// Packs the first eight characters into a number that sorts as they do, in any encoding. A character c >= 0xff counts
// as 0xff, and all after it, or after the end of the text, as 0. Texts with equal keys may differ.
inline std::uint64_t leading_characters(TextView text) noexcept {
    constexpr std::size_t most = 8;
    if (text.is_padded() && text.size >= most) return __builtin_bswap64(eight_bytes(text.characters));
    if (text.is_padded() && text.size != 0) return __builtin_bswap64(short_text(text));
    constexpr std::uint32_t wide = 0xff;
    constexpr unsigned bits = 8;
    std::uint64_t key = 0;
    bool ended = false;
    std::size_t at = 0;
    for (std::size_t i = 0; i < most; ++i) {
        const Decoded next = !ended && at < text.size ? decode(text, at) : Decoded{0, 0};
        ended = ended || next.character >= wide;
        key = key << bits | std::min(next.character, wide);
        at += next.size;
    }
    return key;
}

// Collects the `most` smallest distinct texts that are not references, ascending, and whether there are nulls. Takes
// ranges of rows as TextGatherer does.
class LeastDistinct {
  public:
    explicit LeastDistinct(std::size_t most) : most_(most) { least_.reserve(most + 1); }

    template <class Cells>
    [[nodiscard, gnu::flatten]] Walk gather(RowRange rows, const Cells& cells, const ReferenceTexts& references) {
        TextFacts facts;
        const auto not_decided = [](ShortText) { return false; };
        const auto on_text = [this](std::size_t row, TextView text) {
            add({leading_characters(text), text, row});
            return Step::next;
        };
        const Walk walk = walk_texts(rows, cells, references, facts, not_decided, on_text);
        nulls_ = nulls_ || facts.nulls;
        return walk;
    }
    // Reads the texts again. Returns false if a cell is no longer a text.
    template <class Cells>
    [[nodiscard]] bool refresh(const Cells& cells) {
        recent_ = {};
        return core::refresh(cells, least_);
    }
    [[nodiscard]] bool nulls() const noexcept { return nulls_; }
    [[nodiscard]] std::vector<KeyedText> finish() && { return std::move(least_); }

  private:
    void add(const KeyedText& entry) {
        if (least_.size() == most_ && entry.key > least_.back().key) return;
        KeyedText& recent = recent_[place_of(entry.key)];
        if (recent.key == entry.key && recent.text.characters != nullptr && same(recent.text, entry.text)) return;
        recent = entry;
        const auto place = std::lower_bound(least_.begin(), least_.end(), entry, is_below);
        if (place != least_.end() && place->key == entry.key && same(place->text, entry.text)) return;
        least_.insert(place, entry);
        if (least_.size() > most_) least_.pop_back();
    }
    static bool is_below(const KeyedText& left, const KeyedText& right) noexcept {
        if (left.key != right.key) return left.key < right.key;
        return compare(left.text, right.text) < 0;
    }
    static constexpr unsigned bits_of_place = 8;
    static std::size_t place_of(std::uint64_t key) noexcept {
        constexpr std::uint64_t odd = 0x9e3779b97f4a7c15ULL;
        return static_cast<std::size_t>(key * odd >> (64U - bits_of_place));
    }

    std::size_t most_;
    std::vector<KeyedText> least_;
    // A direct-mapped cache of texts that were added, which has nearly all texts of a column with few distinct texts.
    std::array<KeyedText, std::size_t{1} << bits_of_place> recent_{};
    bool nulls_ = false;
};

// The same for a whole column. Returns false if the walk gives up.
template <class Cells>
[[nodiscard]] bool least_distinct(const Cells& cells, const ReferenceTexts& references, std::size_t most,
                                  std::vector<KeyedText>& least, bool& nulls) {
    LeastDistinct gatherer(most);
    const Walk walk = gatherer.gather({0, cells.size()}, cells, references);
    nulls = gatherer.nulls();
    least = std::move(gatherer).finish();
    return walk != Walk::gave_up;
}

}  // namespace quorin::core
