// The cache of values computed from texts.
#include "core/distinct/recent_texts.hpp"

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

// More texts than slots: the cache never returns the value of another text.
void many_texts() {
    for (const std::size_t rows : std::to_array<std::size_t>({0, 1, 3, 100, 50000})) {
        std::mt19937 random(1);
        std::vector<std::string> texts;
        for (int i = 0; i < 5000; ++i) texts.push_back("text " + std::to_string(i));
        core::RecentTexts<std::string> recent(rows);
        std::size_t made = 0;
        for (int i = 0; i < 50000; ++i) {
            const std::string& text = texts[random() % (i < 25000 ? texts.size() : 20)];
            const std::string& value = recent.get({text.data(), text.size(), 1}, [&] {
                ++made;
                return text;
            });
            check(value == text, "the value of another text");
        }
        check(rows < 1000 || made < 26000, "few texts stay in the cache");
    }
}

// In every encoding, equal texts have one value and different texts have different values.
void every_encoding() {
    const std::vector<std::u32string> texts{
        U"", U"a", U"ab", U"a\u00e9", U"a\u6f22", U"a text of more than sixteen bytes", std::u32string{U'a', U'\0'}};
    for (const Stored as : every_storage) {
        std::vector<StoredText> stored;
        for (const std::u32string& text : texts) {
            if (!fits(text, as)) continue;
            stored.emplace_back(text, as);
            stored.emplace_back(text, as);
        }
        core::RecentTexts<std::size_t> recent(10000);
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = 0; i < stored.size(); ++i) {
                const std::size_t value = recent.get(stored[i].view(), [&] { return i / 2; });
                check(value == i / 2, "storage " + std::to_string(static_cast<int>(as)));
            }
        }
    }
}

// The value is computed once and returned again for an equal text at another address.
void made_once() {
    core::RecentTexts<int> recent(100);
    int made = 0;
    const std::array<StoredText, 3> texts{StoredText{U"the same text", Stored::utf8},
                                          StoredText{U"the same text", Stored::ascii},
                                          StoredText{U"the same text", Stored::padded}};
    for (const StoredText& text : texts) {
        const int value = recent.get(text.view(), [&] { return ++made; });
        check(value == 1, "the first value");
    }
    check(made == 1, "made once");
}

const std::array tests{
    Test{"recent texts: more than places", many_texts},
    Test{"recent texts: every encoding", every_encoding},
    Test{"recent texts: made once", made_once},
};

}  // namespace
}  // namespace quorin::tests
