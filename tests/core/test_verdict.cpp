// The verdict for every combination of facts, compared with a table.
#include "core/verdict.hpp"

#include <array>
#include <string>
#include <string_view>

#include "harness.hpp"

namespace {

using quorin::core::decide;
using quorin::core::Kind;
using quorin::core::KindSet;
using quorin::core::Rule;
using quorin::core::Verdict;
using quorin::core::VerdictFacts;
using quorin::core::word_of;
using quorin::tests::check;
using quorin::tests::Test;

void words() {
    constexpr std::array<std::string_view, quorin::core::kind_count> expected{
        "missing",   "char_str",      "date_str", "int_str", "float_str",
        "float_num", "float_int_num", "int_num",  "boolean", "Unknown"};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        check(word_of(static_cast<Kind>(i)) == expected[i], expected[i]);
    }
}

const Test words_test{"words of the kinds", words};

enum class Is { no, yes, any };

bool matches(Is wanted, bool given) {
    return wanted == Is::any || (wanted == Is::yes) == given;
}

// One letter a kind: c char_str, i int_str, f float_str, x float_num (fraction), w float_int_num (whole), n int_num,
// b boolean. A kind with a capital letter in `kinds` must occur, one with a small letter may, others must not.
constexpr std::string_view letters = "cifxwnb";
constexpr std::array<Kind, 7> kinds{Kind::char_str,      Kind::int_str, Kind::float_str, Kind::float_num,
                                    Kind::float_int_num, Kind::int_num, Kind::boolean};

struct Row {
    std::string_view kinds;
    Is one_text;
    Is end_marker;
    Is missing_rows;
    Is other_rows;
    std::string_view word;
    bool texts_are_markers;
};

constexpr Row table[] = {
    // Nothing is counted.
    {"", Is::any, Is::any, Is::yes, Is::any, "missing", false},
    {"", Is::any, Is::any, Is::no, Is::any, "Unknown", false},
    // One kind.
    {"C", Is::any, Is::any, Is::any, Is::any, "char_str", false},
    {"I", Is::any, Is::any, Is::any, Is::any, "int_str", false},
    {"F", Is::any, Is::any, Is::any, Is::any, "float_str", false},
    {"X", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"W", Is::any, Is::any, Is::any, Is::any, "float_int_num", false},
    {"N", Is::any, Is::any, Is::any, Is::any, "int_num", false},
    {"B", Is::any, Is::any, Is::any, Is::any, "boolean", false},
    // Plain texts and float texts.
    {"CFiwnb", Is::yes, Is::any, Is::any, Is::any, "float_str", true},
    {"CFiwnb", Is::no, Is::yes, Is::any, Is::any, "float_str", true},
    {"CFiwnb", Is::no, Is::no, Is::any, Is::any, "char_str", false},
    // Plain texts and integer texts.
    {"CIwnb", Is::yes, Is::any, Is::any, Is::any, "int_str", true},
    {"CIwnb", Is::no, Is::yes, Is::any, Is::any, "int_str", true},
    {"CIwnb", Is::no, Is::no, Is::any, Is::any, "char_str", false},
    // Plain texts and numbers.
    {"CWnb", Is::any, Is::any, Is::any, Is::any, "char_str", false},
    {"CNb", Is::any, Is::any, Is::any, Is::any, "char_str", false},
    {"CB", Is::any, Is::any, Is::any, Is::any, "char_str", false},
    // Float texts with integer texts or numbers, without plain texts.
    {"FIwnb", Is::any, Is::any, Is::any, Is::any, "float_str", false},
    {"FWnb", Is::any, Is::any, Is::any, Is::any, "float_str", false},
    {"FNb", Is::any, Is::any, Is::any, Is::any, "float_str", false},
    {"FB", Is::any, Is::any, Is::any, Is::any, "float_str", false},
    // No rule names a kind.
    {"IWnb", Is::any, Is::any, Is::any, Is::yes, "Unknown", false},
    {"INb", Is::any, Is::any, Is::any, Is::yes, "Unknown", false},
    {"IB", Is::any, Is::any, Is::any, Is::yes, "Unknown", false},
    {"WNb", Is::any, Is::any, Is::any, Is::yes, "Unknown", false},
    {"WB", Is::any, Is::any, Is::any, Is::yes, "Unknown", false},
    {"NB", Is::any, Is::any, Is::any, Is::yes, "Unknown", false},
    {"IWnb", Is::any, Is::any, Is::any, Is::no, "missing", false},
    {"INb", Is::any, Is::any, Is::any, Is::no, "missing", false},
    {"IB", Is::any, Is::any, Is::any, Is::no, "missing", false},
    {"WNb", Is::any, Is::any, Is::any, Is::no, "missing", false},
    {"WB", Is::any, Is::any, Is::any, Is::no, "missing", false},
    {"NB", Is::any, Is::any, Is::any, Is::no, "missing", false},
    // A fraction decides, whatever the other kinds are.
    {"XWnb", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"XNb", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"XB", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"XIwnb", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"XFiwnb", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"XCwnb", Is::any, Is::any, Is::any, Is::any, "float_num", false},
    {"XCIwnb", Is::yes, Is::any, Is::any, Is::any, "float_num", true},
    {"XCIwnb", Is::no, Is::yes, Is::any, Is::any, "float_num", true},
    {"XCIwnb", Is::no, Is::no, Is::any, Is::any, "float_num", false},
    {"XCFiwnb", Is::yes, Is::any, Is::any, Is::any, "float_num", true},
    {"XCFiwnb", Is::no, Is::yes, Is::any, Is::any, "float_num", true},
    {"XCFiwnb", Is::no, Is::no, Is::any, Is::any, "float_num", false},
};

bool matches(std::string_view pattern, const KindSet& given) {
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const char capital = static_cast<char>(letters[i] - 'a' + 'A');
        const bool must = pattern.find(capital) != std::string_view::npos;
        const bool may = must || pattern.find(letters[i]) != std::string_view::npos;
        if (given.has(kinds[i]) ? !may : must) return false;
    }
    return true;
}

bool matches(const Row& row, const VerdictFacts& facts) {
    return matches(row.kinds, facts.kinds) && matches(row.one_text, facts.one_text) &&
           matches(row.end_marker, facts.end_marker) && matches(row.missing_rows, facts.missing_rows) &&
           matches(row.other_rows, facts.other_rows);
}

std::string shown(const VerdictFacts& facts) {
    std::string text;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (facts.kinds.has(kinds[i])) text += letters[i];
    }
    return text + (facts.one_text ? " one text" : "") + (facts.end_marker ? " end marker" : "") +
           (facts.missing_rows ? " missing rows" : "") + (facts.other_rows ? " other rows" : "");
}

template <class Use>
void for_all_facts(Use use) {
    for (unsigned set = 0; set < 1U << kinds.size(); ++set) {
        VerdictFacts facts;
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            if ((set >> i & 1U) != 0) facts.kinds.add(kinds[i]);
        }
        for (unsigned flags = 0; flags < 16; ++flags) {
            facts.one_text = (flags & 1U) != 0;
            facts.end_marker = (flags & 2U) != 0;
            facts.missing_rows = (flags & 4U) != 0;
            facts.other_rows = (flags & 8U) != 0;
            use(facts);
        }
    }
}

void by_counts() {
    for_all_facts([](const VerdictFacts& facts) {
        int rows = 0;
        for (const Row& row : table) {
            if (!matches(row, facts)) continue;
            ++rows;
            const Verdict verdict = decide(facts, Rule::by_counts);
            check(word_of(verdict.kind) == row.word, shown(facts) + ": " + word_of(verdict.kind));
            check(verdict.texts_are_markers == row.texts_are_markers, shown(facts) + ": markers");
        }
        check(rows == 1, shown(facts) + ": rows of the table " + std::to_string(rows));
    });
}

const Test by_counts_test{"verdict by counts", by_counts};

// The running kind and the number texts decide; texts among number texts are always markers.
void by_last_value() {
    for_all_facts([](VerdictFacts facts) {
        for (const Kind running : kinds) {
            facts.running = running;
            for (const bool both : {false, true}) {
                facts.both_number_texts = both;
                const Verdict verdict = decide(facts, Rule::by_last_value);
                const Kind without_values = facts.other_rows ? Kind::unknown : Kind::missing;
                const Kind expected = both ? Kind::float_str : facts.kinds.empty() ? without_values : running;
                check(verdict.kind == expected, shown(facts) + ", last " + word_of(running));
                check(verdict.texts_are_markers, shown(facts) + ": markers by the last value");
            }
        }
    });
}

const Test by_last_value_test{"verdict by the last value", by_last_value};

// The verdict does not depend on facts that a gatherer may leave out.
void facts_left_out() {
    for (const Kind numbers : {Kind::int_str, Kind::float_str}) {
        const VerdictFacts without{.kinds = {Kind::char_str}};
        const VerdictFacts with{.kinds = {Kind::char_str, numbers}};
        check(decide(without, Rule::by_counts).kind == decide(with, Rule::by_counts).kind, "numbers beside two texts");
    }
    for (const Kind other : {Kind::float_int_num, Kind::int_num, Kind::boolean}) {
        const VerdictFacts without{.kinds = {Kind::float_num}};
        const VerdictFacts with{.kinds = {Kind::float_num, other}};
        check(decide(without, Rule::by_counts).kind == decide(with, Rule::by_counts).kind, "numbers beside a fraction");
    }
}

const Test facts_left_out_test{"verdict facts left out", facts_left_out};

}  // namespace
