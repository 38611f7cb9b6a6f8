// From the arguments of a call to one value for each parameter.
#pragma once

#include "python/interpreter.hpp"

#include <array>
#include <cstddef>

namespace quorin {

// What binding needs to know of a routine; the references are the routine's own.
struct Signature {
    const char* name;
    Py_ssize_t parameters;  // how many there are
    Py_ssize_t required;    // how many of them have no default; they come first
    PyObject* names;        // tuple of interned texts
    PyObject* defaults;     // tuple for the last parameters, or None
};

struct GivenKeywords {
    PyObject* const* names = nullptr;
    PyObject* const* values = nullptr;
    Py_ssize_t size = 0;
};

// Fills `bound` with borrowed references. Throws TypeError with the interpreter's usual wording.
void bind(const Signature& signature, PyObject* const* positional, Py_ssize_t given, GivenKeywords keywords,
          PyObject** bound);

// For a routine of one parameter, which takes its argument straight and knows no keywords.
[[noreturn]] void refuse_single(const char* name, Py_ssize_t given, Py_ssize_t keywords);

}  // namespace quorin
