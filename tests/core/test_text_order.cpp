// The order of distinct texts by code point, as std::u32string compares: few and many texts, in any storage, with
// common starts, with zeros at the end.
#include "core/distinct/text_order.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::DistinctText;

using Texts = std::vector<std::u32string>;

// The wanted storage, or the narrowest characters that can hold the text.
Stored storage_of(const std::u32string& text, Stored wanted) {
    if (fits(text, wanted)) return wanted;
    return fits(text, Stored::one_byte)    ? Stored::one_byte
           : fits(text, Stored::two_bytes) ? Stored::two_bytes
                                           : Stored::four_bytes;
}

// For all i > 0: texts[order[i - 1]] < texts[order[i]]. Only one order of distinct texts satisfies this.
bool is_ascending(const std::vector<std::uint32_t>& order, const Texts& texts) {
    if (order.size() != texts.size()) return false;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (order[i] >= texts.size()) return false;
        if (i != 0 && !(texts[order[i - 1]] < texts[order[i]])) return false;
    }
    return true;
}

// Row i has the storage storages[i % storages.size()].
void expect_ascending(const Texts& texts, const std::vector<Stored>& storages, const std::string& what) {
    std::vector<StoredText> stored;
    stored.reserve(texts.size());
    std::vector<DistinctText> entries;
    entries.reserve(texts.size());
    for (std::size_t row = 0; row < texts.size(); ++row) {
        stored.emplace_back(texts[row], storage_of(texts[row], storages[row % storages.size()]));
        entries.push_back({stored.back().view(), row, 1});
    }
    check(is_ascending(core::ascending(entries), texts), what);
}

const std::vector<Stored> mixed(every_storage.begin(), every_storage.end());

void expect_ascending(const Texts& texts, const std::string& what) {
    for (const Stored stored : every_storage) {
        expect_ascending(texts, {stored}, what + " in storage " + std::to_string(static_cast<int>(stored)));
    }
    expect_ascending(texts, mixed, what + " in mixed storages");
}

struct Alphabet {
    char32_t first;
    std::uint32_t letters;
};

// Numbers all texts of the alphabet, each once: 0 is the empty text, then all of one letter, all of two.
std::u32string numbered(std::uint32_t number, Alphabet alphabet) {
    std::u32string text;
    for (; number != 0; number = (number - 1) / alphabet.letters) {
        text.push_back(alphabet.first + (number - 1) % alphabet.letters);
    }
    return text;
}

// A start followed by the shortest texts of the alphabet, shuffled. Contains every prefix of each text.
Texts shortest(std::uint32_t size, Alphabet alphabet, const std::u32string& start = {}) {
    Texts texts;
    texts.reserve(size);
    for (std::uint32_t number = 0; number < size; ++number) texts.push_back(start + numbered(number, alphabet));
    std::mt19937 random(size);
    for (std::size_t i = size; i > 1; --i) std::swap(texts[i - 1], texts[random() % i]);
    return texts;
}

// Texts whose numbers are spread over 32 bits: an odd factor gives each number once.
Texts scattered(std::uint32_t size, Alphabet alphabet) {
    Texts texts;
    texts.reserve(size);
    for (std::uint32_t i = 0; i < size; ++i) texts.push_back(numbered(i * 2654435761U, alphabet));
    return texts;
}

constexpr Alphabet two_letters{U'a', 2};
constexpr Alphabet few_letters{U'a', 3};
constexpr Alphabet ascii{0, 128};
constexpr Alphabet bytes{0, 256};

// Sizes around 512, above which texts are sorted in buckets, and larger ones.
void any_size() {
    for (const std::uint32_t size : {0U, 1U, 2U, 511U, 512U, 513U}) {
        for (const Alphabet alphabet : {two_letters, ascii, bytes}) {
            expect_ascending(scattered(size, alphabet),
                             std::to_string(size) + " texts of " + std::to_string(alphabet.letters) + " letters");
        }
    }
    for (const Alphabet alphabet : {two_letters, ascii, bytes}) {
        expect_ascending(scattered(5000, alphabet), mixed,
                         "5000 texts of " + std::to_string(alphabet.letters) + " letters");
    }
}

// Common starts shorter and longer than a key, which has eight characters. One text is the start alone.
void common_starts() {
    const std::u32string start = U"a start of nineteen";
    for (std::size_t length = 0; length <= start.size(); ++length) {
        const std::string what = "a common start of " + std::to_string(length);
        Texts texts = shortest(600, few_letters, start.substr(0, length));
        expect_ascending(texts, mixed, what);
        expect_ascending(shortest(30, few_letters, start.substr(0, length)), what + ", few texts");
        texts.emplace_back(U"zebra");
        expect_ascending(texts, mixed, what + ", but for one");
    }
}

// Texts that end with zeros: keys are padded with zeros, so texts of different lengths have equal keys.
void zeros_at_end() {
    for (const std::uint32_t letters : {1U, 2U}) {
        for (const std::string& start : std::to_array<std::string>({"", "a"})) {
            const std::u32string first(start.begin(), start.end());
            const std::string what = "zeros behind <" + start + ">";
            for (const std::uint32_t size : {3U, 40U}) expect_ascending(shortest(size, {0, letters}, first), what);
            expect_ascending(shortest(520, {0, letters}, first), mixed, what + ", many texts");
        }
    }
}

// Characters around the limits of one and two bytes, and wider ones.
void wide_characters() {
    for (const Alphabet alphabet :
         std::to_array<Alphabet>({{0x80, 128}, {0xf0, 32}, {0x3b1, 24}, {0xfff0, 32}, {0x1f600, 60}})) {
        const std::string what = "characters from " + std::to_string(alphabet.first);
        for (const std::uint32_t size : {200U, 2000U}) {
            expect_ascending(scattered(size, alphabet), mixed, what);
            expect_ascending(shortest(size, alphabet, U"start"), mixed, what + " behind a start");
        }
    }
    Texts texts = shortest(2000, few_letters);
    texts.emplace_back(U"ab\U0001f600");
    expect_ascending(texts, mixed, "one wide character");
}

// Texts of any bytes take 2 ** 24 buckets from 16,385 texts on. Bucket numbers are sorted in three rounds.
void many_buckets() {
    for (const std::uint32_t size : {16384U, 16385U, 150000U}) {
        expect_ascending(scattered(size, bytes), mixed, std::to_string(size) + " texts of any bytes");
    }
}

// 4 * 25,000 buckets are wanted. Four letters give 17 ** 4, which is fewer; a fifth character of 256 values gives
// 17 ** 4 * 256, which is more than 2 ** 24.
void most_buckets() {
    constexpr std::uint32_t letters = 17;
    constexpr std::uint32_t starts = letters * letters * letters * letters;
    Texts texts;
    for (std::uint32_t i = 0; i < 25000; ++i) {
        std::u32string text;
        for (std::uint32_t number = i * 7919 % starts; text.size() < 4; number /= letters) {
            text.push_back(U'a' + number % letters);
        }
        text.push_back(i % 256);
        texts.push_back(text);
    }
    expect_ascending(texts, mixed, "four letters and a byte");
}

const std::array tests{
    Test{"order of texts: any size", any_size},
    Test{"order of texts: common starts", common_starts},
    Test{"order of texts: zeros at the end", zeros_at_end},
    Test{"order of texts: wide characters", wide_characters},
    Test{"order of texts: many buckets", many_buckets},
    Test{"order of texts: most buckets", most_buckets},
};

}  // namespace
}  // namespace quorin::tests
