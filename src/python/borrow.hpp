// Memory that belongs to Python objects and is read in place.
//
// Invariant: while a Borrow lives, no foreign code runs. Foreign code is every call of Python code, and also every
// allocation of an array (numpy releases the GIL inside it), every list, tuple or dictionary that is made (which may
// start garbage collection) and the answer to a signal. Each of them may change or free what is borrowed.
//
// The functions of python/ that may run foreign code begin with foreign_code_may_run(), so a native route that has them
// in the wrong order fails the first time that it is run, and not only under a race. A route therefore allocates
// first and borrows afterwards, or drops its borrow, allocates, and borrows again.
#pragma once

#include "python/interpreter.hpp"

#include <stdexcept>

namespace quorin {

// A view of borrowed memory has one as a member: the view's scope is the borrow's.
class Borrow {
  public:
    Borrow() noexcept { ++alive_; }
    Borrow(const Borrow& /*other*/) noexcept { ++alive_; }
    Borrow& operator=(const Borrow&) noexcept = default;
    ~Borrow() { --alive_; }

    [[nodiscard]] static bool any() noexcept { return alive_ != 0; }

  private:
    // Only read and written with the GIL held. It is 0 whenever another thread may take the GIL, so all threads share
    // it.
    static inline int alive_ = 0;
};

// A native route would run foreign code while it reads memory in place: a mistake in this module.
class BorrowViolation : public std::logic_error {
  public:
    explicit BorrowViolation(Where where);
};

[[noreturn]] void fail_borrowed(Where where);

inline void foreign_code_may_run(Where where = Where::current()) {
    if (Borrow::any()) [[unlikely]]
        fail_borrowed(where);
}

}  // namespace quorin
