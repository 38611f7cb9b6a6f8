// The native routes of numpy_column_float2str.
#pragma once

#include <string_view>

#include "core/text/float_text.hpp"
#include "python/ref.hpp"

namespace quorin::transform {

// X.astype(str). Returns an empty Ref to give up.
Ref native_text_array(Object X);

// Replaces each element of X by its text and returns X. Returns an empty Ref to give up; some rows may be written by
// then, and the interpreter route writes the same values to them again.
Ref native_text_in_place(Object X);

// str() of None, a bool or exactly a float or an int of at most 64 bits; empty for any other object. The characters are
// in `room` or constant.
std::string_view scalar_text(PyObject* value, core::FloatText& room);

// The same as a str object, for use while a column is borrowed. PyObject_Str() is foreign code even for these types: it
// handles signals, as the conversion of an int does.
Ref scalar_text_object(PyObject* value);
// A new str object, even for one digit, as str() of an int makes. ascii_text() returns a cached object for one digit.
Ref text_of_ascii_number(std::string_view characters);

// Whether numpy's str() of a float64 is the same as Python's. It is not after np.set_printoptions(legacy="1.13").
bool numpy_writes_all_digits();

}  // namespace quorin::transform
