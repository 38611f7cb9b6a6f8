// A set of reference texts, and the look-up of cells in it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/inplace_vector.hpp"
#include "core/text/text_view.hpp"

namespace quorin::core {

// One bit for each reference value of a list: 1 << i for the value with index i.
using ReferenceBits = std::uint64_t;

constexpr std::size_t most_references = 64;

// The texts and the cells may be in any encoding. The caller owns the characters.
class ReferenceTexts {
  public:
    ReferenceTexts() noexcept {}  // NOLINT(*-member-init, *-use-equals-default): see `firsts_`
    // Returns false if the set is full or the text has more than 31 characters.
    bool add(const TextView& text) noexcept;
    // The bits of the references that equal the text. A filter on size and first unit rejects most texts, in a time
    // that does not depend on the number of references.
    [[nodiscard]] ReferenceBits find(TextView text) const noexcept {
        if (!has_size(text.size)) {
            if (!text.is_utf8() || text.size < sizes || text.size > longest_) return 0;
        } else {
            if (text.size == 0) return empty_;
            if (!has_first(text.size, unit(text, 0))) return 0;
            if (text.is_padded() && text.size <= 8) return find_value(short_text(text), text.size);
        }
        return find_filtered(text.characters, text.size, text.width, text.encoding);
    }
    [[nodiscard]] ReferenceBits find(ShortText text) const noexcept {
        if (!has_size(text.length)) return 0;
        const std::uint64_t value = text.value();
        return has_first(text.length, value & 0xffU) ? find_value(value, text.length) : 0;
    }
    // The maximum number of units of a reference, in any encoding.
    [[nodiscard]] std::size_t longest() const noexcept { return longest_; }

  private:
    static constexpr std::size_t sizes = 32;
    static constexpr std::uint8_t none = most_references;

    [[nodiscard]] bool has_size(std::size_t size) const noexcept { return size < sizes && (sizes_ >> size & 1U) != 0; }
    [[nodiscard]] bool has_first(std::size_t size, std::uint64_t first) const noexcept {
        return (firsts_[size] >> (first & 63U) & 1U) != 0;
    }
    // The bits of the references of one length, a linked list, for which holds(i) is true.
    template <class Holds>
    [[nodiscard]] ReferenceBits find_if(std::size_t length, Holds holds) const noexcept {
        ReferenceBits found = 0;
        for (std::size_t i = heads_[length]; i != none; i = values_[i].next) {
            found |= static_cast<ReferenceBits>(holds(i)) << i;
        }
        return found;
    }
    [[nodiscard]] ReferenceBits find_value(std::uint64_t value, std::size_t length) const noexcept {
        return find_if(length, [&](std::size_t i) { return values_[i].value == value; });
    }
    // For a text that passes the filter. Takes its members: gcc would keep a TextView that is passed whole in memory.
    [[nodiscard]] ReferenceBits find_filtered(const void* characters, std::size_t size, int width,
                                              Encoding encoding) const noexcept;
    void add_to_filter(std::size_t size, std::uint32_t first) noexcept;

    std::uint32_t sizes_ = 0;      // bit n: a reference has n characters, or n bytes in UTF-8
    ReferenceBits empty_ = 0;      // the references that are ""
    ReferenceBits not_ascii_ = 0;  // the references that are not ASCII
    std::size_t longest_ = 0;
    // Indexed by size and initialised only for the sizes in `sizes_`. firsts_: bit (u mod 64) for each first unit u.
    // heads_: the last reference of that many characters, or `none`.
    std::array<std::uint64_t, sizes> firsts_;
    std::array<std::uint8_t, sizes> heads_;
    InplaceVector<TextView, most_references> texts_;
    struct Value {
        std::uint64_t value;  // the last eight characters of an ASCII text, as value_of() packs them
        std::size_t next;     // the next reference of the same number of characters, or `none`
    };
    InplaceVector<Value, most_references> values_;
};

}  // namespace quorin::core
