// Compression of labels straight from memory.
#pragma once

#include "python/ref.hpp"

namespace quorin::transform {

// Writes into X and gives it back; nothing where it cannot answer, with no effect left behind.
Ref native_compress_str_column(Object X, Object misslist, Object compress_type);

}  // namespace quorin::transform
