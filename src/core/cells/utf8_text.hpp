// Views of single UTF-8 texts, for the cells of Arrow's layouts.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/cells/cells.hpp"

namespace quorin::core {

// The view of a text of valid UTF-8, before which `before` bytes are readable. Short ASCII texts are recognised,
// because kernels are faster for them.
inline TextView utf8_text(const std::uint8_t* at, std::size_t size, std::size_t before) noexcept {
    constexpr std::size_t most = 16;
    if (size > most || before < most || std::endian::native != std::endian::little)
        return {at, size, 1, Encoding::utf8};
    const EndMasks& masks = end_masks[size];
    const std::uint64_t last = eight_bytes(at + size - 8) & masks.last;
    const std::uint64_t earlier = eight_bytes(at + size - 16) & masks.before;
    const bool ascii = ((last | earlier) & beyond_ascii) == 0;
    return {at, size, 1, ascii ? Encoding::padded_ascii : Encoding::utf8};
}

// Sets `text` and returns true for an ASCII text of one to eight characters; may return false if size + before < 8.
inline bool short_ascii(const std::uint8_t* at, std::size_t size, std::size_t before, ShortText& text) noexcept {
    if (size - 1 >= 8 || size + before < 8 || std::endian::native != std::endian::little) return false;
    text = {eight_bytes(at + size - 8), size};
    return (text.value() & beyond_ascii) == 0;
}

}  // namespace quorin::core
