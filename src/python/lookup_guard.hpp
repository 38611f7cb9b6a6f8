// Whether the names that the interpreter routes look up are bound to the objects that start-up bound. A native route
// runs only if they are: if an application replaces one, only the interpreter route has the effect of the replacement.
#pragma once

namespace quorin {

// Records the objects that all names of native_lookups() are bound to. Called at the end of start-up, when every
// routine is made. If it cannot watch one of the names, lookup_state() returns false ever after.
void remember_lookups();

struct LookupState {
    // All names but those of the date test are bound to the recorded objects.
    bool unchanged = false;
    // In addition the names of the date test are, and FC declares that its date test has no side effects: then a call
    // of the date test whose result is not used can be left out.
    bool date_test_unchanged = false;
};

// Costs a few loads, unless one of the dictionaries that hold the names has changed since the last call: then every
// name is looked up again. Holds until foreign code runs.
LookupState lookup_state() noexcept;

}  // namespace quorin
