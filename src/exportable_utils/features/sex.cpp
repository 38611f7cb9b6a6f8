// is_column_sex, the test for a column of persons' sexes.
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "exportable_utils/features/classifier_calls.hpp"
#include "exportable_utils/features/features.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::features {

namespace {

core::TextView view(std::string_view text) noexcept {
    return {text.data(), text.size(), 1};
}

// pandas compares texts only up to the first NUL, so the route gives up at a text with a NUL.
bool holds_zero(core::TextView text) noexcept {
    for (std::size_t i = 0; i < text.size; ++i) {
        if (core::unit(text, i) == 0) return true;
    }
    return false;
}

struct SexWord {
    std::string_view text;
    std::uint64_t characters;  // one byte each, the first in the lowest byte
};

consteval SexWord sex_word(std::string_view text) {
    constexpr unsigned bits = 8;
    std::uint64_t characters = 0;
    for (std::size_t i = text.size(); i-- > 0;) characters = characters << bits | static_cast<unsigned char>(text[i]);
    return {text, characters};
}

constexpr SexWord male = sex_word("male");
constexpr SexWord female = sex_word("female");
constexpr SexWord m = sex_word("m");
constexpr SexWord f = sex_word("f");
constexpr core::ReferenceBits long_pair = 0b0011;
constexpr core::ReferenceBits short_pair = 0b1100;

class SexWords {
  public:
    SexWords() noexcept {
        for (const SexWord& word : {male, female, m, f}) static_cast<void>(words_.add(view(word.text)));
    }
    // The bit of the word that equals the text, or 0. Has no branch on the word, which could not be predicted.
    [[nodiscard]] core::ReferenceBits find(core::TextView text) const noexcept {
        if (!text.is_padded() || text.size - 1 >= sizeof(std::uint64_t)) return words_.find(text);
        const std::uint64_t characters = core::short_text(text);
        const auto is = [&](const SexWord& word) {
            return static_cast<core::ReferenceBits>((characters == word.characters) & (text.size == word.text.size()));
        };
        return is(male) | is(female) << 1U | is(m) << 2U | is(f) << 3U;
    }

  private:
    core::ReferenceTexts words_;
};

// Reads the cells of a column of texts and nulls.
class SexColumn {
  public:
    // Reads the rows `first` to `last` - 1. Returns false if a cell is of another type.
    bool read(const ArrayColumn& column, std::size_t first, std::size_t last) {
        const ObjectCells cells(column);
        for (std::size_t row = first; row < last; ++row) {
            cells.prefetch(row + core::prefetch_distance);
            core::TextView text{};
            const core::Cell cell = cells.read(row, text);
            if (cell == core::Cell::other) return false;
            const core::ReferenceBits sex = cell == core::Cell::text ? words_.find(text) : 0;
            found_ |= sex;
            if (sex != 0) continue;
            if (cell == core::Cell::text && holds_zero(text)) return false;
            others_ = true;
        }
        return true;
    }
    // Whether the distinct cells are exactly one of the two pairs of words.
    [[nodiscard]] bool is_sex() const noexcept { return !others_ && (found_ == long_pair || found_ == short_pair); }

  private:
    SexWords words_;
    core::ReferenceBits found_ = 0;
    bool others_ = false;
};

// Whether the column holds exactly one of the two pairs of words, in any order.
Ref native_sex(Object series) {
    return native_route([&]() -> Ref {
        if (!Object(Py_TYPE(series.get())).is(global("pd"_py).attr("Series"_py))) return {};
        const Ref values = series.attr("values"_py);
        const std::optional<ColumnSource> column = ColumnSource::flat(values);
        if (!column || column->storage() != Storage::objects) return {};
        SexColumn cells;
        const bool known = column->in_blocks([&](const ArrayColumn& borrowed, std::size_t first, std::size_t last) {
            return cells.read(borrowed, first, last);
        });
        return known ? Ref::truth(cells.is_sex()) : Ref();
    });
}

}  // namespace

constinit const Definition is_column_sex{
    .name = "is_column_sex",
    .parameters = {{"dfc"}},
    .doc = R"(Infers whether column represents sex.

It does when its distinct values are exactly "male" and "female", or "m" and "f", written so.

Parameters
----------
dfc : pandas.DataFrame
    With a column labelled 0. Positional only.

Returns
-------
bool

Raises
------
IndexError
    For an empty frame.
KeyError
    For text in a frame without a column labelled 0.

Examples
--------
>>> import pandas as pd
>>> from quorin_libs.utils.exportable_utils import FCplus
>>> FCplus.is_column_sex(pd.DataFrame({0: ["f", "m", "f"]}))
True
)",
    .has_native_route = true,
    .lookups = {"pd.Series", "pd.Series.unique"},
    .body = [](Object dfc) -> Ref {
        if (!first_cell_is_text(dfc)) return Ref::truth(false);
        const Ref series = item(dfc, 0);
        if (Ref answer = native_sex(series)) return answer;
        const Ref values = series.attr("unique"_py)();
        if (length(values) != 2) return Ref::truth(false);
        const auto are = [&](Name first, Name second) {
            return equal(item(values, 0), first) && equal(item(values, 1), second);
        };
        const auto are_reversed = [&](Name first, Name second) {
            return equal(item(values, 1), first) && equal(item(values, 0), second);
        };
        return Ref::truth(are("male"_py, "female"_py) || are_reversed("male"_py, "female"_py) || are("m"_py, "f"_py) ||
                          are_reversed("m"_py, "f"_py));
    },
};

}  // namespace quorin::features
