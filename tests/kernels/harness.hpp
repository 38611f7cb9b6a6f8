// What the kernel tests need and no more: named tests that register themselves, checks that report
// where they stand, one closing line.
#pragma once

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

}  // namespace quorin::tests
