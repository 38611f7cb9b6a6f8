// Facts of text columns compared with their definition: the sorted distinct texts up to the marker that ends the scan.
#include "core/gather/text_facts.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "harness.hpp"
#include "number_reference.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::Cell;
using core::CharacterTables;
using core::Ordered;
using core::ReferenceTexts;
using core::TextClass;
using core::TextFacts;
using core::TextView;
using core::Walk;

// Three non-ASCII characters: a letter, a digit, white space.
constexpr char32_t letter = 0xe9;
constexpr char32_t digit_one = 0x661;
constexpr char32_t no_break_space = 0xa0;
constexpr CharacterTables script{[](std::uint32_t c) { return c == letter || c == digit_one; },
                                 [](std::uint32_t c) {
                                     if (c < 0x7f) return static_cast<int>(c);
                                     return c == digit_one ? '1' : c == no_break_space ? ' ' : -1;
                                 }};

const std::u32string null_cell{U"null"};
const std::u32string other_cell{U"other"};

class Column {
  public:
    void add(const std::u32string& text, Stored stored) {
        kinds_.push_back(text == null_cell ? Cell::null : text == other_cell ? Cell::other : Cell::text);
        texts_.emplace_back(text, stored);
    }
    [[nodiscard]] std::size_t size() const { return texts_.size(); }
    [[nodiscard]] Cell read(std::size_t row, TextView& text) const {
        if (kinds_[row] == Cell::text) text = texts_[row].view();
        return kinds_[row];
    }
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t length) const {
        // Returns false for some longer texts, which the interface allows.
        return row % 2 == 0 && kinds_[row] == Cell::text && texts_[row].view().size > length;
    }
    [[nodiscard]] bool glance(std::size_t row, core::ShortText& text) const {
        if (row % 3 == 0 || kinds_[row] != Cell::text) return false;
        const TextView view = texts_[row].view();
        if (!view.is_padded() || view.size == 0 || view.size > 8) return false;
        text = {core::eight_bytes(static_cast<const char*>(view.characters) + view.size - 8), view.size};
        return true;
    }
    void prefetch(std::size_t) const {}

  private:
    std::vector<Cell> kinds_;
    std::vector<StoredText> texts_;
};

}  // namespace
}  // namespace quorin::tests

template <>
inline constexpr std::size_t quorin::core::longest_character<quorin::tests::Column> = 4;

namespace quorin::tests {
namespace {

TextClass class_of(const std::u32string& text) {
    std::string ascii;
    for (const char32_t c : text) {
        const int translated = script.translated(c);
        if (translated < 0) return TextClass::plain;
        ascii.push_back(static_cast<char>(translated));
    }
    const core::NumberText number = number_by_reference(ascii);
    if (number == core::NumberText::integer) return TextClass::integer;
    const bool dot = ascii.find('.') != std::string::npos;
    return number == core::NumberText::real && dot ? TextClass::real : TextClass::plain;
}

bool is_lone(const std::u32string& text) {
    if (text.size() != 1) return text.empty();
    const char32_t c = text[0];
    if (c > 0x7f) return !script.is_alphanumeric(c);
    return !((c >= U'0' && c <= U'9') || (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z'));
}

// The facts by definition, from the sorted distinct texts.
struct Expected {
    std::set<std::u32string> distinct;
    std::set<std::u32string> plain;
    std::u32string first_plain;
    std::uint32_t markers = 0;
    bool nulls = false;
    bool lone = false;
    bool integers = false;
    bool reals = false;
    const std::u32string* least_number = nullptr;
    const std::u32string* end_marker = nullptr;
    std::set<std::u32string> plain_below;
    bool integers_below = false;
    bool reals_below = false;
};

void count(TextClass text_class, bool& integers, bool& reals) {
    integers = integers || text_class == TextClass::integer;
    reals = reals || text_class == TextClass::real;
}

Expected by_reference(const std::vector<std::u32string>& rows, const std::vector<std::u32string>& markers) {
    Expected expected;
    for (const std::u32string& text : rows) {
        if (text == null_cell) {
            expected.nulls = true;
            continue;
        }
        std::uint32_t found = 0;
        for (std::size_t i = 0; i < markers.size(); ++i) found |= markers[i] == text ? 1U << i : 0;
        expected.markers |= found;
        if (found != 0) continue;
        if (class_of(text) == TextClass::plain && expected.plain.empty()) expected.first_plain = text;
        if (class_of(text) == TextClass::plain) expected.plain.insert(text);
        expected.distinct.insert(text);
    }
    for (const std::u32string& text : expected.distinct) {
        expected.lone = expected.lone || is_lone(text);
        count(class_of(text), expected.integers, expected.reals);
        if (class_of(text) != TextClass::plain && expected.least_number == nullptr) expected.least_number = &text;
        if (is_lone(text) && expected.least_number != nullptr && expected.end_marker == nullptr) {
            expected.end_marker = &text;
        }
    }
    for (const std::u32string& text : expected.distinct) {
        if (expected.end_marker == nullptr || text >= *expected.end_marker) break;
        count(class_of(text), expected.integers_below, expected.reals_below);
        if (class_of(text) == TextClass::plain) expected.plain_below.insert(text);
    }
    return expected;
}

void expect_below(const Expected& expected, const Column& column, const ReferenceTexts& markers, TextView end_marker,
                  const std::string& what) {
    TextFacts below;
    std::vector<Ordered> plain;
    const Walk gathered = gather_below(column, markers, script, end_marker, 256, below, plain);
    check(gathered == Walk::ended, what + ": below the end marker");
    check(below.integers == expected.integers_below, what + ": integers below the end marker");
    check(below.reals == expected.reals_below, what + ": reals below the end marker");
    std::vector<std::u32string> found;
    for (const Ordered& text : plain) found.push_back(characters_of(text.text));
    const std::vector<std::u32string> wanted(expected.plain_below.begin(), expected.plain_below.end());
    check(found == wanted, what + ": plain texts below the end marker, ascending");

    if (wanted.empty()) return;
    TextFacts fewer;
    std::vector<Ordered> some;
    check(gather_below(column, markers, script, end_marker, wanted.size() - 1, fewer, some) == Walk::gave_up,
          what + ": one plain text too many");
}

void expect(const std::vector<std::u32string>& rows, const std::vector<std::u32string>& marker_texts,
            const Column& column, const std::string& what) {
    const Expected expected = by_reference(rows, marker_texts);
    std::vector<StoredText> stored;
    ReferenceTexts markers;
    stored.reserve(marker_texts.size());
    for (const std::u32string& text : marker_texts) {
        stored.emplace_back(text, every_storage[stored.size() % 4]);
        check(markers.add(stored.back().view()), what + ": a marker");
    }
    TextFacts facts;
    check(gather_facts(column, markers, script, facts) == Walk::ended, what + ": gathered");
    check(facts.references == expected.markers, what + ": markers");
    check(facts.nulls == expected.nulls, what + ": nulls");
    check(facts.texts == !expected.distinct.empty(), what + ": texts");
    check(facts.lone == expected.lone, what + ": lone");
    check(facts.plain == !expected.plain.empty(), what + ": plain");
    check(facts.second_plain == (expected.plain.size() > 1), what + ": second plain");
    if (facts.plain && expected.plain.size() == 1) {
        TextView first{};
        check(column.read(facts.first_plain, first) == Cell::text, what + ": first plain is a text");
        check(characters_of(first) == expected.first_plain, what + ": first plain");
    }
    if (facts.second_plain && !facts.lone) return;  // the verdict does not depend on numbers
    check(facts.integers == expected.integers, what + ": integers");
    check(facts.reals == expected.reals, what + ": reals");

    check(facts.lone_may_be_above || expected.end_marker == nullptr, what + ": a lone text above a number");
    const bool ascii_alone = std::all_of(expected.distinct.begin(), expected.distinct.end(), is_ascii);
    check(!(facts.lone_may_be_above && ascii_alone) || expected.end_marker != nullptr, what + ": none above a number");

    Ordered least_number;
    Ordered end_marker;
    find_end_marker(column, markers, script, least_number, end_marker);
    check(least_number.found == (expected.least_number != nullptr), what + ": least number");
    check(end_marker.found == (expected.end_marker != nullptr), what + ": end marker");
    if (least_number.found && expected.least_number != nullptr) {
        check(characters_of(least_number.text) == *expected.least_number, what + ": which least number");
    }
    if (end_marker.found && expected.end_marker != nullptr) {
        check(characters_of(end_marker.text) == *expected.end_marker, what + ": which end marker");
        expect_below(expected, column, markers, end_marker.text, what);
    }
}

const std::vector<std::u32string> vocabulary{U"",
                                             U"?",
                                             U"*",
                                             U"-",
                                             U".",
                                             U"~",
                                             U" ",
                                             U"#",
                                             U"a",
                                             U"7",
                                             U"12",
                                             U"-12",
                                             U"1.5",
                                             U"+.5",
                                             U"1.",
                                             U" 3 ",
                                             U"1e5",
                                             U"1.5e3",
                                             U"nan",
                                             U"-inf",
                                             U"NA",
                                             U"NB",
                                             U"n/a",
                                             U"red",
                                             U"green",
                                             U"a rather long plain text",
                                             U"-a rather long one",
                                             U"1234567890",
                                             U"12345678.90123456789",
                                             U"1_000",
                                             U"1__0",
                                             std::u32string(1, letter),
                                             std::u32string(1, 0xa7),
                                             std::u32string{digit_one, U'2'},
                                             std::u32string{no_break_space, U'4'},
                                             std::u32string{U'5', letter},
                                             std::u32string{U'a', U'\0'},
                                             std::u32string{U'1', U'\0'},
                                             std::u32string{U'\0'}};

const std::vector<std::u32string> marker_vocabulary{U"",
                                                    U"?",
                                                    U"NA",
                                                    U"-",
                                                    U"7",
                                                    U"missing",
                                                    U"a rather long plain text",
                                                    std::u32string{U'a', U'\0'},
                                                    std::u32string(1, letter)};

// A random storage; four bytes a character if it cannot hold the text.
Stored some_storage(const std::u32string& text, std::mt19937& random) {
    const Stored stored = every_storage[random() % every_storage.size()];
    return fits(text, stored) ? stored : Stored::four_bytes;
}

std::vector<std::u32string> some_of(const std::vector<std::u32string>& texts, std::size_t most, std::mt19937& random) {
    std::vector<std::u32string> some;
    for (std::size_t i = random() % (most + 1); i != 0; --i) {
        const std::u32string& text = texts[random() % texts.size()];
        if (std::find(some.begin(), some.end(), text) == some.end()) some.push_back(text);
    }
    return some;
}

void random_columns() {
    std::mt19937 random(3);
    for (int i = 0; i < 30000; ++i) {
        // Few distinct texts in a column, so that every combination of facts occurs.
        std::vector<std::u32string> distinct = some_of(vocabulary, 6, random);
        if (random() % 3 == 0) distinct.push_back(null_cell);
        const std::vector<std::u32string> markers = some_of(marker_vocabulary, 4, random);
        std::vector<std::u32string> rows(distinct.empty() ? 0 : random() % 12);
        Column column;
        for (std::u32string& row : rows) {
            row = distinct[random() % distinct.size()];
            column.add(row, some_storage(row, random));
        }
        expect(rows, markers, column, "random column " + std::to_string(i));
    }
}

void other_cells() {
    for (std::size_t place = 0; place < 6; ++place) {
        Column column;
        for (std::size_t row = 0; row < 6; ++row) {
            column.add(row == place ? other_cell : row % 2 == 0 ? U"red" : U"green", Stored::padded);
        }
        TextFacts facts;
        check(gather_facts(column, {}, script, facts) == Walk::gave_up, "cell " + std::to_string(place));
    }
}

// The least limit on digits is 640. Beyond, only the interpreter can classify the text: the kernel gives up, unless two
// plain texts have already decided.
void too_many_digits() {
    for (const Stored stored : every_storage) {
        TextFacts facts;
        Column alone;
        alone.add(std::u32string(641, U'1'), stored);
        check(gather_facts(alone, {}, script, facts) == Walk::gave_up, "digits alone");
        Column after_two_words;
        for (const auto& text : {std::u32string{U"red"}, std::u32string{U"green"}, std::u32string(641, U'1')}) {
            after_two_words.add(text, stored);
        }
        check(gather_facts(after_two_words, {}, script, facts) == Walk::ended, "digits after two words");
        after_two_words.add(U"*", stored);
        check(gather_facts(after_two_words, {}, script, facts) == Walk::gave_up, "digits, then a lone text");
    }
}

const std::array tests{
    Test{"random text columns", random_columns},
    Test{"cells of no known kind", other_cells},
    Test{"too many digits", too_many_digits},
};

}  // namespace
}  // namespace quorin::tests
