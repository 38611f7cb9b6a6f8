// Cells of fixed-width text: glance() compared with read(), for every width and length.
#include "core/cells/fixed_width.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

using core::Cell;
using core::FixedWidthText;
using core::ShortText;
using core::TextView;

// A column with `apart` characters between its rows. The memory ends with the last row.
class Rows {
  public:
    Rows(const std::vector<std::u32string>& texts, std::size_t longest, std::size_t apart)
        : longest_(longest), step_(longest + apart), rows_(texts.size()) {
        characters_.assign((rows_ - 1) * step_ + longest, U'#');
        for (std::size_t row = 0; row < rows_; ++row) {
            for (std::size_t i = 0; i < longest; ++i) {
                characters_[row * step_ + i] = i < texts[row].size() ? texts[row][i] : U'\0';
            }
        }
    }
    [[nodiscard]] FixedWidthText cells() const {
        const auto stride = static_cast<std::ptrdiff_t>(step_ * sizeof(std::uint32_t));
        return {reinterpret_cast<const char*>(characters_.data()), stride, rows_, longest_};
    }

  private:
    std::size_t longest_;
    std::size_t step_;
    std::size_t rows_;
    std::vector<std::uint32_t> characters_;
};

// Zeros at the end of a cell are padding.
std::u32string kept(std::u32string text) {
    while (!text.empty() && text.back() == U'\0') text.pop_back();
    return text;
}

void check_cell(const FixedWidthText& cells, std::size_t row, const std::u32string& text, const std::string& what) {
    TextView view{};
    check(cells.read(row, view) == Cell::text && view.width == 4 && !view.is_ascii(), what + ": a text");
    check(view.size == text.size(), what + ": its length");
    for (std::size_t i = 0; i < view.size && i < text.size(); ++i) {
        check(core::unit(view, i) == text[i], what + ": its characters");
    }
    bool ascii = true;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        ascii = ascii && text[i] <= 0x7f;
        if (i < 8) value |= std::uint64_t{text[i]} << (8 * i);
    }
    // glance() may return false; if it returns true, the text is right.
    ShortText glanced{};
    if (cells.glance(row, glanced)) {
        check(ascii && !text.empty() && text.size() <= 8, what + ": a glance is for short ASCII texts");
        check(glanced.length == text.size() && glanced.value() == value, what + ": at a glance");
    }
    for (std::size_t length = 0; length < 20; ++length) {
        // A zero may also be padding.
        const bool longer = length < text.size() && text[length] != U'\0';
        check(cells.longer_than(row, length) == longer, what + ": longer than " + std::to_string(length));
    }
}

void all_widths() {
    std::mt19937 random(7);
    constexpr std::array<char32_t, 7> odd{U'\0', U'\0', 0x7f, 0x80, 0x100, 0x10000, 0x1f631};
    for (std::size_t longest = 1; longest <= 20; ++longest) {
        for (const std::size_t apart : {0U, 1U, 3U}) {
            std::vector<std::u32string> texts(200);
            for (std::u32string& text : texts) {
                text.assign(random() % (longest + 1), U' ');
                for (char32_t& c : text) c = static_cast<char32_t>('0' + random() % 75);
                if (!text.empty() && random() % 3 == 0) text[random() % text.size()] = odd[random() % odd.size()];
            }
            const Rows rows(texts, longest, apart);
            for (std::size_t row = 0; row < texts.size(); ++row) {
                check_cell(rows.cells(), row, kept(texts[row]),
                           "row " + std::to_string(row) + " of width " + std::to_string(longest));
            }
        }
    }
}

// glance() returns true for numbers in columns of the usual widths: otherwise it saves no time.
void glances_are_taken() {
    for (std::size_t longest = 4; longest <= 16; ++longest) {
        const Rows rows({U"1234", U"7"}, longest, 0);
        ShortText glanced{};
        check(rows.cells().glance(0, glanced) && glanced.length == 4, "four digits, width " + std::to_string(longest));
        check(rows.cells().glance(1, glanced) && glanced.length == 1, "one digit, width " + std::to_string(longest));
    }
}

const std::array tests{
    Test{"fixed-width text: all widths", all_widths},
    Test{"fixed-width text: at a glance", glances_are_taken},
};

}  // namespace
}  // namespace quorin::tests
