// Gathering: what the verdict on a column of texts depends on, in one walk over its rows, without the sorted distinct
// values that the verdict is defined by.
//
// A text is a number text (an integer, or a real number with a dot) or a plain text; a lone text is empty or a single
// character that is neither letter nor digit. Where no lone text meets a number text, five facts settle everything:
// which markers and nulls occur, whether integers and reals occur, the first plain text and whether another one exists.
// Otherwise a second walk finds the least lone text above the least number text: the marker that ends the scan of the
// distinct values, so that only texts below it count.
#pragma once

#include <array>
#include <vector>

#include "kernels/cells.hpp"

namespace quorin::kernels {

// What only the interpreter knows about characters beyond ASCII.
struct Script {
    bool (*is_alphanumeric)(std::uint32_t character);
    // The digit's value, ' ' for white space, or -1: as the number parsers translate a character.
    int (*translated)(std::uint32_t character);
};

enum class TextClass { plain, integer, real, unsettled };

// `unsettled` for texts of more digits than every limit of the interpreter allows.
TextClass classify_text(TextView text, const Script& script) noexcept;
bool is_lone(TextView text, const Script& script) noexcept;

constexpr std::size_t most_markers = 16;

// The marker texts of a column, to be found in its cells; short ones only, of one byte a character.
class MarkerSet {
  public:
    // False where the text is none that this set can hold.
    bool add(TextView text) noexcept;
    // The bits of the markers that the text equals.
    [[nodiscard]] std::uint32_t find(TextView text) const noexcept {
        if (text.length > longest_possible || (lengths_ >> text.length & 1U) == 0) return 0;
        return find_slowly(text);
    }

  private:
    static constexpr std::size_t longest_possible = 31;
    [[nodiscard]] std::uint32_t find_slowly(TextView text) const noexcept;

    std::uint32_t lengths_ = 0;
    std::size_t size_ = 0;
    std::array<TextView, most_markers> texts_{};
};

struct TextFacts {
    std::uint32_t markers = 0;  // bits of the markers that occur
    bool nulls = false;
    bool texts = false;  // any that is no marker
    bool integers = false;
    bool reals = false;
    bool lone = false;
    bool plain = false;
    bool second_plain = false;  // a plain text that differs from the first one
    std::size_t first_plain = 0;
    [[nodiscard]] bool numbers() const noexcept { return integers || reals; }
};

enum class Gathered { all, gave_up };

// One row of the walk that counts: neither marker nor null.
template <class Cells, class OnText>
Gathered walk_texts(const Cells& cells, const MarkerSet& markers, TextFacts& facts, OnText on_text) {
    const std::size_t rows = cells.size();
    for (std::size_t row = 0; row < rows; ++row) {
        cells.prefetch(row + prefetch_distance);
        TextView text{};
        switch (cells.read(row, text)) {
            case Cell::text:
                break;
            case Cell::null:
                facts.nulls = true;
                continue;
            case Cell::other:
                return Gathered::gave_up;
        }
        if (const std::uint32_t found = markers.find(text); found != 0) {
            facts.markers |= found;
            continue;
        }
        if (!on_text(row, text)) return Gathered::gave_up;
    }
    return Gathered::all;
}

// While two different plain texts and no lone one are known, numbers no longer matter: the column is text whether there
// are some or not. A lone text that turns up then asks for the numbers after all, and the walk starts anew.
template <class Cells>
Gathered gather_facts(const Cells& cells, const MarkerSet& markers, const Script& script, TextFacts& facts) {
    bool numbers_always_matter = false;
    bool skipped_numbers = false;
    do {
        facts = TextFacts{};
        skipped_numbers = false;
        TextView first_plain{};
        const auto on_text = [&](std::size_t row, TextView text) {
            facts.texts = true;
            const bool lone = text.length <= 1 && is_lone(text, script);
            facts.lone = facts.lone || lone;
            if (facts.second_plain && !facts.lone && !numbers_always_matter) {
                skipped_numbers = true;
                return true;
            }
            switch (lone ? TextClass::plain : classify_text(text, script)) {
                case TextClass::unsettled:
                    return false;
                case TextClass::integer:
                    facts.integers = true;
                    break;
                case TextClass::real:
                    facts.reals = true;
                    break;
                case TextClass::plain:
                    if (!facts.plain) {
                        facts.plain = true;
                        facts.first_plain = row;
                        first_plain = text;
                    } else if (!facts.second_plain) {
                        facts.second_plain = !same(first_plain, text);
                    }
                    break;
            }
            return true;
        };
        if (walk_texts(cells, markers, facts, on_text) == Gathered::gave_up) return Gathered::gave_up;
        numbers_always_matter = skipped_numbers && facts.lone;
    } while (numbers_always_matter);
    return Gathered::all;
}

struct Ordered {
    bool found = false;
    std::size_t row = 0;
    TextView text{};
};

// The second walk: the least number text, the least lone text above it.
template <class Cells>
void find_end_marker(const Cells& cells, const MarkerSet& markers, const Script& script, Ordered& least_number,
                     Ordered& end_marker) {
    TextFacts facts;
    const auto keep_least = [](Ordered& least, std::size_t row, TextView text) {
        if (!least.found || compare(text, least.text) < 0) least = {true, row, text};
    };
    walk_texts(cells, markers, facts, [&](std::size_t row, TextView text) {
        if (!(text.length <= 1 && is_lone(text, script)) && classify_text(text, script) != TextClass::plain) {
            keep_least(least_number, row, text);
        }
        return true;
    });
    if (!least_number.found) return;
    walk_texts(cells, markers, facts, [&](std::size_t row, TextView text) {
        if (text.length <= 1 && is_lone(text, script) && compare(text, least_number.text) > 0) {
            keep_least(end_marker, row, text);
        }
        return true;
    });
}

// The texts below the end marker: which numbers occur, and the distinct plain ones. Gives up beyond `most_plain` of
// them, before the search among them grows expensive.
template <class Cells>
Gathered gather_below(const Cells& cells, const MarkerSet& markers, const Script& script, TextView end_marker,
                      std::size_t most_plain, TextFacts& below, std::vector<Ordered>& plain) {
    return walk_texts(cells, markers, below, [&](std::size_t row, TextView text) {
        if (compare(text, end_marker) >= 0) return true;
        switch (classify_text(text, script)) {
            case TextClass::unsettled:
                return false;
            case TextClass::integer:
                below.integers = true;
                return true;
            case TextClass::real:
                below.reals = true;
                return true;
            case TextClass::plain:
                break;
        }
        auto place = plain.begin();
        while (place != plain.end() && compare(place->text, text) < 0) ++place;
        if (place != plain.end() && same(place->text, text)) return true;
        if (plain.size() == most_plain) return false;
        plain.insert(place, Ordered{true, row, text});
        return true;
    });
}

}  // namespace quorin::kernels
