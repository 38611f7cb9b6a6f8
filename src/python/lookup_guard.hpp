// What start-up bound, remembered. A native route may stand in for the interpreter route only while every name that the
// interpreter route would look up still stands for the object that was there first: a replaced name is somebody's
// wish, and only the interpreter route can honour it.
#pragma once

namespace quorin {

// To be called once, when everything is bound.
void remember_originals();

// Whether all of these names but those of the date test still are what they were. Costs a few loads, unless one of the
// dictionaries that hold them has changed since the last time: then every name is looked up again.
bool originals_in_place() noexcept;

// Whether the date test is its own as well, so that whoever does not tell its answer need not ask it. An application
// may replace it, or leave it without the word that it has no side effects: the classifier then asks it, and the rest
// of its work is still its own.
bool date_test_in_place() noexcept;

}  // namespace quorin
