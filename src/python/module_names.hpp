// The module's own names. Routines meet each other, the libraries and the two classes here, by name and at call
// time, so that an application can put something else in any of these places.
#pragma once

#include "python/ref.hpp"

namespace quorin {

// The module's dictionary, set at start-up and kept as long as the process lives.
Object module_names() noexcept;
void use_module_names(Object dictionary) noexcept;

// What a name of the module stands for now; built-in names come behind the module's own.
Ref global(At name);

void print(const Operand& what, Where where = Where::current());

// Seconds, from the module's `time`.
Ref now(Where where = Where::current());

[[noreturn]] void fail_unbound(Name variable, Where where = Where::current());

// A variable of a routine that may be read before anything was put into it.
class Local {
  public:
    explicit Local(Name name) noexcept : name_(name) {}
    Local& operator=(Ref value) noexcept {
        value_ = std::move(value);
        return *this;
    }
    [[nodiscard]] bool bound() const noexcept { return static_cast<bool>(value_); }
    [[nodiscard]] Object get(Where where = Where::current()) const;

  private:
    Name name_;
    Ref value_;
};

}  // namespace quorin
