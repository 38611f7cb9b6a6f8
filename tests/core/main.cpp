// Runs all registered tests, or those whose name contains the first argument.
#include <exception>
#include <iostream>
#include <source_location>
#include <string>
#include <string_view>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

struct Entry {
    std::string_view name;
    Test::Body body;
};

// A function-local static: tests of other files register before this file's globals are initialised.
std::vector<Entry>& registry() {
    static std::vector<Entry> entries;
    return entries;
}

int failures_of_running_test = 0;

bool passes(const Entry& entry) {
    failures_of_running_test = 0;
    try {
        entry.body();
    } catch (const std::exception& error) {
        report_failure(std::string{"unexpected exception: "} + error.what(), std::source_location::current());
    }
    if (failures_of_running_test != 0) std::cout << "FAILED " << entry.name << '\n';
    return failures_of_running_test == 0;
}

int run(std::string_view wanted) {
    int passed = 0;
    int failed = 0;
    for (const Entry& entry : registry()) {
        if (entry.name.find(wanted) == std::string_view::npos) continue;
        ++(passes(entry) ? passed : failed);
    }
    std::cout << passed << " passed, " << failed << " failed\n";
    // No test run means a wrong filter or a broken build: a failure.
    return failed == 0 && passed != 0 ? 0 : 1;
}

}  // namespace

Test::Test(std::string_view name, Body body) {
    registry().push_back({name, body});
}

void report_failure(const std::string& what, std::source_location where) {
    ++failures_of_running_test;
    std::cout << where.file_name() << ':' << where.line() << ": " << what << '\n';
}

}  // namespace quorin::tests

int main(int argc, char** argv) {
    return quorin::tests::run(argc > 1 ? argv[1] : "");
}
