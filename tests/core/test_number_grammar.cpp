// The number grammar compared with its reference, in every storage: all short texts, and random longer ones.
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

#include "core/text/number_text.hpp"
#include "harness.hpp"
#include "number_reference.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::CharacterTables;
using core::NumberText;
using core::TextClass;

// A character of each class of the grammar, and one that is in none.
constexpr std::string_view alphabet{"09_+-.eE \t\x1cnaif\0x", 17};

// All texts are ASCII, so these functions are not called.
constexpr CharacterTables no_script{[](std::uint32_t) { return false; }, [](std::uint32_t) { return -1; }};

// The class of a text in a column: words and float texts without a dot are plain.
TextClass class_by_reference(const std::string& text, NumberText number) {
    if (number == NumberText::integer) return TextClass::integer;
    const bool dot = text.find('.') != std::string::npos;
    return number == NumberText::real && dot ? TextClass::real : TextClass::plain;
}

void check_text(const std::string& text) {
    const NumberText number = number_by_reference(text);
    const TextClass text_class = class_by_reference(text, number);
    for (const Stored stored : every_storage) {
        const StoredText same_text({text.begin(), text.end()}, stored);
        const std::string what = "text <" + text + "> in storage " + std::to_string(static_cast<int>(stored));
        check(core::classify_number(same_text.view()) == number, what);
        check(core::classify_text(same_text.view(), no_script) == text_class, what + ", its class");
    }
}

void short_texts() {
    for_every_text(alphabet, 4, check_text);
}

// Mostly digits, of lengths around multiples of eight: the kernel reads eight characters at once.
void long_texts() {
    std::mt19937 random(1);
    constexpr std::string_view others{".-+_eE \tx/:\x7f\0", 13};
    for (int i = 0; i < 40000; ++i) {
        std::string text(1 + random() % 40, '0');
        for (char& c : text) c = static_cast<char>('0' + random() % 10);
        for (std::size_t changes = random() % 4; changes != 0; --changes) {
            text[random() % text.size()] = others[random() % others.size()];
        }
        if (random() % 2 == 0) text[0] = random() % 2 == 0 ? '-' : '+';
        check_text(text);
    }
}

const Test short_ones{"all texts up to four characters", short_texts};
const Test long_ones{"texts of up to forty characters", long_texts};

}  // namespace
}  // namespace quorin::tests
