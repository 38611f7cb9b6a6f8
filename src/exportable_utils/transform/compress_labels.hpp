// The native route of compress_str_column, for arrays of labels.
#pragma once

#include "python/ref.hpp"

namespace quorin::transform {

// Compresses the labels of X in place and returns X. Returns an empty Ref, with nothing written, to give up.
Ref native_compress_str_column(Object X, Object misslist, Object compress_type);

// One row of the interpreter route: compresses the label `text` and writes the result into X.
void compress_row(Object X, Py_ssize_t row, Object text, Object misslist, Object compress_type);

}  // namespace quorin::transform
