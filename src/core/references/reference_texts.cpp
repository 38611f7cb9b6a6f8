#include "core/references/reference_texts.hpp"

#include <algorithm>
#include <bit>

namespace quorin::core {

namespace {

// The value of texts that are not ASCII.
constexpr std::uint64_t not_ascii = ~std::uint64_t{0};

template <class Unit>
std::uint64_t value_of(const Unit* units, std::size_t size) noexcept {
    std::uint32_t all = 0;
    for (; size > 8; --size) all |= *units++;
    std::uint64_t value = 0;
    while (size != 0) {
        const std::uint32_t c = units[--size];
        all |= c;
        value = value << 8U | c;
    }
    return all <= 0x7f ? value : not_ascii;
}

// Packs the last eight characters, or fewer, of an ASCII text: one byte each, the first in the lowest byte. Returns
// not_ascii for any other text.
std::uint64_t value_of(TextView text) noexcept {
    switch (text.width) {
        case 1:
            return value_of(static_cast<const std::uint8_t*>(text.characters), text.size);
        case 2:
            return value_of(static_cast<const std::uint16_t*>(text.characters), text.size);
        default:
            return value_of(static_cast<const std::uint32_t*>(text.characters), text.size);
    }
}

std::size_t size_in_utf8(std::uint32_t c) noexcept {
    return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
}

std::size_t size_in_utf8(TextView text) noexcept {
    if (text.is_utf8()) return text.size;
    std::size_t size = 0;
    for (std::size_t i = 0; i < text.size; ++i) size += size_in_utf8(unit(text, i));
    return size;
}

// The lead byte of a character in UTF-8.
std::uint32_t first_in_utf8(std::uint32_t c) noexcept {
    switch (size_in_utf8(c)) {
        case 1:
            return c;
        case 2:
            return 0xc0U | c >> 6U;
        case 3:
            return 0xe0U | c >> 12U;
        default:
            return 0xf0U | c >> 18U;
    }
}

}  // namespace

// Adds a size and a first unit to the filter. Texts of `sizes` units or more, which only UTF-8 has, are not filtered.
void ReferenceTexts::add_to_filter(std::size_t size, std::uint32_t first) noexcept {
    if (size >= sizes) return;
    if (!has_size(size)) {
        sizes_ |= std::uint32_t{1} << size;
        firsts_[size] = 0;
        heads_[size] = none;
    }
    firsts_[size] |= std::uint64_t{1} << (first & 63U);
}

bool ReferenceTexts::add(const TextView& text) noexcept {
    if (texts_.size() == most_references) return false;
    const auto number = static_cast<std::uint8_t>(texts_.size());
    const std::size_t length = length_of(text);
    if (length >= sizes) return false;
    const std::uint64_t value = value_of(text);
    const bool ascii = value != not_ascii;
    const std::uint32_t first = length == 0 ? 0 : first_character(text);
    add_to_filter(length, first);
    longest_ = std::max(longest_, length);
    if (length == 0) empty_ |= ReferenceBits{1} << number;
    if (!ascii) {
        const std::size_t size = size_in_utf8(text);
        add_to_filter(size, first_in_utf8(first));
        longest_ = std::max(longest_, size);
        not_ascii_ |= ReferenceBits{1} << number;
    }
    // Copied field by field: a wide load of fields that were just written by narrower stores fails store forwarding.
    const bool bytes = ascii && text.width == 1 && !text.is_padded();
    texts_.push_back({text.characters, text.size, text.width, bytes ? Encoding::ascii : text.encoding});
    values_.push_back({value, heads_[length]});
    heads_[length] = number;
    return true;
}

ReferenceBits ReferenceTexts::find_filtered(const void* characters, std::size_t size, int width,
                                            Encoding encoding) const noexcept {
    const TextView text{characters, size, width, encoding};
    if (size == 1 && unit(text, 0) <= 0x7f) return find_value(unit(text, 0), 1);
    const std::uint64_t value = value_of(text);
    if (value == not_ascii && text.is_utf8()) {
        ReferenceBits found = 0;
        for (ReferenceBits left = not_ascii_; left != 0; left &= left - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(left));
            if (same(texts_[i], text)) found |= ReferenceBits{1} << i;
        }
        return found;
    }
    if (size >= sizes) return 0;
    if (value != not_ascii && size <= 8) return find_value(value, size);
    return find_if(size, [&](std::size_t i) { return values_[i].value == value && same(texts_[i], text); });
}

}  // namespace quorin::core
