#include "core/text/label_text.hpp"

#include <array>
#include <cstdint>

namespace quorin::core {

namespace {

constexpr std::uint32_t first_beyond_ascii = 0x80;

// What the interpreter splits texts at, \x1c to \x1f among them.
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

template <class Character>
bool alphanumeric(const Character* at, std::size_t length, const CharacterTables& script) noexcept {
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint32_t c = at[i];
        if (!(c < first_beyond_ascii ? ascii_alphanumeric[c] : script.is_alphanumeric(c))) return false;
    }
    return length != 0;
}

template <class Character>
std::size_t squeeze(const Character* at, std::size_t length, const CharacterTables& script, Character* out) noexcept {
    std::size_t left = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const Character c = at[i];
        const bool space = c < first_beyond_ascii ? ascii_space[c] : script.translated(c) == ' ';
        out[left] = c;
        left += static_cast<std::size_t>(!space);
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

bool is_alphanumeric(TextView text, const CharacterTables& script) noexcept {
    return with_characters(text, [&](const auto* at) { return alphanumeric(at, text.length, script); });
}

std::size_t remove_white_space(TextView text, const CharacterTables& script, void* out) noexcept {
    return with_characters(text, [&]<class Character>(const Character* at) {
        return squeeze(at, text.length, script, static_cast<Character*>(out));
    });
}

bool is_encodable(TextView text) noexcept {
    constexpr std::uint32_t first_surrogate = 0xd800;
    constexpr std::uint32_t behind_surrogates = 0xe000;
    constexpr std::uint32_t behind_last = 0x110000;
    return with_characters(text, [&](const auto* at) {
        for (std::size_t i = 0; i < text.length; ++i) {
            const std::uint32_t c = at[i];
            if (c >= first_surrogate && (c < behind_surrogates || c >= behind_last)) return false;
        }
        return true;
    });
}

}  // namespace quorin::core
