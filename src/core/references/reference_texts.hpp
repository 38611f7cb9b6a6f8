// The marker texts of a column, to be found in its cells.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/inplace_vector.hpp"
#include "core/text/text_view.hpp"

namespace quorin::core {

// One bit for each reference value of a list, the first one lowest.
using ReferenceBits = std::uint64_t;

constexpr std::size_t most_references = 64;

// The marker texts of a column, to be found in its cells; short ones only.
class ReferenceTexts {
  public:
    ReferenceTexts() noexcept {}  // NOLINT(*-member-init, *-use-equals-default): see `firsts_`
    // False where the text is none that this set can hold.
    bool add(const TextView& text) noexcept;
    // The bits of the markers that the text equals. Most texts differ from all of them in length or first character.
    [[nodiscard]] ReferenceBits find(TextView text) const noexcept {
        if (!has_length(text.length)) return 0;
        if (text.length == 0) return empty_;
        if (!has_first(text.length, character(text, 0))) return 0;
        if (text.compact && text.length - 1 < 8) {
            const auto* end = static_cast<const char*>(text.characters) + text.length;
            return find_value(ShortText{eight_bytes(end - 8), text.length}.value(), text.length);
        }
        return find_slowly(text.characters, text.length, text.width);
    }
    [[nodiscard]] ReferenceBits find(ShortText text) const noexcept {
        if (!has_length(text.length)) return 0;
        const std::uint64_t value = text.value();
        return has_first(text.length, value & 0xffU) ? find_value(value, text.length) : 0;
    }
    [[nodiscard]] bool has_length(std::size_t length) const noexcept {
        return length <= longest_possible && (lengths_ >> length & 1U) != 0;
    }
    // No marker is longer.
    [[nodiscard]] std::size_t longest() const noexcept { return longest_; }

  private:
    static constexpr std::size_t longest_possible = 31;
    [[nodiscard]] bool has_first(std::size_t length, std::uint64_t first) const noexcept {
        return (firsts_[length] >> (first & 63U) & 1U) != 0;
    }
    [[nodiscard]] ReferenceBits find_value(std::uint64_t value, std::size_t length) const noexcept {
        ReferenceBits found = 0;
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const bool equal = values_[i].value == value && values_[i].length == length;
            found |= static_cast<ReferenceBits>(equal) << i;
        }
        return found;
    }
    [[nodiscard]] ReferenceBits find_slowly(const void* characters, std::size_t length, int width) const noexcept;

    std::uint32_t lengths_ = 0;
    ReferenceBits empty_ = 0;  // the bits of the markers without characters
    std::size_t longest_ = 0;
    // By length, of those that a marker has: a bit for the first character, modulo 64.
    std::array<std::uint64_t, longest_possible + 1> firsts_;
    InplaceVector<TextView, most_references> texts_;
    // The ASCII texts of one to eight characters among them, the first one lowest; of length 0 in the place of others.
    struct Value {
        std::uint64_t value;
        std::size_t length;
    };
    InplaceVector<Value, most_references> values_;
};

}  // namespace quorin::core
