// A text as columns store it: in characters of 1, 2 or 4 bytes, in UTF-8, or as ASCII with and without padding.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "core/cells/cells.hpp"

namespace quorin::tests {

enum class Stored { one_byte, two_bytes, four_bytes, utf8, ascii, padded };

inline constexpr std::array every_storage{Stored::one_byte, Stored::two_bytes, Stored::four_bytes,
                                          Stored::utf8,     Stored::ascii,     Stored::padded};
inline constexpr std::array wide_storages{Stored::two_bytes, Stored::four_bytes, Stored::utf8};

inline char32_t highest_character(const std::u32string& text) {
    return text.empty() ? U'\0' : *std::max_element(text.begin(), text.end());
}

inline bool is_ascii(const std::u32string& text) {
    return highest_character(text) <= 0x7f;
}

// Whether the storage can hold the text.
inline bool fits(const std::u32string& text, Stored stored) {
    const char32_t highest = highest_character(text);
    switch (stored) {
        case Stored::one_byte:
            return highest <= 0xff;
        case Stored::two_bytes:
            return highest <= 0xffff;
        case Stored::four_bytes:
            return true;
        case Stored::utf8:
            return std::all_of(text.begin(), text.end(),
                               [](char32_t c) { return c < 0xd800 || (c >= 0xe000 && c < 0x110000); });
        case Stored::ascii:
        case Stored::padded:
            return highest <= 0x7f;
    }
    return false;
}

inline std::string to_utf8(const std::u32string& text) {
    std::string bytes;
    const auto add = [&](char32_t byte) { bytes.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    for (const char32_t c : text) {
        if (c < 0x80) {
            add(c);
            continue;
        }
        const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        add((0xff00U >> (more + 1) & 0xffU) | c >> (6 * more));
        for (int i = more - 1; i >= 0; --i) add(0x80U | (c >> (6 * i) & 0x3fU));
    }
    return bytes;
}

// The memory has exactly the size of the text, so AddressSanitizer finds reads beyond it. Only a padded text has bytes
// before it; results must not depend on them.
class StoredText {
  public:
    StoredText(const std::u32string& text, Stored stored) : stored_(stored), size_(text.size()) {
        std::string bytes;
        if (stored == Stored::padded)
            bytes = std::string(
                "5\xff.1\x80"
                "7-9\0003x +\xfe"
                "08",
                padding);
        if (stored == Stored::utf8) {
            bytes = to_utf8(text);
            size_ = bytes.size();
        } else {
            for (const char32_t c : text) append(bytes, c);
        }
        memory_.reset(new std::uint8_t[bytes.size()]);
        if (!bytes.empty()) std::memcpy(memory_.get(), bytes.data(), bytes.size());
    }
    [[nodiscard]] core::TextView view() const {
        switch (stored_) {
            case Stored::utf8:
                return {memory_.get(), size_, 1, core::Encoding::utf8};
            case Stored::ascii:
                return {memory_.get(), size_, 1, core::Encoding::ascii};
            case Stored::padded:
                return {
                    memory_.get() + padding, size_, 1,
                    std::endian::native == std::endian::little ? core::Encoding::padded_ascii : core::Encoding::ascii};
            default:
                return {memory_.get(), size_, width()};
        }
    }

  private:
    static constexpr std::size_t padding = 16;
    [[nodiscard]] int width() const { return stored_ == Stored::four_bytes ? 4 : stored_ == Stored::two_bytes ? 2 : 1; }
    void append(std::string& bytes, char32_t c) const {
        std::array<char, 4> character{};
        if (stored_ == Stored::four_bytes) {
            std::memcpy(character.data(), &c, 4);
        } else if (stored_ == Stored::two_bytes) {
            const auto two = static_cast<std::uint16_t>(c);
            std::memcpy(character.data(), &two, 2);
        } else {
            character[0] = static_cast<char>(static_cast<std::uint8_t>(c));
        }
        bytes.append(character.data(), static_cast<std::size_t>(width()));
    }
    Stored stored_;
    std::size_t size_;
    std::shared_ptr<std::uint8_t[]> memory_;  // shared by copies
};

// The characters of a text in any encoding.
inline std::u32string characters_of(core::TextView text) {
    std::u32string characters;
    for (std::size_t i = 0; i < text.size;) {
        const core::Decoded decoded = core::decode(text, i);
        characters.push_back(decoded.character);
        i += decoded.size;
    }
    return characters;
}

}  // namespace quorin::tests
