// Cells in Arrow's layouts compared with cells of four-byte characters: each cell, and the facts that kernels gather.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "arrow_text.hpp"
#include "core/distinct/text_order.hpp"
#include "core/gather/least_distinct.hpp"
#include "core/gather/text_facts.hpp"
#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::Cell;
using core::CharacterTables;
using core::Ordered;
using core::ReferenceTexts;
using core::ShortText;
using core::TextFacts;
using core::TextView;
using core::Walk;

// Non-ASCII letters, digits and white space that take two, three and four bytes in UTF-8.
bool is_letter(std::uint32_t c) {
    return c == 0xe9 || c == 0x6f22 || c == 0x10400;
}

int translated(std::uint32_t c) {
    if (c < 0x80) return static_cast<int>(c);
    if (c == 0xa0 || c == 0x2003) return ' ';
    return c == 0x661 || c == 0x966 || c == 0x1d7d8 ? '1' : -1;
}

constexpr CharacterTables tables{[](std::uint32_t c) { return is_letter(c) || translated(c) == '1'; }, translated};

// The same rows in four-byte characters. glance() always returns false.
class FourByteColumn {
  public:
    explicit FourByteColumn(const Rows& rows) {
        for (const auto& row : rows) {
            valid_.push_back(row.has_value());
            texts_.emplace_back(row.value_or(U""), Stored::four_bytes);
        }
    }
    [[nodiscard]] std::size_t size() const { return texts_.size(); }
    void prefetch(std::size_t) const {}
    [[nodiscard]] static bool longer_than(std::size_t, std::size_t) { return false; }
    [[nodiscard]] static bool glance(std::size_t, ShortText&) { return false; }
    Cell read(std::size_t row, TextView& text) const {
        text = texts_[row].view();
        return valid_[row] ? Cell::text : Cell::null;
    }

  private:
    std::vector<bool> valid_;
    std::vector<StoredText> texts_;
};

constexpr std::array<char32_t, 18> alphabet{U'a', U'7', U'.',  U'-', U' ',   U'?',   U'\0', U'Z',    0x7f,
                                            0xe9, 0xa0, 0x661, 0xa7, 0x6f22, 0x2003, 0x966, 0x1d7d8, 0x10400};

std::u32string random_text(std::mt19937& random, std::size_t letters) {
    constexpr std::array<std::size_t, 6> longest{1, 2, 4, 9, 17, 40};
    std::u32string text(random() % (longest[random() % longest.size()] + 1), U'a');
    for (char32_t& c : text) c = alphabet[random() % letters];
    return text;
}

Rows random_rows(std::mt19937& random) {
    const std::size_t letters = random() % 2 == 0 ? 9 : alphabet.size();
    Rows pool(1 + random() % 8);
    for (auto& row : pool) {
        if (random() % 6 != 0) row = random_text(random, letters);
    }
    Rows rows(random() % 20);
    for (auto& row : rows) row = pool[random() % pool.size()];
    return rows;
}

template <class Cells>
void check_cells(const Rows& rows, const Cells& cells, const std::string& what) {
    check(cells.size() == rows.size(), what + ": rows");
    for (std::size_t row = 0; row < rows.size(); ++row) {
        TextView text{};
        const Cell cell = cells.read(row, text);
        check(cell == (rows[row] ? Cell::text : Cell::null), what + ": type of a cell");
        ShortText glanced{};
        const bool seen = cells.glance(row, glanced);
        for (const std::size_t size : {0U, 1U, 4U, 12U, 13U, 40U}) {
            const bool longer = cells.longer_than(row, size);
            check(longer == (rows[row] && to_utf8(*rows[row]).size() > size), what + ": longer than");
        }
        if (!rows[row]) {
            check(!seen, what + ": a null at a glance");
            continue;
        }
        check(characters_of(text) == *rows[row], what + ": characters");
        check(!text.is_ascii() || is_ascii(*rows[row]), what + ": known as ASCII");
        if (!seen) continue;
        const std::string bytes = to_utf8(*rows[row]);
        std::uint64_t value = 0;
        std::memcpy(&value, bytes.data(), std::min<std::size_t>(bytes.size(), 8));
        check(is_ascii(*rows[row]) && glanced.length == bytes.size() && glanced.value() == value,
              what + ": at a glance");
    }
}

void check_same(const Ordered& found, const Ordered& expected, const std::string& what) {
    check(found.found == expected.found, what);
    if (!found.found || !expected.found) return;
    check(found.row == expected.row && characters_of(found.text) == characters_of(expected.text), what + ", which");
}

// Gathers range by range; after each range the kept texts are read again.
template <class Cells>
TextFacts facts_in_ranges(const Cells& cells, const ReferenceTexts& references, std::size_t some,
                          const std::string& what) {
    core::TextGatherer gatherer(references, tables);
    for (std::size_t row = 0; row < cells.size() && !gatherer.gave_up();) {
        row = gatherer.gather(cells, row, std::min(row + some, cells.size()));
        check(gatherer.refresh(cells), what + ": read again");
    }
    return gatherer.finish();
}

void check_facts(const TextFacts& found, const TextFacts& expected, const std::string& what) {
    check(found.references == expected.references, what + ": references");
    check(found.nulls == expected.nulls && found.texts == expected.texts, what + ": nulls and texts");
    check(found.lone == expected.lone && found.plain == expected.plain, what + ": lone and plain");
    check(found.second_plain == expected.second_plain, what + ": second plain");
    check(found.first_plain == expected.first_plain, what + ": first plain");
    check(found.lone_may_be_above == expected.lone_may_be_above || (found.second_plain && !found.lone),
          what + ": a lone text above a number");
    if (found.second_plain && !found.lone) return;  // the verdict does not depend on numbers
    check(found.integers == expected.integers && found.reals == expected.reals, what + ": numbers");
}

template <class Cells>
void check_kernels(const Rows& rows, const Cells& cells, const ReferenceTexts& references, const std::string& what) {
    const FourByteColumn same(rows);
    TextFacts expected;
    TextFacts found;
    check(gather_facts(same, references, tables, expected) == gather_facts(cells, references, tables, found),
          what + ": gathered");
    check_facts(found, expected, what);
    for (const std::size_t some : {1U, 3U}) {
        check_facts(facts_in_ranges(cells, references, some, what), expected, what + ", in ranges");
    }
    Ordered number;
    Ordered end;
    Ordered expected_number;
    Ordered expected_end;
    find_end_marker(cells, references, tables, number, end);
    find_end_marker(same, references, tables, expected_number, expected_end);
    check_same(number, expected_number, what + ": least number");
    check_same(end, expected_end, what + ": end marker");
    if (end.found && expected_end.found) {
        TextFacts below;
        TextFacts expected_below;
        std::vector<Ordered> plain;
        std::vector<Ordered> expected_plain;
        check(gather_below(cells, references, tables, end.text, 256, below, plain) ==
                  gather_below(same, references, tables, expected_end.text, 256, expected_below, expected_plain),
              what + ": below the end marker");
        check(below.integers == expected_below.integers && below.reals == expected_below.reals,
              what + ": numbers below");
        check(plain.size() == expected_plain.size(), what + ": plain texts below");
        for (std::size_t i = 0; i < std::min(plain.size(), expected_plain.size()); ++i) {
            check_same(plain[i], expected_plain[i], what + ": a plain text below");
        }
    }
    std::vector<core::KeyedText> least;
    std::vector<core::KeyedText> expected_least;
    bool nulls = false;
    bool expected_nulls = false;
    check(least_distinct(cells, references, 4, least, nulls), what + ": least texts");
    check(least_distinct(same, references, 4, expected_least, expected_nulls), what + ": least texts expected");
    check(nulls == expected_nulls && least.size() == expected_least.size(), what + ": how many least texts");
    for (std::size_t i = 0; i < std::min(least.size(), expected_least.size()); ++i) {
        check(least[i].row == expected_least[i].row && least[i].key == expected_least[i].key, what + ": a least text");
    }
    core::LeastDistinct in_ranges(4);
    for (std::size_t row = 0; row < cells.size(); row += 3) {
        const Walk walk = in_ranges.gather({row, std::min(row + 3, cells.size())}, cells, references);
        check(walk == Walk::ended && in_ranges.refresh(cells), what + ": least texts in ranges");
    }
    const std::vector<core::KeyedText> again = std::move(in_ranges).finish();
    check(again.size() == least.size(), what + ": how many least texts in ranges");
    for (std::size_t i = 0; i < std::min(least.size(), again.size()); ++i) {
        check(again[i].row == least[i].row, what + ": a least text in ranges");
    }
}

template <class Cells>
std::vector<std::pair<std::size_t, std::int64_t>> distinct_of(const Cells& cells) {
    const auto is_null = [&](std::size_t row) {
        TextView text{};
        return cells.read(row, text) == Cell::null;
    };
    core::TextTable table(cells.size());
    check(add_all(table, cells, is_null), "nothing but texts and nulls");
    std::vector<std::pair<std::size_t, std::int64_t>> distinct;
    for (const std::uint32_t entry : core::ascending(table.entries())) {
        distinct.emplace_back(table.entries()[entry].row, table.entries()[entry].count);
    }
    return distinct;
}

void random_columns() {
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        const Rows rows = random_rows(random);
        std::vector<StoredText> stored;
        stored.reserve(4);
        ReferenceTexts references;
        for (std::size_t some = random() % 4; some != 0; --some) {
            const bool known = !rows.empty() && random() % 2 == 0;
            const auto& row = known ? rows[random() % rows.size()] : std::nullopt;
            const std::u32string text = row ? *row : random_text(random, 9);
            // A text of more than 31 characters is rejected.
            stored.emplace_back(text.substr(0, 31), random() % 2 == 0 ? Stored::four_bytes : Stored::utf8);
            check(references.add(stored.back().view()), "a reference");
        }
        const Slice slice{random() % 3 == 0 ? 0 : random() % 20, random() % 3};
        const auto expected_distinct = distinct_of(FourByteColumn(rows));
        for_every_layout(rows, slice, [&](const auto& cells, const std::string& layout) {
            const std::string what = "column " + std::to_string(i) + ", " + layout;
            check_cells(rows, cells, what);
            check_kernels(rows, cells, references, what);
            check(distinct_of(cells) == expected_distinct, what + ": distinct texts, ascending");
        });
    }
}

// Every text of up to three characters: as the only row, and in a column with others.
void short_texts() {
    for (const char32_t a : alphabet) {
        for (const char32_t b : alphabet) {
            Rows rows{std::u32string{}, std::u32string{a}, std::u32string{a, b}};
            for (const char32_t c : alphabet) rows.emplace_back(std::u32string{a, b, c});
            for (const auto& row : rows) {
                for_every_layout({row}, {0, 0}, [&](const auto& cells, const std::string& layout) {
                    check_cells({row}, cells, layout + ", alone");
                    check_kernels({row}, cells, {}, layout + ", alone");
                });
            }
            for_every_layout(rows, {3, 0}, [&](const auto& cells, const std::string& layout) {
                check_cells(rows, cells, layout);
                check_kernels(rows, cells, {}, layout);
            });
        }
    }
}

// Sizes around the limits of inlined and of padded texts. The last text ends at the end of its buffer.
void sizes() {
    for (std::size_t size = 0; size <= 40; ++size) {
        for (const char32_t last : {U'z', char32_t{0xe9}, char32_t{0x6f22}}) {
            const Rows rows{std::u32string(size, U'x') + last, std::u32string(size, U'x'), std::nullopt,
                            std::u32string(size, U'5'), last + std::u32string(size, U'y')};
            for_every_layout(rows, {0, 0}, [&](const auto& cells, const std::string& layout) {
                check_cells(rows, cells, layout);
                check_kernels(rows, cells, {}, layout);
            });
        }
    }
}

void without_buffers() {
    const std::array<std::int32_t, 3> zeros{};
    const core::Utf8Offsets<std::int32_t> empty_texts(zeros.data(), nullptr, nullptr, 0, 2);
    check(empty_texts.are_valid(0), "empty texts without bytes");
    check_cells({std::u32string{}, std::u32string{}}, empty_texts, "empty texts without bytes");
    const core::Utf8Offsets<std::int64_t> no_rows(nullptr, nullptr, nullptr, 0, 0);
    check(no_rows.are_valid(0) && no_rows.size() == 0, "no rows");
}

void invalid_offsets() {
    const auto are_valid = [](std::vector<std::int32_t> offsets, std::size_t bytes) {
        return core::Utf8Offsets<std::int32_t>(offsets.data(), nullptr, nullptr, 0, offsets.size() - 1)
            .are_valid(bytes);
    };
    check(are_valid({0, 3, 3, 5}, 5), "ascending");
    check(are_valid({2, 3}, 3), "not from the first byte");
    check(!are_valid({0, 3, 2}, 5), "descending");
    check(!are_valid({-1, 3}, 5), "negative");
    check(!are_valid({0, 6}, 5), "beyond the bytes");
}

void invalid_views() {
    const std::array<std::int64_t, 2> sizes{20, 30};
    const auto are_valid = [&](const std::array<std::int32_t, 4>& view) {
        return core::Utf8Views(view.data(), nullptr, nullptr, 0, 1).are_valid(sizes.data(), sizes.size());
    };
    check(are_valid({12, -1, -1, -1}), "inlined");
    check(are_valid({20, 0, 0, 0}) && are_valid({20, 0, 1, 10}), "in a buffer");
    check(!are_valid({-1, 0, 0, 0}), "a negative size");
    check(!are_valid({20, 0, 2, 0}) && !are_valid({20, 0, -1, 0}), "no such buffer");
    check(!are_valid({20, 0, 1, 11}) && !are_valid({20, 0, 0, -1}), "not within the buffer");
    check(!are_valid({20, 0, 1, std::numeric_limits<std::int32_t>::max()}), "far beyond the buffer");
    const std::uint8_t null = 0;
    const std::array<std::int32_t, 4> any{-1, -1, -1, -1};
    check(core::Utf8Views(any.data(), nullptr, &null, 0, 1).are_valid(nullptr, 0), "a null may be anything");
}

void indices_without_entry() {
    const OffsetsColumn<std::int32_t> entries({std::u32string{U"a"}, std::u32string{U"b"}}, {0, 0});
    const std::array<std::int8_t, 4> indices{1, 2, -1, 0};
    const core::DictionaryCells<std::int8_t, core::Utf8Offsets<std::int32_t>> cells(indices.data(), nullptr, 0, 4,
                                                                                    entries.cells());
    for (const std::size_t row : {1U, 2U}) {
        TextView text{};
        ShortText glanced{};
        check(cells.read(row, text) == Cell::other && !cells.glance(row, glanced) && !cells.longer_than(row, 0),
              "no such entry");
    }
    TextFacts facts;
    check(gather_facts(cells, {}, tables, facts) == Walk::gave_up, "the walk gives up");
}

const std::array tests{
    Test{"Arrow cells: random columns", random_columns},
    Test{"Arrow cells: all short texts", short_texts},
    Test{"Arrow cells: texts of every size", sizes},
    Test{"Arrow cells: missing buffers", without_buffers},
    Test{"Arrow cells: invalid offsets", invalid_offsets},
    Test{"Arrow cells: invalid views", invalid_views},
    Test{"Arrow cells: indices without entry", indices_without_entry},
};

}  // namespace
}  // namespace quorin::tests
