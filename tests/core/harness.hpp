// The harness of the core's tests: named tests, registered by their constructor, and checks that report their file and
// line.
#pragma once

#include <cstddef>
#include <source_location>
#include <string>
#include <string_view>

namespace quorin::tests {

// The constructor registers the test. Define tests at namespace scope: `const Test empty{"empty text", empty_text};`
class Test {
  public:
    using Body = void (*)();
    Test(std::string_view name, Body body);
};

// Marks the running test as failed. The test continues, so one run reports all failures.
void report_failure(const std::string& what, std::source_location where);

inline void check(bool holds, std::string_view what, std::source_location where = std::source_location::current()) {
    if (!holds) report_failure(std::string{what}, where);
}

// Calls `use` with `start` followed by every text of the alphabet, shortest first, of at most `longest` characters in
// all.
template <class Use>
void for_every_text(std::string_view alphabet, std::size_t longest, Use use, const std::string& start = {}) {
    use(start);
    if (start.size() == longest) return;
    for (const char c : alphabet) for_every_text(alphabet, longest, use, start + c);
}

}  // namespace quorin::tests
