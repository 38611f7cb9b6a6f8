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
#include <string_view>
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

// A number text starts with white space, a sign, a dot or a digit; words for infinity and NaN hold no dot and are
// plain.
constexpr std::array<bool, 256> may_start_number = [] {
    std::array<bool, 256> may{};
    for (const char c : std::string_view{"0123456789.-+ \t\n\v\f\r"}) may[static_cast<std::uint8_t>(c)] = true;
    return may;
}();

// Eight ASCII characters looked at together. Of a character c, (c ^ '0') + 0x76 has the highest bit set unless c is a
// digit, and never overflows into its neighbour.
class EightCharacters {
  public:
    explicit EightCharacters(const void* at) noexcept : less_zero_(eight_bytes(at) ^ ('0' * every_byte)) {}
    // Those from the n-th last on, at least one of them; the others become digits.
    [[nodiscard]] EightCharacters last(std::size_t n) const noexcept {
        EightCharacters few = *this;
        few.less_zero_ = less_zero_ >> (64 - 8 * n) << (64 - 8 * n);
        return few;
    }
    // The highest bit of each byte that is no digit.
    [[nodiscard]] std::uint64_t no_digits() const noexcept {
        return (less_zero_ + 0x76 * every_byte) & (0x80 * every_byte);
    }
    // Given these bits: whether they are one, and that a dot.
    [[nodiscard]] bool is_dot(std::uint64_t bits) const noexcept {
        const std::uint64_t low = bits >> 7U;
        return (bits & (bits - 1)) == 0 && (less_zero_ & (low * 0xff)) == low * ('.' ^ '0');
    }

  private:
    static constexpr std::uint64_t every_byte = 0x0101010101010101;
    std::uint64_t less_zero_;
};

// A text in its parts: where it is handed on whole, gcc keeps it in memory also where nothing is handed on.
TextClass classify_uncommon(const void* characters, std::size_t length, int width, bool compact,
                            const Script& script) noexcept;

// What the common notations of numbers settle without the whole grammar: digits with a sign before them and a dot among
// them; `unsettled` for anything else. Most texts in use are settled by their last eight characters.
inline TextClass classify_common(TextView text) noexcept {
    const auto* at = static_cast<const std::uint8_t*>(text.characters);
    const std::uint8_t* const end = at + text.length;
    if (!may_start_number[*at]) return TextClass::plain;
    at += static_cast<unsigned>(*at == '-') | static_cast<unsigned>(*at == '+');
    const auto length = static_cast<std::size_t>(end - at);
    if (length - 1 < 8) {
        const EightCharacters characters = EightCharacters(end - 8).last(length);
        const std::uint64_t others = characters.no_digits();
        if (others == 0) return TextClass::integer;
        if (!characters.is_dot(others)) return TextClass::unsettled;
        return length == 1 ? TextClass::plain : TextClass::real;
    }
    constexpr std::size_t longest = 32;
    if (length == 0) return TextClass::plain;
    if (length > longest) return TextClass::unsettled;
    bool dot = false;
    while (at != end) {
        const auto left = static_cast<std::size_t>(end - at);
        const EightCharacters characters = left < 8 ? EightCharacters(end - 8).last(left) : EightCharacters(at);
        if (const std::uint64_t others = characters.no_digits(); others != 0) {
            if (dot || !characters.is_dot(others)) return TextClass::unsettled;
            dot = true;
        }
        at += left < 8 ? left : 8;
    }
    return dot ? TextClass::real : TextClass::integer;
}

// `unsettled` for texts of more digits than every limit of the interpreter allows.
inline TextClass classify_text(TextView text, const Script& script) noexcept {
    if (text.length == 0) return TextClass::plain;
    if (text.compact) {
        const TextClass common = classify_common(text);
        if (common != TextClass::unsettled) return common;
    }
    return classify_uncommon(text.characters, text.length, text.width, text.compact, script);
}

inline bool is_lone(TextView text, const Script& script) noexcept {
    if (text.length != 1) return text.length == 0;
    const std::uint32_t c = character(text, 0);
    if (c > 0x7f) return !script.is_alphanumeric(c);
    return !((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'));
}

constexpr std::size_t most_markers = 16;

// The marker texts of a column, to be found in its cells; short ones only.
class MarkerSet {
  public:
    // False where the text is none that this set can hold.
    bool add(TextView text) noexcept;
    // The bits of the markers that the text equals. Most texts differ from all of them in length or first character.
    [[nodiscard]] std::uint32_t find(TextView text) const noexcept {
        if (!has_length(text.length)) return 0;
        if (text.length != 0 && (firsts_[text.length] >> (character(text, 0) & 63U) & 1U) == 0) return 0;
        return find_slowly(text.characters, text.length, text.width);
    }
    [[nodiscard]] bool has_length(std::size_t length) const noexcept {
        return length <= longest_possible && (lengths_ >> length & 1U) != 0;
    }
    // No marker is longer.
    [[nodiscard]] std::size_t longest() const noexcept { return longest_; }

  private:
    static constexpr std::size_t longest_possible = 31;
    [[nodiscard]] std::uint32_t find_slowly(const void* characters, std::size_t length, int width) const noexcept;

    std::uint32_t lengths_ = 0;
    std::size_t size_ = 0;
    std::size_t longest_ = 0;
    std::array<std::uint64_t, longest_possible + 1> firsts_{};  // by length: a bit for the first character, modulo 64
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

// A walk from `row` on over the texts that are neither marker nor null. `on_text` may stop it; `row` then is where.
enum class Step { next, stop, give_up };
enum class Walk { ended, stopped, gave_up };

template <class Cells, class OnText>
Walk walk_from(std::size_t& row, const Cells& cells, const MarkerSet& markers, TextFacts& facts, OnText on_text) {
    const std::size_t rows = cells.size();
    for (; row < rows; ++row) {
        cells.prefetch(row + prefetch_distance);
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
        if (const std::uint32_t found = markers.find(text); found != 0) {
            facts.markers |= found;
            continue;
        }
        const Step step = on_text(row, text);
        if (step != Step::next) return step == Step::stop ? Walk::stopped : Walk::gave_up;
    }
    return Walk::ended;
}

// The whole column; `on_text` gives false to give up.
template <class Cells, class OnText>
Gathered walk_texts(const Cells& cells, const MarkerSet& markers, TextFacts& facts, OnText on_text) {
    std::size_t row = 0;
    const auto step = [&](std::size_t at, TextView text) { return on_text(at, text) ? Step::next : Step::give_up; };
    return walk_from(row, cells, markers, facts, step) == Walk::gave_up ? Gathered::gave_up : Gathered::all;
}

// The walk over texts whose characters do not matter: nothing but markers, nulls and lone texts is looked for. It stops
// at a lone text.
template <class Cells>
Walk skip_plain(std::size_t& row, const Cells& cells, const MarkerSet& markers, const Script& script,
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
        if (const std::uint32_t found = markers.find(text); found != 0) {
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
[[gnu::flatten]] Gathered gather_facts(const Cells& cells, const MarkerSet& markers, const Script& script,
                                       TextFacts& facts) {
    TextFacts seen;
    TextView first_plain{};
    const auto on_text = [&](std::size_t row, TextView text) {
        seen.texts = true;
        const bool lone = text.length <= 1 && is_lone(text, script);
        seen.lone = seen.lone || lone;
        switch (lone ? TextClass::plain : classify_text(text, script)) {
            case TextClass::unsettled:
                return Step::give_up;
            case TextClass::integer:
                seen.integers = true;
                break;
            case TextClass::real:
                seen.reals = true;
                break;
            case TextClass::plain:
                if (!seen.plain) {
                    seen.plain = true;
                    seen.first_plain = row;
                    first_plain = text;
                } else if (!seen.second_plain) {
                    seen.second_plain = !same(first_plain, text);
                    if (seen.second_plain && !seen.lone) return Step::stop;
                }
                break;
        }
        return Step::next;
    };
    std::size_t row = 0;
    Walk walk = Walk::stopped;
    while (walk == Walk::stopped) {
        walk = walk_from(row, cells, markers, seen, on_text);
        if (walk != Walk::stopped) break;
        const std::size_t skipped_from = row;
        walk = skip_plain(row, cells, markers, script, seen);
        if (walk == Walk::stopped) row = skipped_from;
    }
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
[[gnu::flatten]] void find_end_marker(const Cells& cells, const MarkerSet& markers, const Script& script,
                                      Ordered& least_number, Ordered& end_marker) {
    TextFacts facts;
    const auto below = [](const Ordered& least, TextView text) {
        return !least.found || compare(text, least.text) < 0;
    };
    walk_texts(cells, markers, facts, [&](std::size_t row, TextView text) {
        if (below(least_number, text) && !(text.length <= 1 && is_lone(text, script)) &&
            classify_text(text, script) != TextClass::plain) {
            least_number = {true, row, text};
        }
        return true;
    });
    if (!least_number.found) return;
    walk_texts(cells, markers, facts, [&](std::size_t row, TextView text) {
        if (text.length <= 1 && is_lone(text, script) && compare(text, least_number.text) > 0 &&
            below(end_marker, text)) {
            end_marker = {true, row, text};
        }
        return true;
    });
}

// The texts below the end marker: which numbers occur, and the distinct plain ones. Gives up beyond `most_plain` of
// them, before the search among them grows expensive.
template <class Cells>
[[gnu::flatten]] Gathered gather_below(const Cells& cells, const MarkerSet& markers, const Script& script,
                                       TextView end_marker, std::size_t most_plain, TextFacts& below,
                                       std::vector<Ordered>& plain) {
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
