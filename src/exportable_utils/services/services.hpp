// Error reporting, and predicates of single values.
#pragma once

#include "python/routine.hpp"

namespace quorin::services {

extern const Definition setValueOrDefault;
extern const Definition isint;
extern const Definition isfloat;
extern const Definition QSR_raise_exception;

}  // namespace quorin::services
