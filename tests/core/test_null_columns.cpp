// Nulls in tables compared with a test of each cell: row-major, column-major, parts of wider tables, several blocks.
#include "core/gather/null_columns.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

enum class Layout { row_major, column_major, part, backwards };
constexpr std::array every_layout{Layout::row_major, Layout::column_major, Layout::part, Layout::backwards};

template <class Float>
class Table {
  public:
    Table(std::size_t rows, std::size_t columns, Layout layout) : rows_(rows), columns_(columns), layout_(layout) {
        // The other cells of the wider table are signalling NaN and must not be read.
        const bool part = layout == Layout::part;
        cells_.assign(part ? 6 * rows * columns + 1 : rows * columns + 1,
                      part ? std::numeric_limits<Float>::signaling_NaN() : Float{0});
        for (std::size_t row = 0; row < rows; ++row) {
            for (std::size_t column = 0; column < columns; ++column) at(row, column) = Float{2};
        }
    }
    Float& at(std::size_t row, std::size_t column) {
        switch (layout_) {
            case Layout::column_major:
                return cells_[column * rows_ + row];
            case Layout::part:
                return cells_[row * 6 * columns_ + column * 2];
            case Layout::row_major:
            case Layout::backwards:
                break;
        }
        return cells_[row * columns_ + column];
    }
    [[nodiscard]] core::Table view() const {
        constexpr std::ptrdiff_t size = sizeof(Float);
        const auto rows = static_cast<std::ptrdiff_t>(rows_);
        const auto columns = static_cast<std::ptrdiff_t>(columns_);
        const char* data = reinterpret_cast<const char*>(cells_.data());
        switch (layout_) {
            case Layout::column_major:
                return {{data, size, rows_}, columns_, rows * size};
            case Layout::part:
                return {{data, 6 * columns * size, rows_}, columns_, 2 * size};
            case Layout::backwards:
                return {{data + (rows - 1) * columns * size, -columns * size, rows_}, columns_, size};
            case Layout::row_major:
                break;
        }
        return {{data, columns * size, rows_}, columns_, size};
    }

  private:
    std::size_t rows_;
    std::size_t columns_;
    Layout layout_;
    std::vector<Float> cells_;
};

template <class Float>
void nulls_anywhere() {
    std::mt19937 random(6);
    constexpr std::array<std::size_t, 6> heights = {1, 2, 33, 511, 1365, 5000};
    for (int i = 0; i < 300; ++i) {
        const std::size_t rows = heights[random() % heights.size()];
        const std::size_t columns = 1 + random() % 9;
        for (const Layout layout : every_layout) {
            Table<Float> table(rows, columns, layout);
            std::vector<bool> expected(columns);
            for (unsigned nulls = static_cast<unsigned>(random() % 4); nulls > 0; --nulls) {
                const std::size_t column = random() % columns;
                const bool last = random() % 2 == 0;
                table.at(last ? rows - 1 : random() % rows, column) = std::numeric_limits<Float>::quiet_NaN();
                expected[column] = true;
            }
            const std::string what = "table " + std::to_string(i);
            for (const core::Instructions allowed : core::every_instruction_set) {
                check(core::null_columns<Float>(table.view(), false, allowed) == expected, what);
                check(!core::any_signalling_nan<Float>(table.view(), allowed), what + ": no signalling NaN");
            }
            const std::vector<bool> one = core::null_columns<Float>(table.view(), true);
            const bool any = std::find(expected.begin(), expected.end(), true) != expected.end();
            check(std::count(one.begin(), one.end(), true) == (any ? 1 : 0), what + ": one is enough");
            for (std::size_t column = 0; column < columns; ++column) {
                check(!one[column] || expected[column], what + ": a column with a null");
            }
            table.at(random() % rows, random() % columns) = std::numeric_limits<Float>::signaling_NaN();
            check(core::any_signalling_nan<Float>(table.view()), what + ": a signalling NaN");
        }
    }
}

const std::array tests{
    Test{"nulls in tables of float64", nulls_anywhere<double>},
    Test{"nulls in tables of float32", nulls_anywhere<float>},
};

}  // namespace
}  // namespace quorin::tests
