// Reference texts compared with a linear search: all sizes, all storages, as a TextView and as a ShortText.
#include "core/references/reference_texts.hpp"

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

using core::ReferenceTexts;
using core::ShortText;
using core::TextView;

std::u32string random_text(std::mt19937& random) {
    constexpr std::array<char32_t, 8> characters{U'a', U'b', U'\0', 0x7f, 0xe9, 0x3b1, 0x6f22, 0x1f600};
    std::u32string text(random() % 11, U'a');
    const std::size_t kinds = random() % 2 == 0 ? 4 : characters.size();
    for (char32_t& c : text) {
        if (random() % 4 == 0) c = characters[random() % kinds];
    }
    // Up to the limit of 31 characters, which may be more bytes in UTF-8.
    if (random() % 8 == 0) text.insert(0, std::u32string(5 + random() % 16, U'a'));
    return text;
}

std::vector<StoredText> every_stored(const std::u32string& text) {
    std::vector<StoredText> stored;
    for (const Stored as : every_storage) {
        if (fits(text, as)) stored.emplace_back(text, as);
    }
    return stored;
}

void random_references() {
    std::mt19937 random(6);
    for (int i = 0; i < 2000; ++i) {
        std::vector<std::u32string> texts(random() % (core::most_references + 1));
        std::vector<StoredText> stored;
        stored.reserve(texts.size());
        ReferenceTexts references;
        for (std::u32string& text : texts) {
            text = random_text(random);
            std::vector<StoredText> ways = every_stored(text);
            stored.push_back(std::move(ways[random() % ways.size()]));
            check(references.add(stored.back().view()), "a reference");
        }
        for (int cell = 0; cell < 40; ++cell) {
            const bool known = !texts.empty() && random() % 2 == 0;
            const std::u32string text = known ? texts[random() % texts.size()] : random_text(random);
            core::ReferenceBits expected = 0;
            for (std::size_t m = 0; m < texts.size(); ++m)
                expected |= texts[m] == text ? core::ReferenceBits{1} << m : 0;
            for (const StoredText& in_cell : every_stored(text)) {
                const TextView view = in_cell.view();
                const std::string what = "references " + std::to_string(i) + ", cell " + std::to_string(cell);
                check(references.find(view) == expected, what);
                check(expected == 0 || view.size <= references.longest(), what + ", longest");
                if (!view.is_padded() || view.size == 0 || view.size > 8) continue;
                const char* end = static_cast<const char*>(view.characters) + view.size;
                check(references.find(ShortText{core::eight_bytes(end - 8), view.size}) == expected,
                      what + ", at a glance");
            }
        }
    }
}

// A lone surrogate has no valid UTF-8 encoding: such a text equals only itself, not a text of similar bytes.
void surrogates() {
    const std::u32string text{U'a', 0xd800};
    const StoredText stored(text, Stored::two_bytes);
    ReferenceTexts references;
    check(references.add(stored.view()), "a surrogate");
    check(references.find(StoredText(text, Stored::four_bytes).view()) == 1, "the same surrogate");
    check(references.find(StoredText({U'a', 0xd7ff}, Stored::utf8).view()) == 0, "another character");
}

void full() {
    ReferenceTexts references;
    const std::u32string longest(31, U'\u6f22');
    for (const std::u32string& text : {std::u32string(1, U'x'), std::u32string(31, U'x'), longest}) {
        for (const StoredText& stored : every_stored(text)) check(references.find(stored.view()) == 0, "not added yet");
        const StoredText stored(text, Stored::four_bytes);
        check(references.add(stored.view()), "up to 31 characters");
        for (const StoredText& same : every_stored(text)) check(references.find(same.view()) != 0, "added");
    }
    check(!references.add(StoredText(std::u32string(32, U'x'), Stored::one_byte).view()), "32 characters");
    for (const StoredText& other : every_stored(longest + U'a')) check(references.find(other.view()) == 0, "longer");
    const StoredText text(U"NA", Stored::padded);
    for (std::size_t i = 3; i < core::most_references; ++i) check(references.add(text.view()), "one of 64");
    check(!references.add(text.view()), "one reference too many");
    check(references.find(text.view()) == ~core::ReferenceBits{0} << 3U, "all equal references are found");
}

const std::array tests{
    Test{"random references", random_references},
    Test{"references with surrogates", surrogates},
    Test{"as many references as possible", full},
};

}  // namespace
}  // namespace quorin::tests
