// The module can be loaded into one interpreter per process and started once.
#pragma once

#include "python/ref.hpp"

namespace quorin {

// Warns if the version of the running interpreter (major.minor) is not the one that the module was built for.
void check_version(const char* module);

// Raises ImportError in every interpreter except the first that imports the module, even if that import failed: static
// objects belong to the first interpreter.
void claim_interpreter();
bool is_own_interpreter() noexcept;

// Raises RuntimeError at a second start-up. A start-up that failed may be tried again.
class StartUp {
  public:
    StartUp();
    ~StartUp();
    StartUp(const StartUp&) = delete;
    StartUp& operator=(const StartUp&) = delete;
    StartUp(StartUp&&) = delete;
    StartUp& operator=(StartUp&&) = delete;
    void succeeded() noexcept { succeeded_ = true; }

  private:
    bool succeeded_ = false;
};

}  // namespace quorin
