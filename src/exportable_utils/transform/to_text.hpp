// Elements as texts: the native routes of numpy_column_float2str.
#pragma once

#include <string_view>

#include "core/text/float_text.hpp"
#include "python/ref.hpp"

namespace quorin::transform {

// X.astype(str). Returns an empty Ref to give up.
Ref native_text_array(Object X);

// Replaces each element of X by its text and returns X; an empty Ref to give up. The rows before the one that it gives
// up at may have been written: the interpreter route writes the same into them again.
Ref native_text_in_place(Object X);

// str() of None or of an exact float, int or bool; empty for anything else. The characters are in `room` or constant.
// An integer of more than 64 bits is anything else.
std::string_view scalar_text(PyObject* value, core::FloatText& room);

// The same as a new str, for borrowed columns. PyObject_Str() is foreign code even for these types: it answers signals,
// and so does the conversion of an int.
Ref scalar_text_object(PyObject* value);
// A new str of one digit; ascii_text() returns one that is shared, str() of an int does not.
Ref text_of_ascii_number(std::string_view characters);

// Whether numpy's str() of a float64 is the same as Python's. It is not after np.set_printoptions(legacy="1.13").
bool numpy_writes_all_digits();

}  // namespace quorin::transform
