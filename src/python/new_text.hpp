// Str objects made of characters in memory.
#pragma once

#include <string_view>
#include <vector>

#include "core/text/text_view.hpp"
#include "python/ref.hpp"

namespace quorin {

// Each of these throws PythonError where the interpreter makes no text.
Ref new_text(core::TextView text);
// Spares the interpreter the search for the widest character.
Ref ascii_text(std::string_view characters);
// An element of an array of fixed-width text, which is a str by its base. Makes a tuple on the way.
Ref text_scalar(Object text);
// What the interpreter's own "".join(text.split()) leaves. `room` is grown as needed and kept from call to call.
Ref text_without_white_space(core::TextView text, std::vector<char>& room);

}  // namespace quorin
