// Gathers the facts that the verdict on a column of texts depends on, in one walk over its rows. The verdict is defined
// by the sorted distinct values, but they need not be computed.
//
// A text is a number text (an integer, or a real number with a dot) or a plain text. A lone text is "" or one character
// that is neither letter nor digit. Unless the column has both lone texts and number texts, the verdict depends only
// on: the references and nulls that occur, whether integers and reals occur, the first plain text, whether there is a
// second one. Otherwise further walks find the end marker, the least lone text above the least number text, and gather
// the texts below it: only those count.
//
// All walks take a range of rows, so that a caller can run other code between two ranges. Texts are borrowed: if such
// code may free or move them, call refresh() before the next range. It reads the few texts that are kept again, from
// rows that must still hold the same texts.
#pragma once

#include <vector>

#include "core/cells/cells.hpp"
#include "core/references/reference_texts.hpp"
#include "core/text/number_text.hpp"

namespace quorin::core {

inline bool is_ascii_letter(std::uint32_t c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

inline bool is_lone(TextView text, const CharacterTables& tables) noexcept {
    if (!is_one_character(text)) return text.size == 0;
    const std::uint32_t c = first_character(text);
    if (c > 0x7f) return !tables.is_alphanumeric(c);
    return !((c >= '0' && c <= '9') || is_ascii_letter(c));
}

// The set of the lone texts that occur, except "": one bit for each ASCII character.
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
    // Whether a lone text is above a text that starts with `first` and has more characters. If there are lone texts
    // beyond ASCII, always returns true.
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
    ReferenceBits references = 0;  // the references that occur
    bool nulls = false;
    bool texts = false;  // a text that is not a reference
    bool integers = false;
    bool reals = false;
    bool lone = false;
    bool plain = false;
    bool second_plain = false;       // a plain text that differs from the first one
    bool lone_may_be_above = false;  // a lone text may be above a number text; unspecified if numbers do not matter
    std::size_t first_plain = 0;     // the row of the first plain text
    [[nodiscard]] bool numbers() const noexcept { return integers || reals; }
};

// A walk gives up at a cell of unknown type or a text of unknown class.
enum class Walk { ended, stopped, gave_up };

// The rows first to last - 1.
struct RowRange {
    std::size_t first;
    std::size_t last;
};

// Whether a walk continues after a text.
enum class Step { next, stop, give_up };

constexpr auto no_row = [](std::size_t) { return false; };

// Calls on_text(row, text) for the texts of rows[row .. last) that are not references, except the rows for which
// skip(row) is true; records references and nulls in `facts`. A text that glance() returns, a reference included, is
// passed to on_short(text) first; if that returns true, the text is done. If on_text stops the walk, `row` is the row
// of the text.
template <class Cells, class Skip, class OnShort, class OnText>
Walk walk_from(std::size_t& row, std::size_t last, const Cells& cells, const ReferenceTexts& references,
               TextFacts& facts, Skip skip, OnShort on_short, OnText on_text) {
    for (; row < last; ++row) {
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
        if (const ReferenceBits found = references.find(text); found != 0) {
            facts.references |= found;
            continue;
        }
        const Step step = on_text(row, text);
        if (step != Step::next) return step == Step::stop ? Walk::stopped : Walk::gave_up;
    }
    return Walk::ended;
}

// The same for all rows of a range.
template <class Cells, class OnShort, class OnText>
Walk walk_texts(RowRange rows, const Cells& cells, const ReferenceTexts& references, TextFacts& facts, OnShort on_short,
                OnText on_text) {
    return walk_from(rows.first, rows.last, cells, references, facts, no_row, on_short, on_text);
}

// A walk for which the class of a text does not matter: records references and nulls, and stops at a lone text.
template <class Cells>
Walk skip_plain(std::size_t& row, std::size_t last, const Cells& cells, const ReferenceTexts& references,
                const CharacterTables& tables, TextFacts& facts) {
    const std::size_t longest =
        references.longest() < longest_character<Cells> ? longest_character<Cells> : references.longest();
    for (; row < last; ++row) {
        cells.prefetch(row + prefetch_distance);
        if (cells.longer_than(row, longest)) [[likely]]
            continue;
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
        if (text.size > longest) continue;
        if (const ReferenceBits found = references.find(text); found != 0) {
            facts.references |= found;
        } else if (text.size <= longest_character<Cells> && is_lone(text, tables)) {
            return Walk::stopped;
        }
    }
    return Walk::ended;
}

// Gathers TextFacts from ranges of rows:
//     for (row = 0; row < rows && !gatherer.gave_up();) row = gatherer.gather(cells, row, min(row + some, rows));
//
// After two different plain texts and no lone text, numbers do not matter: the column is text with or without them. If
// a lone text follows, the numbers do matter, and the walk returns to the first skipped row.
class TextGatherer {
  public:
    TextGatherer(const ReferenceTexts& references, const CharacterTables& tables) noexcept
        : references_(&references),
          tables_(&tables),
          longest_special_(references.longest() < 1 ? 1 : references.longest()) {}

    // Walks over the rows first to last - 1. Returns the row at which the next call must start: `last`, or at most once
    // the first skipped row.
    template <class Cells>
    [[gnu::flatten]] std::size_t gather(const Cells& cells, std::size_t first, std::size_t last) {
        // The compiler keeps a local copy in registers.
        TextGatherer state = *this;
        const std::size_t row = state.walk(cells, first, last);
        *this = state;
        return row;
    }
    // Reads the first plain text again. Returns false if the cell is no longer a text.
    template <class Cells>
    [[nodiscard]] bool refresh(const Cells& cells) {
        return !facts_.plain || cells.read(facts_.first_plain, first_plain_) == Cell::text;
    }
    [[nodiscard]] bool gave_up() const noexcept { return gave_up_; }
    [[nodiscard]] TextFacts finish() const noexcept {
        TextFacts facts = facts_;
        facts.integers = facts.integers || digits_;
        facts.texts = facts.plain || facts.numbers();
        const std::uint32_t least = digits_ && least_start_ > '0' ? '0' : least_start_;
        facts.lone_may_be_above = facts.numbers() && lone_texts_.may_be_above(least);
        return facts;
    }

  private:
    enum class Mode {
        all,     // fewer than two different plain texts are known
        skip,    // two plain texts and no lone text are known: classes do not matter
        numbers  // two plain texts and a lone text are known: further plain texts do not matter
    };

    template <class Cells>
    std::size_t walk(const Cells& cells, std::size_t row, std::size_t last) {
        const auto on_short = [this](ShortText text) { return add_short(text); };
        const auto on_text = [this](std::size_t at, TextView text) { return add_text(at, text); };
        Walk walk = Walk::ended;
        if (mode_ == Mode::all) {
            walk = walk_from(row, last, cells, *references_, facts_, no_row, on_short, on_text);
            if (walk == Walk::stopped) {
                mode_ = facts_.lone ? Mode::numbers : Mode::skip;
                skipped_from_ = row;
            }
        }
        if (mode_ == Mode::skip) {
            walk = skip_plain(row, last, cells, *references_, *tables_, facts_);
            if (walk == Walk::stopped) {
                mode_ = Mode::numbers;
                return skipped_from_;
            }
        }
        if (mode_ == Mode::numbers) {
            // Number texts do not start with a letter.
            const auto plain_words = [&](std::size_t at) {
                TextView text{};
                return cells.read(at, text) == Cell::text && text.size > longest_special_ &&
                       is_ascii_letter(unit(text, 0));
            };
            walk = walk_from(row, last, cells, *references_, facts_, plain_words, on_short, on_text);
        }
        gave_up_ = walk == Walk::gave_up;
        return row;
    }

    bool add_short(ShortText text) noexcept {
        if (text.length <= longest_special_) {
            if (const ReferenceBits found = references_->find(text); found != 0) {
                facts_.references |= found;
                return true;
            }
        }
        const auto first = static_cast<std::uint8_t>(text.value());
        if (others_of(text) == 0) {
            digits_ = true;
            return true;
        }
        const TextClass text_class = classify_short(text);
        if (text_class != TextClass::integer && text_class != TextClass::real) {
            return text.length == 1 && lone_texts_.has_ascii(first);
        }
        add_number(text_class, first);
        return true;
    }

    Step add_text(std::size_t row, TextView text) noexcept {
        const bool lone = is_lone(text, *tables_);
        facts_.lone = facts_.lone || lone;
        if (lone && text.size != 0) lone_texts_.add(first_character(text));
        const TextClass text_class = lone ? TextClass::plain : classify_text(text, *tables_);
        switch (text_class) {
            case TextClass::unsettled:
                return Step::give_up;
            case TextClass::integer:
            case TextClass::real:
                add_number(text_class, first_character(text));
                break;
            case TextClass::plain:
                return add_plain(row, text);
        }
        return Step::next;
    }

    void add_number(TextClass text_class, std::uint32_t first) noexcept {
        (text_class == TextClass::integer ? facts_.integers : facts_.reals) = true;
        least_start_ = first < least_start_ ? first : least_start_;
    }

    // Stops the walk at the second different plain text.
    Step add_plain(std::size_t row, TextView text) noexcept {
        if (!facts_.plain) {
            facts_.plain = true;
            facts_.first_plain = row;
            first_plain_ = text;
        } else if (!facts_.second_plain && !same(first_plain_, text)) {
            facts_.second_plain = true;
            return Step::stop;
        }
        return Step::next;
    }

    const ReferenceTexts* references_;
    const CharacterTables* tables_;
    std::size_t longest_special_;  // longer texts are neither references nor lone ASCII characters
    TextFacts facts_;
    TextView first_plain_{};
    LoneTexts lone_texts_;
    std::uint32_t least_start_ = 0xffffffffU;  // least first character of number texts that are not digits only
    bool digits_ = false;                      // a text of digits only occurs
    bool gave_up_ = false;
    Mode mode_ = Mode::all;
    std::size_t skipped_from_ = 0;
};

// The facts of a whole column.
template <class Cells>
[[nodiscard]] Walk gather_facts(const Cells& cells, const ReferenceTexts& references, const CharacterTables& tables,
                                TextFacts& facts) {
    TextGatherer gatherer(references, tables);
    for (std::size_t row = 0; row < cells.size() && !gatherer.gave_up();) {
        row = gatherer.gather(cells, row, cells.size());
    }
    facts = gatherer.finish();
    return gatherer.gave_up() ? Walk::gave_up : Walk::ended;
}

// A text and its row, if there is one.
struct Ordered {
    bool found = false;
    std::size_t row = 0;
    TextView text{};
};

// Reads the texts again. Returns false if a cell is no longer a text.
template <class Cells, class Entry>
[[nodiscard]] bool refresh(const Cells& cells, std::vector<Entry>& entries) {
    for (Entry& entry : entries) {
        if (cells.read(entry.row, entry.text) != Cell::text) return false;
    }
    return true;
}

template <class Cells>
[[nodiscard]] bool refresh(const Cells& cells, Ordered& entry) {
    return !entry.found || cells.read(entry.row, entry.text) == Cell::text;
}

// least_number = min(least_number, least number text of the rows).
template <class Cells>
[[gnu::flatten]] void find_least_number(RowRange rows, const Cells& cells, const ReferenceTexts& references,
                                        const CharacterTables& tables, Ordered& least_number) {
    TextFacts facts;
    std::uint64_t least_order = ~std::uint64_t{0};
    const auto keep_order = [&] {
        if (ShortText few{}; cells.glance(least_number.row, few)) least_order = ascending_key(few);
    };
    if (least_number.found) keep_order();
    const auto is_above = [&](ShortText text) { return ascending_key(text) > least_order; };
    walk_texts(rows, cells, references, facts, is_above, [&](std::size_t row, TextView text) {
        if ((!least_number.found || compare(text, least_number.text) < 0) && !is_lone(text, tables) &&
            classify_text(text, tables) != TextClass::plain) {
            least_number = {true, row, text};
            keep_order();
        }
        return Step::next;
    });
}

// end_marker = min(end_marker, least lone text of the rows that is above least_number).
template <class Cells>
[[gnu::flatten]] void find_lone_above(RowRange rows, const Cells& cells, const ReferenceTexts& references,
                                      const CharacterTables& tables, const Ordered& least_number, Ordered& end_marker) {
    TextFacts facts;
    const auto is_long = [](ShortText text) { return text.length > 1; };
    walk_texts(rows, cells, references, facts, is_long, [&](std::size_t row, TextView text) {
        if (is_lone(text, tables) && compare(text, least_number.text) > 0 &&
            (!end_marker.found || compare(text, end_marker.text) < 0)) {
            end_marker = {true, row, text};
        }
        return Step::next;
    });
}

// The same for a whole column: the least number text and the least lone text above it.
template <class Cells>
void find_end_marker(const Cells& cells, const ReferenceTexts& references, const CharacterTables& tables,
                     Ordered& least_number, Ordered& end_marker) {
    const RowRange all{0, cells.size()};
    find_least_number(all, cells, references, tables, least_number);
    if (least_number.found) find_lone_above(all, cells, references, tables, least_number, end_marker);
}

// Gathers the texts below the end marker, which is one character: which number texts occur, and the distinct plain
// texts, ascending. Gives up at more than `most_plain` plain texts, because the search is linear.
template <class Cells>
[[nodiscard, gnu::flatten]] Walk gather_below(RowRange rows, const Cells& cells, const ReferenceTexts& references,
                                              const CharacterTables& tables, TextView end_marker,
                                              std::size_t most_plain, TextFacts& below, std::vector<Ordered>& plain) {
    const std::uint32_t end_character = first_character(end_marker);
    const auto add_number = [&](TextClass text_class) {
        if (text_class != TextClass::integer && text_class != TextClass::real) return false;
        (text_class == TextClass::integer ? below.integers : below.reals) = true;
        return true;
    };
    const auto on_short = [&](ShortText text) {
        if (static_cast<std::uint8_t>(text.value()) >= end_character) return true;
        if (references.find(text) != 0) return true;
        return add_number(classify_short(text));
    };
    return walk_texts(rows, cells, references, below, on_short, [&](std::size_t row, TextView text) {
        if (compare(text, end_marker) >= 0) return Step::next;
        const TextClass text_class = classify_text(text, tables);
        if (add_number(text_class)) return Step::next;
        if (text_class == TextClass::unsettled) return Step::give_up;
        auto place = plain.begin();
        while (place != plain.end() && compare(place->text, text) < 0) ++place;
        if (place != plain.end() && same(place->text, text)) return Step::next;
        if (plain.size() == most_plain) return Step::give_up;
        plain.insert(place, Ordered{true, row, text});
        return Step::next;
    });
}

// The same for a whole column.
template <class Cells>
[[nodiscard]] Walk gather_below(const Cells& cells, const ReferenceTexts& references, const CharacterTables& tables,
                                TextView end_marker, std::size_t most_plain, TextFacts& below,
                                std::vector<Ordered>& plain) {
    return gather_below({0, cells.size()}, cells, references, tables, end_marker, most_plain, below, plain);
}

}  // namespace quorin::core
