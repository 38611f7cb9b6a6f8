// Column type inference: the classifier and its companions.
#pragma once

#include "interp/routine.hpp"

namespace quorin::classify {

extern const Definition numpy_whatis;

}  // namespace quorin::classify
