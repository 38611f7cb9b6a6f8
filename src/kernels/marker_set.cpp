#include "kernels/marker_set.hpp"

#include <algorithm>

namespace quorin::kernels {

namespace {

// False where the text is none of one to eight ASCII characters.
bool ascii_value(TextView text, std::uint64_t& value) noexcept {
    if (text.length - 1 >= 8) return false;
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < text.length; ++i) {
        const std::uint32_t c = character(text, i);
        all |= c;
        value |= std::uint64_t{c} << (8 * i);
    }
    return all <= 0x7f;
}

}  // namespace

bool MarkerSet::add(TextView text) noexcept {
    if (size_ == most_markers || text.length > longest_possible) return false;
    lengths_ |= 1U << text.length;
    longest_ = std::max(longest_, text.length);
    if (text.length == 0) {
        empty_ |= 1U << size_;
    } else {
        firsts_[text.length] |= std::uint64_t{1} << (character(text, 0) & 63U);
    }
    texts_[size_] = text;
    values_[size_] = {0, 0};
    std::uint64_t value = 0;
    if (ascii_value(text, value)) values_[size_] = {value, text.length};
    ++size_;
    return true;
}

std::uint32_t MarkerSet::find_slowly(const void* characters, std::size_t length, int width) const noexcept {
    const TextView text{characters, length, width};
    std::uint64_t value = 0;
    if (ascii_value(text, value)) return find_value(value, length);
    std::uint32_t found = 0;
    for (std::size_t i = 0; i < size_; ++i) {
        if (same(texts_[i], text)) found |= 1U << i;
    }
    return found;
}

}  // namespace quorin::kernels
