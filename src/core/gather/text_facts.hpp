// Gathering: what the verdict on a column of texts depends on, in one walk over its rows, without the sorted distinct
// values that the verdict is defined by.
//
// A text is a number text (an integer, or a real number with a dot) or a plain text; a lone text is empty or a single
// character that is neither letter nor digit. Where no lone text meets a number text, five facts settle everything:
// which markers and nulls occur, whether integers and reals occur, the first plain text and whether another one exists.
// Otherwise a second walk finds the least lone text above the least number text: the marker that ends the scan of the
// distinct values, so that only texts below it count.
#pragma once

#include <vector>

#include "core/cells/cells.hpp"
#include "core/references/reference_texts.hpp"
#include "core/text/number_text.hpp"

namespace quorin::core {

inline bool is_ascii_letter(std::uint32_t c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

inline bool is_lone(TextView text, const CharacterTables& script) noexcept {
    if (text.length != 1) return text.length == 0;
    const std::uint32_t c = character(text, 0);
    if (c > 0x7f) return !script.is_alphanumeric(c);
    return !((c >= '0' && c <= '9') || is_ascii_letter(c));
}

// Which lone texts occur: bits for the ASCII characters, the empty text left out.
class LoneTexts {
  public:
    void add(std::uint32_t character) noexcept {
        if (character > 0x7f) {
            beyond_ascii_ = true;
        } else {
            (character < 64 ? low_ : high_) |= std::uint64_t{1} << (character & 63U);
        }
    }
    [[nodiscard]] bool has_ascii(std::uint32_t character) const noexcept {
        return ((character < 64 ? low_ : high_) >> (character & 63U) & 1U) != 0;
    }
    // Whether one is above a text of this first character; characters beyond ASCII may be. The text is longer than a
    // lone one, so one of the same character is below it.
    [[nodiscard]] bool may_be_above(std::uint32_t first) const noexcept {
        if (beyond_ascii_) return true;
        if (first >= 0x7f) return false;
        const std::uint64_t above = ~std::uint64_t{0} << (first & 63U) << 1U;
        return first < 64 ? (low_ & above) != 0 || high_ != 0 : (high_ & above) != 0;
    }

  private:
    std::uint64_t low_ = 0;
    std::uint64_t high_ = 0;
    bool beyond_ascii_ = false;
};

struct TextFacts {
    ReferenceBits markers = 0;  // bits of the markers that occur
    bool nulls = false;
    bool texts = false;  // any that is no marker
    bool integers = false;
    bool reals = false;
    bool lone = false;
    bool plain = false;
    bool second_plain = false;       // a plain text that differs from the first one
    bool lone_may_be_above = false;  // a lone text above a number text; where numbers matter
    std::size_t first_plain = 0;
    [[nodiscard]] bool numbers() const noexcept { return integers || reals; }
};

enum class Gathered { all, gave_up };

// Skips no row.
constexpr auto nothing = [](std::size_t) { return false; };

// A walk from `row` on over the texts that are neither marker nor null. Rows for which `skip` holds are passed over.
// Texts that a glance shows go to `on_short` first, markers among them; it answers whether it is done with the text.
// `on_text` may stop the walk; `row` then is where.
enum class Step { next, stop, give_up };
enum class Walk { ended, stopped, gave_up };

template <class Cells, class Skip, class OnShort, class OnText>
Walk walk_from(std::size_t& row, const Cells& cells, const ReferenceTexts& markers, TextFacts& facts, Skip skip,
               OnShort on_short, OnText on_text) {
    const std::size_t rows = cells.size();
    for (; row < rows; ++row) {
        cells.prefetch(row + prefetch_distance);
        if (skip(row)) continue;
        if (ShortText glanced{}; cells.glance(row, glanced) && on_short(glanced)) continue;
        TextView text{};
        switch (cells.read(row, text)) {
            case Cell::text:
                break;
            case Cell::null:
                facts.nulls = true;
                continue;
            case Cell::other:
                return Walk::gave_up;
        }
        if (const ReferenceBits found = markers.find(text); found != 0) {
            facts.markers |= found;
            continue;
        }
        const Step step = on_text(row, text);
        if (step != Step::next) return step == Step::stop ? Walk::stopped : Walk::gave_up;
    }
    return Walk::ended;
}

// The whole column; `on_text` gives false to give up.
template <class Cells, class OnShort, class OnText>
Gathered walk_texts(const Cells& cells, const ReferenceTexts& markers, TextFacts& facts, OnShort on_short,
                    OnText on_text) {
    std::size_t row = 0;
    const auto step = [&](std::size_t at, TextView text) { return on_text(at, text) ? Step::next : Step::give_up; };
    return walk_from(row, cells, markers, facts, nothing, on_short, step) == Walk::gave_up ? Gathered::gave_up
                                                                                           : Gathered::all;
}

// The walk over texts whose characters do not matter: nothing but markers, nulls and lone texts is looked for. It stops
// at a lone text.
template <class Cells>
Walk skip_plain(std::size_t& row, const Cells& cells, const ReferenceTexts& markers, const CharacterTables& script,
                TextFacts& facts) {
    const std::size_t rows = cells.size();
    const std::size_t longest = markers.longest() < 1 ? 1 : markers.longest();
    for (; row < rows; ++row) {
        cells.prefetch(row + prefetch_distance);
        if (cells.longer_than(row, longest)) continue;
        TextView text{};
        switch (cells.read(row, text)) {
            case Cell::text:
                break;
            case Cell::null:
                facts.nulls = true;
                continue;
            case Cell::other:
                return Walk::gave_up;
        }
        if (text.length > longest) continue;
        if (const ReferenceBits found = markers.find(text); found != 0) {
            facts.markers |= found;
        } else if (text.length <= 1 && is_lone(text, script)) {
            return Walk::stopped;
        }
    }
    return Walk::ended;
}

// While two different plain texts and no lone one are known, numbers no longer matter: the column is text whether there
// are some or not. A lone text that turns up then asks for the numbers after all, and the walk goes back to where they
// were skipped first.
template <class Cells>
[[gnu::flatten]] Gathered gather_facts(const Cells& cells, const ReferenceTexts& markers, const CharacterTables& script,
                                       TextFacts& facts) {
    constexpr std::uint32_t beyond_all = 0xffffffffU;
    TextFacts seen;
    TextView first_plain{};
    LoneTexts lone_texts;
    std::uint32_t least_start = beyond_all;  // of the number texts
    bool digits = false;                     // texts of nothing else, which the least start leaves out
    const std::size_t special = markers.longest() < 1 ? 1 : markers.longest();
    const auto on_short = [&](ShortText text) {
        if (text.length <= special) {
            if (const ReferenceBits found = markers.find(text); found != 0) {
                seen.markers |= found;
                return true;
            }
        }
        const auto first = static_cast<std::uint8_t>(text.value());
        if (others_of(text) == 0) {
            seen.integers = true;
            digits = true;
            return true;
        }
        if (text.length == 1 && lone_texts.has_ascii(first)) return true;
        const TextClass text_class = classify_short(text);
        if (text_class != TextClass::integer && text_class != TextClass::real) return false;
        (text_class == TextClass::integer ? seen.integers : seen.reals) = true;
        least_start = first < least_start ? first : least_start;
        return true;
    };
    // No number starts with a letter, and of plain texts a third one tells nothing new.
    const auto plain_words = [&](std::size_t row) {
        TextView text{};
        return cells.read(row, text) == Cell::text && text.length > special && is_ascii_letter(character(text, 0));
    };
    const auto on_text = [&](std::size_t row, TextView text) {
        const bool lone = text.length <= 1 && is_lone(text, script);
        seen.lone = seen.lone || lone;
        if (lone && text.length == 1) lone_texts.add(character(text, 0));
        const TextClass text_class = lone ? TextClass::plain : classify_text(text, script);
        switch (text_class) {
            case TextClass::unsettled:
                return Step::give_up;
            case TextClass::integer:
            case TextClass::real:
                (text_class == TextClass::integer ? seen.integers : seen.reals) = true;
                least_start = character(text, 0) < least_start ? character(text, 0) : least_start;
                break;
            case TextClass::plain:
                if (!seen.plain) {
                    seen.plain = true;
                    seen.first_plain = row;
                    first_plain = text;
                } else if (!seen.second_plain) {
                    seen.second_plain = !same(first_plain, text);
                    if (seen.second_plain) return Step::stop;
                }
                break;
        }
        return Step::next;
    };
    std::size_t row = 0;
    Walk walk = Walk::stopped;
    while (walk == Walk::stopped) {
        walk = seen.second_plain ? walk_from(row, cells, markers, seen, plain_words, on_short, on_text)
                                 : walk_from(row, cells, markers, seen, nothing, on_short, on_text);
        if (walk != Walk::stopped || seen.lone) continue;
        const std::size_t skipped_from = row;
        walk = skip_plain(row, cells, markers, script, seen);
        if (walk == Walk::stopped) row = skipped_from;
    }
    seen.texts = seen.plain || seen.numbers();
    if (digits && least_start > '0') least_start = '0';
    seen.lone_may_be_above = seen.numbers() && lone_texts.may_be_above(least_start);
    facts = seen;
    return walk == Walk::gave_up ? Gathered::gave_up : Gathered::all;
}

struct Ordered {
    bool found = false;
    std::size_t row = 0;
    TextView text{};
};

// The second walk: the least number text, the least lone text above it.
template <class Cells>
[[gnu::flatten]] void find_end_marker(const Cells& cells, const ReferenceTexts& markers, const CharacterTables& script,
                                      Ordered& least_number, Ordered& end_marker) {
    TextFacts facts;
    std::uint64_t least_order = ~std::uint64_t{0};
    const auto is_above = [&](ShortText text) { return ascending_key(text) > least_order; };
    walk_texts(cells, markers, facts, is_above, [&](std::size_t row, TextView text) {
        if ((!least_number.found || compare(text, least_number.text) < 0) &&
            !(text.length <= 1 && is_lone(text, script)) && classify_text(text, script) != TextClass::plain) {
            least_number = {true, row, text};
            if (ShortText few{}; cells.glance(row, few)) least_order = ascending_key(few);
        }
        return true;
    });
    if (!least_number.found) return;
    const auto is_long = [](ShortText text) { return text.length > 1; };
    walk_texts(cells, markers, facts, is_long, [&](std::size_t row, TextView text) {
        if (text.length <= 1 && is_lone(text, script) && compare(text, least_number.text) > 0 &&
            (!end_marker.found || compare(text, end_marker.text) < 0)) {
            end_marker = {true, row, text};
        }
        return true;
    });
}

// The texts below the end marker, a single character: which numbers occur, and the distinct plain ones. Gives up beyond
// `most_plain` of them, before the search among them grows expensive.
template <class Cells>
[[gnu::flatten]] Gathered gather_below(const Cells& cells, const ReferenceTexts& markers, const CharacterTables& script,
                                       TextView end_marker, std::size_t most_plain, TextFacts& below,
                                       std::vector<Ordered>& plain) {
    const std::uint32_t end_character = character(end_marker, 0);
    const auto on_short = [&](ShortText text) {
        if (static_cast<std::uint8_t>(text.value()) >= end_character) return true;
        if (markers.find(text) != 0) return true;
        const TextClass text_class = classify_short(text);
        if (text_class != TextClass::integer && text_class != TextClass::real) return false;
        (text_class == TextClass::integer ? below.integers : below.reals) = true;
        return true;
    };
    return walk_texts(cells, markers, below, on_short, [&](std::size_t row, TextView text) {
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

}  // namespace quorin::core
