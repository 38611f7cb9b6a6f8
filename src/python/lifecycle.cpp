#include "python/lifecycle.hpp"

#include "python/errors.hpp"

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

namespace quorin {

namespace {

#define QUORIN_TEXT(value) #value
#define QUORIN_VERSION(major, minor) QUORIN_TEXT(major) "." QUORIN_TEXT(minor)

// One contiguous text in the binary: a test finds it in a built module and patches the version.
const volatile char built_for[] = "built for CPython " QUORIN_VERSION(PY_MAJOR_VERSION, PY_MINOR_VERSION);
constexpr std::size_t version_starts = std::string_view("built for CPython ").size();

std::string build_version() {
    std::string version;
    for (std::size_t i = version_starts; built_for[i] != '\0'; ++i) version += built_for[i];
    return version;
}

// "3.11" of "3.11.7 (main, ...".
std::string runtime_version() {
    const std::string_view whole = Py_GetVersion();
    return std::string(whole.substr(0, whole.find_first_not_of("0123456789", whole.find('.') + 1)));
}

constexpr std::int64_t no_interpreter = -1;
std::atomic<std::int64_t> owner{no_interpreter};
std::atomic<bool> started{false};

}  // namespace

void check_version(const char* module) {
    const std::string built = build_version();
    const std::string running = runtime_version();
    if (built == running) return;
    if (PyErr_WarnFormat(nullptr, 1, "compiletime version %s of module '%.100s' does not match runtime version %s",
                         built.c_str(), module, running.c_str()) < 0) {
        throw PythonError(Where::current());
    }
}

void claim_interpreter() {
    const std::int64_t running = running_interpreter();
    if (running < 0) throw PythonError(Where::current());
    std::int64_t first = no_interpreter;
    if (!owner.compare_exchange_strong(first, running) && first != running) {
        fail(PyExc_ImportError,
             "Interpreter change detected - this module can only be loaded into one interpreter per process.");
    }
}

bool is_own_interpreter() noexcept {
    const std::int64_t running = running_interpreter();
    if (running < 0) PyErr_Clear();
    return running >= 0 && owner == running;
}

StartUp::StartUp() {
    if (started.exchange(true)) {
        fail(PyExc_RuntimeError,
             "Module 'exportable_utils' has already been imported. Re-initialisation is not supported.");
    }
}

StartUp::~StartUp() {
    if (!succeeded_) started = false;
}

}  // namespace quorin
