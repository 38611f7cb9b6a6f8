// The names that native routes depend on, collected from the definitions of all routines.
#pragma once

#include "python/routine.hpp"

#include <string>
#include <vector>

namespace quorin {

// Registers a definition under the qualified name of its routine, such as "FCplus.getClasses". A later routine of the
// same name replaces the earlier one, as its binding does.
void register_routine(const char* qualified, const Definition& definition);

// The names that the native route of a routine depends on: those of its definition and, if such a name is a routine,
// those of that routine's definition, in the order of the definitions. Empty for a routine without a native route.
std::vector<std::string> native_lookups(const Definition& definition);

// native_lookups() of all registered routines, without repetition.
std::vector<std::string> all_native_lookups();

}  // namespace quorin
