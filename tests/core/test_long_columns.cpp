// Tables that grow and sorts that run in steps, compared with those that do not pause.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "core/cells/fixed_width.hpp"
#include "core/distinct/long_text_order.hpp"
#include "core/distinct/text_table.hpp"
#include "harness.hpp"

namespace quorin::tests {
namespace {

constexpr std::size_t width = 12;

// Fixed-width texts: a common start followed by a decimal number.
class Texts {
  public:
    Texts(std::size_t rows, std::uint32_t different, const std::u32string& start) : characters_(rows * width) {
        std::mt19937 random(different);
        for (std::size_t row = 0; row < rows; ++row) {
            std::u32string text = start;
            for (const char digit : std::to_string(random() % different)) text.push_back(static_cast<char32_t>(digit));
            std::copy(text.begin(), text.end(), characters_.begin() + static_cast<std::ptrdiff_t>(row * width));
        }
    }
    [[nodiscard]] core::FixedWidthText cells() const {
        constexpr auto stride = static_cast<std::ptrdiff_t>(width * sizeof(char32_t));
        return {reinterpret_cast<const char*>(characters_.data()), stride, characters_.size() / width, width};
    }

  private:
    std::vector<char32_t> characters_;
};

// A table that grows in steps has the entries of a table that grows at once.
void tables_in_steps() {
    constexpr std::size_t rows = 300000;
    constexpr std::size_t step = 20000;
    for (const std::uint32_t different : {10U, 5000U, 1U << 30U}) {
        const Texts texts(rows, different, U"t");
        core::TextTable at_once(rows);
        core::add_all(at_once, texts.cells());
        core::TextTable in_steps(rows);
        std::size_t pauses = 0;
        for (std::size_t first = 0; first < rows; first += step) {
            while (!in_steps.make_room(step, first + step)) ++pauses;
            const auto none = [](std::size_t) { return false; };
            core::add_rows(in_steps, texts.cells(), first, first + step, none);
        }
        const std::string what = std::to_string(different) + " different texts";
        check(pauses != 0, what + ": pauses");
        bool same = at_once.entries().size() == in_steps.entries().size();
        for (std::size_t i = 0; same && i < at_once.entries().size(); ++i) {
            const core::DistinctText& one = at_once.entries()[i];
            const core::DistinctText& other = in_steps.entries()[i];
            same = one.row == other.row && one.count == other.count && core::compare(one.text, other.text) == 0;
        }
        check(same, what + ": the same entries");
    }
}

void order_in_steps() {
    for (const std::size_t rows : {std::size_t{1000}, std::size_t{300000}}) {
        for (const std::u32string& start : {std::u32string(), std::u32string(U"a\u00e9\u6f22")}) {
            const Texts texts(rows, 1U << 30U, start.substr(0, 2));
            core::TextTable table(rows);
            core::add_all(table, texts.cells());
            std::size_t pauses = 0;
            const auto pause = [&] { return ++pauses != 0; };
            const std::string what = std::to_string(rows) + " texts";
            check(core::ascending_in_steps(table.entries(), pause) == core::ascending(table.entries()), what);
            check((pauses != 0) == (rows > 1000), what + ": pauses");
            for (const std::size_t last : {std::size_t{1}, pauses / 2, pauses}) {
                std::size_t left = last;
                const auto stop = [&] { return --left != 0; };
                check(pauses == 0 || core::ascending_in_steps(table.entries(), stop).empty(), what + ": stopped");
            }
        }
    }
}

const Test tables("text table: growth in steps", tables_in_steps);
const Test order("text order: in steps", order_in_steps);

}  // namespace
}  // namespace quorin::tests
