// The life of the module in a process: one interpreter, one start-up, no second.
#pragma once

#include "python/ref.hpp"

namespace quorin {

// Warns if the version of the running interpreter (major.minor) is not the one that the module was built for.
void check_version(const char* module);

// Raises ImportError in every interpreter but the first that imports the module, even if that import failed: objects
// that exist once in a process belong to the first interpreter.
void claim_interpreter();
bool is_own_interpreter() noexcept;

// Raises RuntimeError at a second start-up. After a failed one, start-up may be tried again.
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
