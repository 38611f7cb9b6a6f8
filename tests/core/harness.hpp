// What the kernel tests need and no more: named tests that register themselves, checks that report
// where they stand, one closing line.
#pragma once

#include <cstddef>
#include <source_location>
#include <string>
#include <string_view>

namespace quorin::tests {

// Registers itself where it is defined, at namespace scope: `const Test empty{"empty text", empty_text};`
class Test {
  public:
    using Body = void (*)();
    Test(std::string_view name, Body body);
};

// Fails the running test; the test goes on, so that one run shows every broken row of a table.
void report_failure(const std::string& what, std::source_location where);

inline void check(bool holds, std::string_view what, std::source_location where = std::source_location::current()) {
    if (!holds) report_failure(std::string{what}, where);
}

// Calls `use` with every text of up to so many characters of the alphabet, the empty one first.
template <class Use>
void for_every_text(std::string_view alphabet, std::size_t longest, Use use, const std::string& start = {}) {
    use(start);
    if (start.size() == longest) return;
    for (const char c : alphabet) for_every_text(alphabet, longest, use, start + c);
}

}  // namespace quorin::tests
