// Creates str objects from characters in memory.
#pragma once

#include <string_view>
#include <vector>

#include "core/text/text_view.hpp"
#include "python/ref.hpp"

namespace quorin {

// Each function throws PythonError if the object cannot be created.
Ref new_text(core::TextView text);
// Faster for characters that are known to be ASCII: does not search for the widest one.
Ref ascii_text(std::string_view characters);
// numpy.str_(text). Allocates a tuple, so foreign code may run.
Ref text_scalar(Object text);
// "".join(text.split()). `room` is scratch memory that grows as needed; pass it to every call.
Ref text_without_white_space(core::TextView text, std::vector<char>& room);

}  // namespace quorin
