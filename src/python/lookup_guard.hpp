// Whether the names that the interpreter routes look up are bound to the objects that start-up bound. A native route
// runs only if they are: if an application replaces one, only the interpreter route has the effect of the replacement.
#pragma once

namespace quorin {

// Records the objects that the names of all_native_lookups() are bound to. Called at the end of start-up, when all
// routines exist. If one of the names cannot be watched, both members of lookup_state() stay false.
void remember_lookups();

struct LookupState {
    // All names except those of the date test are bound to the recorded objects.
    bool unchanged = false;
    // The names of the date test are also bound to the recorded objects, and FC declares that its date test has no side
    // effects. A call of the date test whose result is not used can then be skipped.
    bool date_test_unchanged = false;
};

// Costs a few loads; looks up every name again if one of the dictionaries that hold them has changed since the last
// call. The result is valid until foreign code runs.
LookupState lookup_state() noexcept;

}  // namespace quorin
