// Shared services: reporting errors and asking single values what they are.
#pragma once

#include "interp/routine.hpp"

namespace quorin::frame {

extern const Definition setValueOrDefault;
extern const Definition isint;
extern const Definition isfloat;
extern const Definition QSR_raise_exception;

}  // namespace quorin::frame
