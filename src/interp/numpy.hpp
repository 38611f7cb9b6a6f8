// numpy's own types, as far as the module meets them without numpy's Python interface. The only place that knows
// numpy's header is numpy.cpp.
#pragma once

#include "interp/ref.hpp"

namespace quorin {

// Connects to the numpy that the interpreter has imported. To be called once at start-up.
void connect_numpy();

// Exactly a str, or exactly an element of a fixed-width text array: both are read by int() and float() as text.
bool is_plain_text(Object value) noexcept;

// np.<name>, an alias of a built-in type that numpy has given up: where the numpy in use does not hold it, the
// built-in type itself, without numpy's warning or refusal.
Ref numpy_alias(At name, Object builtin);

}  // namespace quorin
