// A column of texts in Arrow's layouts. Every buffer is allocated with exactly its size, so that AddressSanitizer finds
// reads beyond it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "core/cells/dictionary.hpp"
#include "core/cells/utf8_offsets.hpp"
#include "core/cells/utf8_views.hpp"
#include "stored_text.hpp"

namespace quorin::tests {

// An empty optional is a null.
using Rows = std::vector<std::optional<std::u32string>>;

class Buffer {
  public:
    Buffer() = default;
    template <class Value>
    explicit Buffer(const std::vector<Value>& values) : size_(values.size() * sizeof(Value)) {
        bytes_ = std::make_unique<std::uint8_t[]>(size_);
        if (size_ != 0) std::memcpy(bytes_.get(), values.data(), size_);
    }
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }
    [[nodiscard]] std::size_t size() const { return size_; }

  private:
    std::size_t size_ = 0;
    std::unique_ptr<std::uint8_t[]> bytes_;
};

inline Buffer bits_of(const std::vector<bool>& bits) {
    std::vector<std::uint8_t> bytes((bits.size() + 7) / 8);
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (bits[i]) bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] | 1U << i % 8);
    }
    return Buffer(bytes);
}

// Numbers of rows of the array before and after the slice, which the cells must not contain.
struct Slice {
    std::size_t before;
    std::size_t behind;
};

inline Rows with_slice(const Rows& rows, Slice slice) {
    Rows all(slice.before, std::u32string{U"hidden \u6f22"});
    all.insert(all.end(), rows.begin(), rows.end());
    all.insert(all.end(), slice.behind, std::u32string{U"hidden too"});
    return all;
}

template <class Offset>
class OffsetsColumn {
  public:
    OffsetsColumn(const Rows& rows, Slice slice) : offset_(slice.before), rows_(rows.size()) {
        std::vector<Offset> offsets{0};
        std::vector<std::uint8_t> bytes;
        std::vector<bool> valid;
        for (const auto& row : with_slice(rows, slice)) {
            valid.push_back(row.has_value());
            // A null may have bytes.
            for (const char c : row ? to_utf8(*row) : std::string{"?"}) bytes.push_back(static_cast<std::uint8_t>(c));
            offsets.push_back(static_cast<Offset>(bytes.size()));
        }
        offsets_ = Buffer(offsets);
        bytes_ = Buffer(bytes);
        validity_ = bits_of(valid);
    }
    [[nodiscard]] core::Utf8Offsets<Offset> cells() const {
        return {offsets_.data(), bytes_.data(), validity_.data(), offset_, rows_};
    }
    [[nodiscard]] std::size_t bytes() const { return bytes_.size(); }

  private:
    std::size_t offset_;
    std::size_t rows_;
    Buffer offsets_;
    Buffer bytes_;
    Buffer validity_;
};

class ViewsColumn {
  public:
    ViewsColumn(const Rows& rows, Slice slice) : offset_(slice.before), rows_(rows.size()) {
        std::vector<std::int32_t> views;
        std::array<std::vector<std::uint8_t>, buffers> bytes;
        std::vector<bool> valid;
        for (const auto& row : with_slice(rows, slice)) {
            valid.push_back(row.has_value());
            const std::string text = row ? to_utf8(*row) : std::string{"a null may have more than twelve bytes"};
            std::array<std::int32_t, 4> view{static_cast<std::int32_t>(text.size())};
            if (text.size() <= 12) {
                if (!text.empty()) std::memcpy(view.data() + 1, text.data(), text.size());
            } else {
                const std::size_t buffer = valid.size() % buffers;
                std::memcpy(view.data() + 1, text.data(), 4);
                // The rest of a null's view is arbitrary.
                view[2] = row ? static_cast<std::int32_t>(buffer) : -7;
                view[3] = row ? static_cast<std::int32_t>(bytes[buffer].size()) : -9;
                if (row) bytes[buffer].insert(bytes[buffer].end(), text.begin(), text.end());
            }
            views.insert(views.end(), view.begin(), view.end());
        }
        views_ = Buffer(views);
        validity_ = bits_of(valid);
        for (std::size_t i = 0; i < buffers; ++i) {
            bytes_[i] = Buffer(bytes[i]);
            addresses_[i] = bytes_[i].data();
            sizes_[i] = static_cast<std::int64_t>(bytes_[i].size());
        }
    }
    [[nodiscard]] core::Utf8Views cells() const {
        return {views_.data(), addresses_.data(), validity_.data(), offset_, rows_};
    }
    [[nodiscard]] const std::int64_t* sizes() const { return sizes_.data(); }
    static constexpr std::size_t buffers = 3;

  private:
    std::size_t offset_;
    std::size_t rows_;
    Buffer views_;
    Buffer validity_;
    std::array<Buffer, buffers> bytes_;
    std::array<const std::uint8_t*, buffers> addresses_{};
    std::array<std::int64_t, buffers> sizes_{};
};

// Each distinct row is an entry. So is null: some null rows have the index of that entry, the others no index.
template <class Index, class Entries>
class DictionaryColumn {
  public:
    DictionaryColumn(const Rows& rows, Slice slice) : offset_(slice.before), rows_(rows.size()) {
        entries_rows_.emplace_back();
        std::vector<Index> indices;
        std::vector<bool> valid;
        for (const auto& row : with_slice(rows, slice)) {
            std::size_t entry = 0;
            while (entry < entries_rows_.size() && entries_rows_[entry] != row) ++entry;
            if (entry == entries_rows_.size()) entries_rows_.push_back(row);
            const bool has_index = row.has_value() || valid.size() % 2 == 0;
            valid.push_back(has_index);
            indices.push_back(static_cast<Index>(has_index ? entry : 100));
        }
        indices_ = Buffer(indices);
        validity_ = bits_of(valid);
        entries_.emplace(entries_rows_, Slice{2, 1});
    }
    [[nodiscard]] auto cells() const {
        const auto entries = entries_->cells();
        return core::DictionaryCells<Index, std::remove_const_t<decltype(entries)>>(indices_.data(), validity_.data(),
                                                                                    offset_, rows_, entries);
    }

  private:
    std::size_t offset_;
    std::size_t rows_;
    Rows entries_rows_;
    Buffer indices_;
    Buffer validity_;
    std::optional<Entries> entries_;
};

// Calls use(cells, name) for each layout of the rows.
template <class Use>
void for_every_layout(const Rows& rows, Slice slice, Use use) {
    const OffsetsColumn<std::int32_t> offsets(rows, slice);
    const OffsetsColumn<std::int64_t> large_offsets(rows, slice);
    const ViewsColumn views(rows, slice);
    const DictionaryColumn<std::int8_t, OffsetsColumn<std::int32_t>> bytes(rows, slice);
    const DictionaryColumn<std::uint64_t, OffsetsColumn<std::int64_t>> large(rows, slice);
    const DictionaryColumn<std::int16_t, ViewsColumn> of_views(rows, slice);
    use(offsets.cells(), "offsets");
    use(large_offsets.cells(), "large offsets");
    use(views.cells(), "views");
    use(bytes.cells(), "dictionary of offsets");
    use(large.cells(), "dictionary of large offsets");
    use(of_views.cells(), "dictionary of views");
}

}  // namespace quorin::tests
