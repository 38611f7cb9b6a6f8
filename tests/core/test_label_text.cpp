// Labels: tests for alphanumeric and encodable text, removal of white space.
#include "core/text/label_text.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::CharacterTables;
using core::TextView;

// One non-ASCII character is white space, one is a letter.
constexpr char32_t wide_space = 0x2003;
constexpr char32_t letter = 0x6f22;
constexpr CharacterTables script{[](std::uint32_t c) { return c == letter; },
                                 [](std::uint32_t c) { return c == wide_space ? static_cast<int>(' ') : -1; }};

void alphanumeric() {
    const auto is = [](std::string_view text, Stored stored) {
        const StoredText same_text({text.begin(), text.end()}, stored);
        return core::is_alphanumeric(same_text.view(), script);
    };
    for (const Stored stored : every_storage) {
        for (int c = 0; c < 128; ++c) {
            const bool expected = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
            const std::string one(1, static_cast<char>(c));
            check(is(one, stored) == expected, "character " + std::to_string(c));
            check(is("ab" + one, stored) == expected, "character behind others " + std::to_string(c));
        }
        check(!is("", stored), "no characters");
    }
    for (const Stored stored : wide_storages) {
        check(core::is_alphanumeric(StoredText({U'a', letter}, stored).view(), script), "a letter beyond ASCII");
        check(!core::is_alphanumeric(StoredText({U'a', wide_space}, stored).view(), script), "a wide space");
    }
}

std::u32string squeezed(const std::u32string& text, Stored stored) {
    const StoredText same_text(text, stored);
    const TextView view = same_text.view();
    std::vector<char> out(text.size() * 4);
    const std::size_t left = core::remove_white_space(view, script, out.data());
    return characters_of(
        {out.data(), left, view.width, view.is_utf8() ? core::Encoding::utf8 : core::Encoding::fixed_width});
}

void white_space() {
    for (const Stored stored : every_storage) {
        for (char32_t c = 0; c < 128; ++c) {
            const bool space = c == ' ' || (c >= 9 && c <= 13) || (c >= 0x1c && c <= 0x1f);
            const std::u32string expected = space ? U"ab" : std::u32string{U'a', c, U'b'};
            check(squeezed({U'a', c, U'b'}, stored) == expected, "character " + std::to_string(c));
            check(squeezed({c, U'a', c, c}, stored) == (space ? U"a" : std::u32string{c, U'a', c, c}),
                  "character around " + std::to_string(c));
        }
        check(squeezed(U"", stored).empty(), "no characters");
    }
    for (const Stored stored : wide_storages) {
        check(squeezed({letter, wide_space, U'b'}, stored) == std::u32string{letter, U'b'}, "a wide space");
    }
}

void in_its_own_place() {
    std::u32string text = U" a b  c ";
    const TextView view{text.data(), text.size(), 4};
    check(core::remove_white_space(view, script, text.data()) == 3 && text.starts_with(U"abc"), "in place");
}

void encodable() {
    const auto is = [](const std::u32string& text) {
        return core::is_encodable(StoredText(text, Stored::four_bytes).view());
    };
    for (const char32_t c : U"\x7f\xff\ud7ff\ue000\uffff\U0010ffff") check(is({U'a', c}), "a character");
    for (const char32_t c : {char32_t{0xd800}, char32_t{0xdfff}, char32_t{0x110000}, char32_t{0xffffffff}}) {
        check(!is({U'a', c}), "no character");
    }
}

void zeros_at_end() {
    const std::u32string text{U'a', 0, U'b', 0, 0};
    check(core::without_zeros_at_end({text.data(), text.size(), 4}).size == 3, "zeros inside stay");
    check(core::without_zeros_at_end({text.data() + 3, 2, 4}).size == 0, "nothing but zeros");
}

const Test words{"alphanumeric texts", alphanumeric};
const Test spaces{"texts without white space", white_space};
const Test place{"white space removed in place", in_its_own_place};
const Test bytes{"texts that have bytes", encodable};
const Test zeros{"zeros at the end", zeros_at_end};

}  // namespace
}  // namespace quorin::tests
