#include "core/text/label_text.hpp"

#include <array>
#include <cstdint>
#include <cstring>

namespace quorin::core {

namespace {

constexpr std::uint32_t first_beyond_ascii = 0x80;

// White space as str.split() defines it, which includes \x1c to \x1f.
constexpr bool is_ascii_space(std::uint32_t c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r') || (c >= 0x1c && c <= 0x1f);
}

constexpr bool is_ascii_alphanumeric(std::uint32_t c) noexcept {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr std::array<bool, first_beyond_ascii> ascii_alphanumeric = [] {
    std::array<bool, first_beyond_ascii> table{};
    for (std::uint32_t c = 0; c < table.size(); ++c) table[c] = is_ascii_alphanumeric(c);
    return table;
}();

constexpr std::array<bool, first_beyond_ascii> ascii_space = [] {
    std::array<bool, first_beyond_ascii> table{};
    for (std::uint32_t c = 0; c < table.size(); ++c) table[c] = is_ascii_space(c);
    return table;
}();

bool is_alphanumeric(std::uint32_t c, const CharacterTables& tables) noexcept {
    return c < first_beyond_ascii ? ascii_alphanumeric[c] : tables.is_alphanumeric(c);
}

bool is_white_space(std::uint32_t c, const CharacterTables& tables) noexcept {
    return c < first_beyond_ascii ? ascii_space[c] : tables.translated(c) == ' ';
}

template <class Character>
bool alphanumeric(const Character* at, std::size_t size, const CharacterTables& tables) noexcept {
    for (std::size_t i = 0; i < size; ++i) {
        if (!is_alphanumeric(at[i], tables)) return false;
    }
    return size != 0;
}

// The functions over UTF-8 are not inlined: their callers would save more registers at every call.
[[gnu::noinline]] bool alphanumeric_utf8(TextView text, const CharacterTables& tables) noexcept {
    for (std::size_t i = 0; i < text.size;) {
        const Decoded decoded = decode(text, i);
        if (!is_alphanumeric(decoded.character, tables)) return false;
        i += decoded.size;
    }
    return text.size != 0;
}

template <class Character>
std::size_t squeeze(const Character* at, std::size_t size, const CharacterTables& tables, Character* out) noexcept {
    std::size_t left = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const Character c = at[i];
        const bool space = is_white_space(c, tables);
        out[left] = c;
        left += static_cast<std::size_t>(!space);
    }
    return left;
}

[[gnu::noinline]] std::size_t squeeze_utf8(TextView text, const CharacterTables& tables, std::uint8_t* out) noexcept {
    std::size_t left = 0;
    for (std::size_t i = 0; i < text.size;) {
        const Decoded decoded = decode(text, i);
        if (!is_white_space(decoded.character, tables)) {
            std::memmove(out + left, text.bytes() + i, decoded.size);
            left += decoded.size;
        }
        i += decoded.size;
    }
    return left;
}

template <class Use>
auto with_characters(TextView text, Use use) noexcept {
    switch (text.width) {
        case 1:
            return use(static_cast<const std::uint8_t*>(text.characters));
        case 2:
            return use(static_cast<const std::uint16_t*>(text.characters));
        default:
            return use(static_cast<const std::uint32_t*>(text.characters));
    }
}

}  // namespace

bool is_alphanumeric(TextView text, const CharacterTables& tables) noexcept {
    if (text.is_utf8()) return alphanumeric_utf8(text, tables);
    return with_characters(text, [&](const auto* at) { return alphanumeric(at, text.size, tables); });
}

std::size_t remove_white_space(TextView text, const CharacterTables& tables, void* out) noexcept {
    if (text.is_utf8()) return squeeze_utf8(text, tables, static_cast<std::uint8_t*>(out));
    return with_characters(text, [&]<class Character>(const Character* at) {
        return squeeze(at, text.size, tables, static_cast<Character*>(out));
    });
}

bool is_encodable(TextView text) noexcept {
    constexpr std::uint32_t first_surrogate = 0xd800;
    constexpr std::uint32_t behind_surrogates = 0xe000;
    constexpr std::uint32_t behind_last = 0x110000;
    if (text.is_utf8()) return true;
    return with_characters(text, [&](const auto* at) {
        for (std::size_t i = 0; i < text.size; ++i) {
            const std::uint32_t c = at[i];
            if (c >= first_surrogate && (c < behind_surrogates || c >= behind_last)) return false;
        }
        return true;
    });
}

}  // namespace quorin::core
