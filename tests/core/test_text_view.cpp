// Texts in every encoding: characters, order and equality compared with std::u32string; decoding of UTF-8.
#include "core/text/text_view.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/distinct/text_table.hpp"
#include "core/gather/least_distinct.hpp"
#include "core/text/digest.hpp"
#include "core/text/label_text.hpp"
#include "core/text/number_value.hpp"
#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::CharacterTables;
using core::TextView;

int sign(int order) {
    return (order > 0) - (order < 0);
}

std::vector<StoredText> every_stored(const std::u32string& text) {
    std::vector<StoredText> stored;
    for (const Stored as : every_storage) {
        if (fits(text, as)) stored.emplace_back(text, as);
    }
    return stored;
}

void check_pair(const std::u32string& left, const std::u32string& right) {
    for (const StoredText& a : every_stored(left)) {
        for (const StoredText& b : every_stored(right)) {
            check(sign(compare(a.view(), b.view())) == sign(left.compare(right)), "order of two texts");
            check(same(a.view(), b.view()) == (left == right), "equality of two texts");
            const bool both_utf8 = a.view().is_utf8() && b.view().is_utf8();
            if (both_utf8) check(same_units(a.view(), b.view()) == (left == right), "equality of two texts in UTF-8");
        }
    }
}

constexpr std::array<char32_t, 9> edges{0, U'a', 0x7f, 0x80, 0xe9, 0x7ff, 0x800, 0xffff, 0x10000};

// All pairs of texts of up to two characters around the limits of UTF-8's sizes. Some texts have, in another encoding,
// the bytes of another text.
void short_pairs() {
    std::vector<std::u32string> texts{U"", {0xc3, 0xa9}, {0xc2, 0x80}};
    for (const char32_t a : edges) {
        texts.push_back({a});
        for (const char32_t b : edges) texts.push_back({a, b});
    }
    for (const std::u32string& left : texts) {
        for (const std::u32string& right : texts) check_pair(left, right);
    }
}

void long_pairs() {
    std::mt19937 random(2);
    for (int i = 0; i < 3000; ++i) {
        std::u32string left(random() % 24, U'm');
        for (char32_t& c : left) {
            if (random() % 3 == 0) c = edges[random() % edges.size()];
        }
        std::u32string right = left;
        if (!right.empty() && random() % 4 != 0) right[random() % right.size()] = edges[random() % edges.size()];
        if (random() % 4 == 0) right += edges[random() % edges.size()];
        check_pair(left, right);
    }
}

void characters() {
    for (const char32_t c :
         {char32_t{0}, U'a', char32_t{0x7f}, char32_t{0x80}, char32_t{0x7ff}, char32_t{0x800}, char32_t{0xd7ff},
          char32_t{0xe000}, char32_t{0xffff}, char32_t{0x10000}, char32_t{0x10ffff}}) {
        const std::u32string one{c};
        const std::u32string more{c, U'b', c};
        for (const StoredText& stored : every_stored(one)) {
            check(characters_of(stored.view()) == one, "one character");
            check(core::is_one_character(stored.view()), "is one character");
            check(core::length_of(stored.view()) == 1, "length of one character");
            check(core::first_character(stored.view()) == c, "first character");
        }
        for (const StoredText& stored : every_stored(more)) {
            check(characters_of(stored.view()) == more, "three characters");
            check(!core::is_one_character(stored.view()), "is not one character");
            check(core::length_of(stored.view()) == 3, "length of three characters");
        }
    }
    for (const StoredText& stored : every_stored(U"")) {
        check(!core::is_one_character(stored.view()) && core::length_of(stored.view()) == 0, "empty");
    }
}

bool is_valid(std::string_view bytes) {
    const auto exact = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), exact.get());
    return core::is_valid_utf8(exact.get(), bytes.size());
}

void valid_utf8() {
    for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 37) {
        const bool surrogate = c >= 0xd800 && c < 0xe000;
        check(is_valid(to_utf8({c})) == !surrogate, "character " + std::to_string(c));
        if (c % 97 == 0) check(is_valid(to_utf8({U'a', c, U'b'})) == !surrogate, "among others " + std::to_string(c));
    }
    for (const char32_t c : {char32_t{0xd7ff}, char32_t{0xe000}, char32_t{0x10ffff}})
        check(is_valid(to_utf8({c})), "valid");
    check(is_valid("") && is_valid(std::string(100, 'x')), "ASCII");
}

// A sequence of bytes is valid UTF-8 if and only if encoding its decoded characters gives the same bytes.
void every_short_sequence() {
    for (std::uint32_t bytes = 0; bytes < 0x1000000; bytes += bytes < 0x20000 ? 1 : 211) {
        std::string text;
        const int size = bytes < 0x100 ? 1 : bytes < 0x10000 ? 2 : 3;
        for (int i = size - 1; i >= 0; --i)
            text.push_back(static_cast<char>(static_cast<std::uint8_t>(bytes >> (8 * i))));
        const TextView view{text.data(), text.size(), 1, core::Encoding::utf8};
        const std::u32string decoded = characters_of(view);
        bool expected = to_utf8(decoded) == text;
        for (const char32_t c : decoded) expected = expected && !(c >= 0xd800 && c < 0xe000) && c < 0x110000;
        check(is_valid(text) == expected, "bytes " + std::to_string(bytes));
    }
    for (const std::string_view bytes :
         std::to_array<std::string_view>({"\xf4\x90\x80\x80", "\xf0\x8f\xbf\xbf", "\xf5\x80\x80\x80", "\xf0\x90\x80",
                                          "\xff", "\xf8\x88\x80\x80\x80"})) {
        check(!is_valid(bytes), "not UTF-8");
        check(!is_valid("12345678" + std::string{bytes}), "not UTF-8 behind ASCII");
    }
}

constexpr CharacterTables tables{[](std::uint32_t c) { return c == 0xe9 || c == 0x661; },
                                 [](std::uint32_t c) {
                                     if (c < 0x80) return static_cast<int>(c);
                                     return c == 0x661 ? '1' : c == 0x2003 ? ' ' : -1;
                                 }};

// Kernels with invalid UTF-8: results are not specified, but no kernel may read beyond the text (AddressSanitizer).
void invalid_bytes() {
    std::mt19937 random(9);
    constexpr std::array<std::uint8_t, 10> some{'1', 'a', ' ', 0x80, 0xbf, 0xc3, 0xe0, 0xf0, 0xf4, 0xff};
    for (int i = 0; i < 20000; ++i) {
        const std::size_t size = random() % 20;
        const auto bytes = std::make_unique<std::uint8_t[]>(size);
        for (std::size_t j = 0; j < size; ++j) bytes[j] = some[random() % some.size()];
        const TextView text{bytes.get(), size, 1, core::Encoding::utf8};
        const StoredText other(U"1\u00e9\u0661", Stored::four_bytes);
        std::array<std::uint8_t, 20> room{};
        core::Digest digest{};
        double value = 0;
        core::ReferenceTexts references;
        check(references.add(text) && references.add(other.view()), "references");
        check(same(text, text) && compare(text, text) == 0, "equal to itself");
        check(core::length_of(text) <= size, "length");
        check(core::remove_white_space(text, tables, room.data()) <= size, "white space");
        check(references.find(text) != 0 || !core::is_valid_utf8(bytes.get(), size), "found");
        check(core::digest_text(text, digest), "digest");
        static_cast<void>(compare(text, other.view()));
        static_cast<void>(core::is_lone(text, tables));
        static_cast<void>(core::is_alphanumeric(text, tables));
        static_cast<void>(core::classify_text(text, tables));
        static_cast<void>(core::classify_number(text));
        static_cast<void>(core::value_of_number(text, value));
        static_cast<void>(core::leading_characters(text));
        static_cast<void>(core::hash_text(text));
    }
}

std::u32string squeezed(TextView text) {
    std::vector<char> out(text.size * 4 + 1);
    const std::size_t left = core::remove_white_space(text, tables, out.data());
    return characters_of({out.data(), left, text.width, text.encoding});
}

// Every kernel has the same result for a text in every encoding as in four-byte characters.
void check_text(const std::u32string& text) {
    const StoredText stored(text, Stored::four_bytes);
    const TextView expected = stored.view();
    double expected_value = 0;
    const bool has_value = core::value_of_number(expected, expected_value);
    core::Digest expected_digest{};
    const bool has_digest = core::digest_text(expected, expected_digest);
    for (const StoredText& same_text : every_stored(text)) {
        const TextView view = same_text.view();
        double value = 0;
        core::Digest digest{};
        check(core::classify_number(view) == core::classify_number(expected), "which number");
        if (!text.empty()) check(core::classify_text(view, tables) == core::classify_text(expected, tables), "class");
        check(core::value_of_number(view, value) == has_value && value == expected_value, "value");
        check(core::digest_text(view, digest) == has_digest && digest == expected_digest, "digest");
        check(core::is_lone(view, tables) == core::is_lone(expected, tables), "lone");
        check(core::is_alphanumeric(view, tables) == core::is_alphanumeric(expected, tables), "alphanumeric");
        check(core::is_encodable(view) == core::is_encodable(expected), "encodable");
        check(core::leading_characters(view) == core::leading_characters(expected), "leading characters");
        check(squeezed(view) == squeezed(expected), "without white space");
        const std::u32string ended = characters_of(core::without_zeros_at_end(view));
        check(ended == characters_of(core::without_zeros_at_end(expected)), "without zeros at the end");
    }
}

constexpr std::array<char32_t, 14> alphabet{U'0', U'7', U'.', U'-',  U' ',   U'e',   U'a',
                                            0,    0xe9, 0xff, 0x661, 0x2003, 0x6f22, 0x1f600};

void every_kernel_short() {
    check_text(U"");
    for (const char32_t a : alphabet) {
        check_text({a});
        for (const char32_t b : alphabet) {
            check_text({a, b});
            for (const char32_t c : alphabet) check_text({a, b, c});
        }
    }
}

void every_kernel_long() {
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        const std::size_t letters = random() % 2 == 0 ? 3 : alphabet.size();
        std::u32string text(random() % (i % 100 == 0 ? 900 : 40), U'1');
        for (char32_t& c : text) {
            if (random() % 4 == 0) c = alphabet[random() % letters];
        }
        if (!text.empty() && random() % 3 == 0) text[random() % text.size()] = 0x661;
        check_text(text);
    }
}

const std::array tests{
    Test{"texts: short pairs", short_pairs},
    Test{"texts: long pairs", long_pairs},
    Test{"texts: characters", characters},
    Test{"texts: valid UTF-8", valid_utf8},
    Test{"texts: every short sequence of bytes", every_short_sequence},
    Test{"texts: bytes that are not UTF-8", invalid_bytes},
    Test{"texts: every kernel, short texts", every_kernel_short},
    Test{"texts: every kernel, long texts", every_kernel_long},
};

}  // namespace
}  // namespace quorin::tests
