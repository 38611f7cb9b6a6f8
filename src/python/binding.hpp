// Binds the arguments of a call to parameters.
#pragma once

#include "python/interpreter.hpp"

#include <array>
#include <cstddef>

namespace quorin {

// The parameters of a routine. The references are borrowed from the routine.
struct Signature {
    const char* name;
    Py_ssize_t parameters;  // number of parameters
    Py_ssize_t required;    // number of parameters without a default; they come first
    PyObject* names;        // tuple of interned texts
    PyObject* defaults;     // tuple for the last parameters, or None
};

struct GivenKeywords {
    PyObject* const* names = nullptr;
    PyObject* const* values = nullptr;
    Py_ssize_t size = 0;
};

// Fills `bound` with borrowed references. Raises TypeError with the interpreter's message if the call does not match.
void bind(const Signature& signature, PyObject* const* positional, Py_ssize_t given, GivenKeywords keywords,
          PyObject** bound);

// Raises the TypeError of a routine with a single parameter, which is positional only.
[[noreturn]] void refuse_single(const char* name, Py_ssize_t given, Py_ssize_t keywords);

}  // namespace quorin
