// The least distinct texts compared with an ordered set of all distinct texts.
#include "core/gather/least_distinct.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::Cell;

// Cells added one by one: texts in any storage, nulls, cells of another type.
class Cells {
  public:
    void add(const std::u32string& text, Stored stored) {
        kinds_.push_back(Cell::text);
        texts_.emplace_back(text, stored);
    }
    void add(Cell kind) {
        kinds_.push_back(kind);
        texts_.emplace_back(U"", Stored::one_byte);
    }
    [[nodiscard]] std::size_t size() const { return texts_.size(); }
    [[nodiscard]] Cell read(std::size_t row, core::TextView& text) const {
        if (kinds_[row] == Cell::text) text = texts_[row].view();
        return kinds_[row];
    }
    [[nodiscard]] bool glance(std::size_t row, core::ShortText& text) const {
        const core::TextView whole = texts_[row].view();
        if (kinds_[row] != Cell::text || !whole.is_padded() || whole.size - 1 >= 8) return false;
        const char* end = static_cast<const char*>(whole.characters) + whole.size;
        text = {core::eight_bytes(end - 8), whole.size};
        return true;
    }
    [[nodiscard]] static bool longer_than(std::size_t, std::size_t) { return false; }
    void prefetch(std::size_t) const {}

  private:
    std::vector<Cell> kinds_;
    std::vector<StoredText> texts_;
};

// Characters above 0xfe, which have equal keys, and zeros, which have the key of the end of a text.
std::u32string some_text(std::mt19937& random) {
    constexpr std::array<char32_t, 10> alphabet = {0, 'a', 'b', 0x7f, 0xfe, 0xff, 0x100, 0x101, 0xffff, 0x10ffff};
    const std::size_t letters = random() % 3 == 0 ? alphabet.size() : 3;
    std::u32string text(random() % 2 == 0 ? 0 : 7, U'a');
    for (std::size_t more = random() % 5; more > 0; --more) text.push_back(alphabet[random() % letters]);
    return text;
}

void random_columns() {
    std::mt19937 random(8);
    const std::u32string marker{U"ab"};
    const StoredText stored_marker(marker, Stored::padded);
    core::ReferenceTexts markers;
    check(markers.add(stored_marker.view()), "a marker");
    for (int i = 0; i < 2000; ++i) {
        const std::size_t most = 1 + random() % 6;
        Cells cells;
        std::map<std::u32string, std::size_t> first_rows;
        bool null_added = false;
        for (std::size_t row = 0, rows = random() % 40; row < rows; ++row) {
            if (random() % 5 == 0) {
                cells.add(Cell::null);
                null_added = true;
                continue;
            }
            const std::u32string text = some_text(random);
            Stored stored = every_storage[random() % every_storage.size()];
            if (!fits(text, stored)) stored = Stored::four_bytes;
            cells.add(text, stored);
            if (text != marker) first_rows.emplace(text, row);
        }
        std::vector<core::KeyedText> least;
        bool nulls = false;
        check(core::least_distinct(cells, markers, most, least, nulls), "a column of texts");
        check(nulls == null_added, "nulls in column " + std::to_string(i));
        check(least.size() == std::min(most, first_rows.size()), "how many in column " + std::to_string(i));
        auto expected = first_rows.begin();
        for (const core::KeyedText& entry : least) {
            check(entry.row == expected->second, "first row of a text in column " + std::to_string(i));
            ++expected;
        }
    }
}

void other_cells() {
    Cells cells;
    cells.add(U"a", Stored::padded);
    cells.add(Cell::other);
    std::vector<core::KeyedText> least;
    bool nulls = false;
    check(!core::least_distinct(cells, core::ReferenceTexts{}, 3, least, nulls), "a cell of no known kind");
}

const std::array tests{
    Test{"least texts of random columns", random_columns},
    Test{"least texts beside other cells", other_cells},
};

}  // namespace
}  // namespace quorin::tests
