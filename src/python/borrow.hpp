// Memory that belongs to Python objects and is read in place.
//
// Invariant: while a Borrow is alive, no foreign code runs. Foreign code is
//   - every call of Python code, operators and attribute look-ups included;
//   - every allocation of an array: numpy may release the GIL, so that other threads run;
//   - every allocation of a list, tuple or dictionary: it may start garbage collection, which calls finalizers;
//   - releasing the last reference to an object of unknown class: its finalizer is called;
//   - answering a signal: its handler is called.
// Each of them may change or free borrowed memory. Making a str, int, float or bool is not foreign code.
//
// Every function of python/ that may run foreign code begins with foreign_code_may_run(). It throws BorrowViolation if
// a Borrow is alive, so a native route with the wrong order fails in its first run and not only in a race between
// threads. A route allocates first and borrows afterwards; or it drops its borrow, allocates, and borrows again.
#pragma once

#include "python/interpreter.hpp"

#include <stdexcept>

namespace quorin {

// A view of borrowed memory has a Borrow as a member, so the scope of the view is the scope of the borrow.
class Borrow {
  public:
    Borrow() noexcept { ++alive_; }
    Borrow(const Borrow& /*other*/) noexcept { ++alive_; }
    Borrow(Borrow&& /*other*/) noexcept { ++alive_; }
    Borrow& operator=(const Borrow&) noexcept = default;
    Borrow& operator=(Borrow&&) noexcept = default;
    ~Borrow() { --alive_; }

    [[nodiscard]] static bool any() noexcept { return alive_ != 0; }

  private:
    // Read and written only with the GIL held. By the invariant it is 0 whenever the GIL is released, so one counter
    // serves all threads.
    static inline int alive_ = 0;
};

// A native route would run foreign code while it reads memory in place: a bug in this module. It is not derived from
// PythonError, so native_route() does not treat it as a reason to give up; behind_wall() makes it a SystemError.
class BorrowViolation : public std::logic_error {
  public:
    explicit BorrowViolation(Where where);
};

// Throws BorrowViolation. A build with assertions aborts instead: code that handles a SystemError cannot hide the bug.
[[noreturn]] void fail_borrowed(Where where);

inline void foreign_code_may_run(Where where = Where::current()) {
    if (Borrow::any()) [[unlikely]]
        fail_borrowed(where);
}

}  // namespace quorin
