#include "python/new_text.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "core/text/label_text.hpp"
#include "python/borrow.hpp"
#include "python/errors.hpp"
#include "python/inputs/array_column.hpp"

namespace quorin {

namespace {

constexpr std::size_t longest_narrowed = 64;

// Converts four-byte characters to one byte each, two at a time (little-endian). Returns false if one is not ASCII.
bool narrow(const std::uint32_t* characters, std::size_t length,
            std::array<char, longest_narrowed>& narrowed) noexcept {
    std::uint64_t all = 0;
    std::size_t i = 0;
    for (; i + 2 <= length; i += 2) {
        const std::uint64_t two = core::eight_bytes(characters + i);
        all |= two;
        const auto bytes = static_cast<std::uint16_t>(two | two >> 24U);
        std::memcpy(narrowed.data() + i, &bytes, sizeof bytes);
    }
    if (i < length) {
        all |= characters[i];
        narrowed[i] = static_cast<char>(characters[i]);
    }
    constexpr std::uint64_t beyond_ascii = ~std::uint64_t{0x0000007f0000007f};
    return (all & beyond_ascii) == 0;
}

Ref searched_text(core::TextView text) {
    return Ref::take(PyUnicode_FromKindAndData(text.width, text.characters, static_cast<Py_ssize_t>(text.size)));
}

}  // namespace

Ref ascii_text(std::string_view characters) {
    // The interpreter caches texts of length 0 and 1.
    if (characters.size() < 2) return searched_text({characters.data(), characters.size(), 1});
    Ref text = Ref::take(PyUnicode_New(static_cast<Py_ssize_t>(characters.size()), 0x7f));
    std::memcpy(reinterpret_cast<char*>(text.get()) + sizeof(PyASCIIObject), characters.data(), characters.size());
    return text;
}

Ref new_text(core::TextView text) {
    if (text.is_ascii()) return ascii_text({static_cast<const char*>(text.characters), text.size});
    if (std::endian::native == std::endian::little && text.width == 4 && text.size <= longest_narrowed) {
        std::array<char, longest_narrowed> narrowed;
        if (narrow(static_cast<const std::uint32_t*>(text.characters), text.size, narrowed)) {
            return ascii_text({narrowed.data(), text.size});
        }
    }
    return searched_text(text);
}

Ref text_scalar(Object text) {
    foreign_code_may_run();
    const Ref arguments = Ref::take(PyTuple_Pack(1, text.get()));
    return Ref::take(PyUnicode_Type.tp_new(&PyUnicodeArrType_Type, arguments.get(), nullptr));
}

Ref text_without_white_space(core::TextView text, std::vector<char>& room) {
    room.resize(std::max(room.size(), text.size * static_cast<std::size_t>(text.width)));
    const std::size_t left = core::remove_white_space(text, character_tables, room.data());
    return text.is_ascii() ? ascii_text({room.data(), left}) : new_text({room.data(), left, text.width});
}

}  // namespace quorin
