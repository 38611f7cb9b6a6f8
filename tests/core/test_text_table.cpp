// The table of distinct texts compared with std::map, and their order with std::sort: all storages and sizes.
#include "core/distinct/text_table.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "core/distinct/text_order.hpp"
#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::Cell;
using core::DistinctText;
using core::TextTable;
using core::TextView;

using Texts = std::vector<std::u32string>;

class Column {
  public:
    // Equal texts must have the same encoding; padded ASCII and ASCII count as the same.
    Column(const Texts& texts, Stored stored) {
        for (const std::u32string& text : texts) {
            const bool bytes = stored != Stored::two_bytes && stored != Stored::four_bytes;
            Stored used = stored;
            if (bytes && is_ascii(text) && texts_.size() % 2 == 0)
                used = texts_.size() % 4 == 0 ? Stored::padded : Stored::ascii;
            if (used != Stored::utf8 && used != Stored::two_bytes && !fits(text, used)) used = Stored::one_byte;
            if (used == Stored::one_byte && !fits(text, used)) used = Stored::two_bytes;
            if (used == Stored::two_bytes && !fits(text, used)) used = Stored::four_bytes;
            texts_.emplace_back(text, used);
        }
    }
    [[nodiscard]] std::size_t size() const { return texts_.size(); }
    Cell read(std::size_t row, TextView& text) const {
        if (row == other_) return Cell::null;
        text = texts_[row].view();
        return Cell::text;
    }
    void prefetch(std::size_t) const {}
    void put_null(std::size_t row) { other_ = row; }

  private:
    std::vector<StoredText> texts_;
    std::size_t other_ = static_cast<std::size_t>(-1);
};

struct Occurrence {
    std::size_t first;
    std::int64_t count;
};

void check_entries(const std::vector<DistinctText>& entries, const Texts& texts, const std::string& what) {
    std::map<std::u32string, Occurrence> expected;
    for (std::size_t row = 0; row < texts.size(); ++row) {
        ++expected.emplace(texts[row], Occurrence{row, 0}).first->second.count;
    }
    check(entries.size() == expected.size(), what + ": how many");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const DistinctText& entry = entries[i];
        const Occurrence& wanted = expected.at(texts[entry.row]);
        check(entry.row == wanted.first && entry.count == wanted.count, what + ": row and count");
        check(i == 0 || entries[i - 1].row < entry.row, what + ": in the order of the rows");
    }
    const std::vector<std::uint32_t> order = core::ascending(entries);
    check(order.size() == expected.size(), what + ": all of them sorted");
    std::size_t place = 0;
    for (const auto& [text, occurrence] : expected) {
        check(entries[order[place++]].row == occurrence.first, what + ": ascending");
    }
}

void expect(const Texts& texts, const std::string& what) {
    for (const Stored stored : every_storage) {
        const Column column(texts, stored);
        TextTable table(texts.size());
        check(add_all(table, column), what + ": all are texts");
        check_entries(table.entries(), texts, what + " in storage " + std::to_string(static_cast<int>(stored)));
    }
}

std::u32string random_text(std::mt19937& random, std::size_t longest, std::size_t letters, char32_t first_letter) {
    std::u32string text(random() % (longest + 1), U' ');
    for (char32_t& c : text) c = first_letter + static_cast<char32_t>(random() % letters);
    return text;
}

// Short and long texts of few and of many letters, some with zeros, with and without a common start: keys that differ,
// keys that are equal, texts shorter than a key.
void random_columns() {
    std::mt19937 random(4);
    for (int i = 0; i < 1500; ++i) {
        const std::size_t longest = std::array<std::size_t, 5>{1, 3, 9, 17, 40}[random() % 5];
        const std::size_t letters = std::array<std::size_t, 4>{1, 2, 26, 100}[random() % 4];
        const char32_t first = std::array<char32_t, 4>{0, U'\x1b', 0x3b1, 0x1f600}[random() % 4];
        const std::u32string start = random() % 2 == 0 ? U"" : random_text(random, 20, letters, first);
        Texts pool(1 + random() % 60);
        for (std::u32string& text : pool) {
            text = start + random_text(random, longest, letters, random() % 4 == 0 ? U'\x5a' : first);
        }
        Texts texts(random() % 100);
        for (std::u32string& text : texts) text = pool[random() % pool.size()];
        expect(texts, "random column " + std::to_string(i));
    }
}

// One different character at every position of texts of every length; kernels read eight characters at once.
void one_character_differs() {
    for (std::size_t length = 1; length <= 34; ++length) {
        Texts texts{std::u32string(length, U'm'), std::u32string(length - 1, U'm'), std::u32string(length + 1, U'm')};
        for (std::size_t place = 0; place < length; ++place) {
            for (const char32_t c : {U'\0', U'a', U'z', U'\x7f'}) {
                texts.push_back(texts.front());
                texts.back()[place] = c;
            }
        }
        texts.insert(texts.end(), texts.begin(), texts.end());
        expect(texts, "one of " + std::to_string(length) + " characters");
    }
}

// Large enough for a table that extrapolates its size and for a sort in buckets. 20,000 rows repeat 50 texts, at the
// start or at the end, so the expected size is too small or too large.
void large_columns() {
    std::mt19937 random(5);
    for (const std::size_t letters : {2U, 10U, 26U, 90U}) {
        for (const bool early : {false, true}) {
            Texts texts(30000);
            for (std::u32string& text : texts) text = random_text(random, 14, letters, U'!');
            for (std::size_t row = 0; row < 20000; ++row) {
                texts[early ? row : row + 10000] = texts[early ? 29999 - row % 50 : row % 50];
            }
            expect(texts, "large column of " + std::to_string(letters) + " letters");
        }
    }
}

// Texts of one length with the same first eight characters.
void alike_at_the_start() {
    Texts texts;
    for (int i = 0; i < 5000; ++i) {
        texts.emplace_back(U"serial number ");
        for (const char c : std::to_string(1000000 + i * 7919 % 5000)) texts.back().push_back(static_cast<char32_t>(c));
    }
    expect(texts, "a common start");
    texts.emplace_back(U"a");
    expect(texts, "a common start, but for one");
}

void no_texts() {
    TextTable table(0);
    check(add_all(table, Column({}, Stored::padded)), "no rows");
    check(table.entries().empty() && core::ascending(table.entries()).empty(), "no entries");
    for (const std::size_t row : {0U, 31U, 32U, 99U}) {
        Column column(Texts(100, U"red"), Stored::padded);
        column.put_null(row);
        TextTable some(column.size());
        check(!add_all(some, column), "null in row " + std::to_string(row));
    }
}

const std::array tests{
    Test{"distinct texts: random columns", random_columns},
    Test{"distinct texts: one character differs", one_character_differs},
    Test{"distinct texts: large columns", large_columns},
    Test{"distinct texts: alike at the start", alike_at_the_start},
    Test{"distinct texts: none", no_texts},
};

}  // namespace
}  // namespace quorin::tests
