// The life of the module in a process: one interpreter, one start-up, no second.
#pragma once

#include "python/ref.hpp"

namespace quorin {

// Warns where the running interpreter is of another version (major.minor) than the one the module was built for.
void check_version(const char* module);

// Refuses every interpreter but the first that comes, also where that one could not start the module up: what is made
// once for a process belongs to it from then on.
void claim_interpreter();
bool is_own_interpreter() noexcept;

// Refuses a second start-up. One that fails leaves the way free for another try.
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
