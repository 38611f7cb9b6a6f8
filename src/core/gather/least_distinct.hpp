// The least different texts of a column, up to a number of them: what is greater is turned away at the first glance.
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
    std::size_t row;  // of its first occurrence
};

// The first characters as one number that sorts as they do. Characters that do not fit into a byte end it, as the end
// of the text does, so that equal keys settle nothing.
inline std::uint64_t leading_characters(TextView text) noexcept {
    constexpr std::size_t most = 8;
    if (text.compact && text.length >= most) return __builtin_bswap64(eight_bytes(text.characters));
    if (text.compact && text.length != 0) return __builtin_bswap64(short_text(text));
    constexpr std::uint32_t wide = 0xff;
    constexpr unsigned bits = 8;
    std::uint64_t key = 0;
    bool ended = false;
    for (std::size_t i = 0; i < most; ++i) {
        const std::uint32_t c = !ended && i < text.length ? character(text, i) : 0;
        ended = ended || c >= wide;
        key = key << bits | std::min(c, wide);
    }
    return key;
}

// At most `most` texts, ascending, of those that are no markers; whether there are nulls beside them. False where a
// cell is neither text nor null.
template <class Cells>
[[gnu::flatten]] bool least_distinct(const Cells& cells, const ReferenceTexts& markers, std::size_t most,
                                     std::vector<KeyedText>& least, bool& nulls) {
    least.clear();
    least.reserve(most + 1);
    const auto below = [](const KeyedText& left, const KeyedText& right) {
        if (left.key != right.key) return left.key < right.key;
        return compare(left.text, right.text) < 0;
    };
    // Texts that were dealt with lately: of few different ones all but the first are.
    constexpr unsigned bits = 8;
    std::array<KeyedText, std::size_t{1} << bits> lately{};
    const auto place_of = [](std::uint64_t key) {
        constexpr std::uint64_t odd = 0x9e3779b97f4a7c15ULL;
        return static_cast<std::size_t>(key * odd >> (64U - bits));
    };
    TextFacts facts;
    const auto on_text = [&](std::size_t row, TextView text) {
        const KeyedText entry{leading_characters(text), text, row};
        if (least.size() == most && entry.key > least.back().key) return true;
        KeyedText& before = lately[place_of(entry.key)];
        if (before.key == entry.key && before.text.characters != nullptr && same(before.text, text)) return true;
        before = entry;
        const auto place = std::lower_bound(least.begin(), least.end(), entry, below);
        if (place != least.end() && place->key == entry.key && same(place->text, text)) return true;
        least.insert(place, entry);
        if (least.size() > most) least.pop_back();
        return true;
    };
    const auto none_settled = [](ShortText) { return false; };
    const bool all = walk_texts(cells, markers, facts, none_settled, on_text) == Gathered::all;
    nulls = facts.nulls;
    return all;
}

}  // namespace quorin::core
