// The module's global names. Routines look up each other, the libraries and the two classes here at call time, so that
// an application can replace any of them.
#pragma once

#include "python/ref.hpp"

namespace quorin {

// The module's dictionary, set at start-up and kept until the process ends.
Object module_names() noexcept;
void use_module_names(Object dictionary) noexcept;

// The object that a name is bound to in the module, or else in `__builtins__`. Raises NameError if there is none.
// Foreign code: a key of the dictionary may be of a class with its own `==`.
Ref global(At name);

void print(const Operand& what, Where where = Where::current());

// time.time(), with `time` looked up in the module.
Ref now(Where where = Where::current());

[[noreturn]] void fail_unbound(Name variable, Where where = Where::current());

// A local variable of a routine. Reading it before the first assignment raises UnboundLocalError.
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
