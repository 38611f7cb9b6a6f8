// Markers against a comparison of each with each: all lengths, all storages, as a view and at a glance.
#include "core/references/reference_texts.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::ReferenceTexts;
using core::ShortText;
using core::TextView;

std::u32string random_text(std::mt19937& random) {
    constexpr std::array<char32_t, 5> characters{U'a', U'b', U'\0', 0x7f, 0xe9};
    std::u32string text(random() % 11, U'a');
    for (char32_t& c : text) {
        if (random() % 4 == 0) c = characters[random() % characters.size()];
    }
    return text;
}

bool is_ascii(const std::u32string& text) {
    for (const char32_t c : text) {
        if (c > 0x7f) return false;
    }
    return true;
}

void random_markers() {
    std::mt19937 random(6);
    for (int i = 0; i < 2000; ++i) {
        std::vector<std::u32string> texts(random() % (core::most_references + 1));
        std::vector<StoredText> stored;
        stored.reserve(texts.size());
        ReferenceTexts markers;
        for (std::u32string& text : texts) {
            text = random_text(random);
            const Stored some = every_storage[random() % every_storage.size()];
            stored.emplace_back(text, some == Stored::compact && !is_ascii(text) ? Stored::one_byte : some);
            check(markers.add(stored.back().view()), "a marker");
        }
        for (int cell = 0; cell < 40; ++cell) {
            const bool known = !texts.empty() && random() % 2 == 0;
            const std::u32string text = known ? texts[random() % texts.size()] : random_text(random);
            core::ReferenceBits expected = 0;
            for (std::size_t m = 0; m < texts.size(); ++m)
                expected |= texts[m] == text ? core::ReferenceBits{1} << m : 0;
            for (const Stored as : every_storage) {
                if (as == Stored::compact && !is_ascii(text)) continue;
                const StoredText in_cell(text, as);
                const TextView view = in_cell.view();
                const std::string what = "markers " + std::to_string(i) + ", cell " + std::to_string(cell);
                check(markers.find(view) == expected, what);
                if (!view.compact || view.length == 0 || view.length > 8) continue;
                const char* end = static_cast<const char*>(view.characters) + view.length;
                check(markers.find(ShortText{core::eight_bytes(end - 8), view.length}) == expected,
                      what + ", at a glance");
            }
        }
    }
}

void too_many_or_too_long() {
    ReferenceTexts markers;
    const StoredText too_long(std::u32string(32, U'x'), Stored::one_byte);
    const StoredText fits(std::u32string(31, U'x'), Stored::one_byte);
    check(!markers.add(too_long.view()), "32 characters");
    for (std::size_t i = 0; i < core::most_references; ++i) check(markers.add(fits.view()), "31 characters");
    check(!markers.add(fits.view()), "one marker too many");
    check(markers.find(fits.view()) == ~core::ReferenceBits{0}, "all equal markers are found");
    check(markers.find(too_long.view()) == 0, "no marker is that long");
}

const std::array tests{
    Test{"random markers", random_markers},
    Test{"markers that do not fit", too_many_or_too_long},
};

}  // namespace
}  // namespace quorin::tests
