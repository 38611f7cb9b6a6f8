// numpy's C interface. The only header that includes numpy's; numpy.cpp imports it.
#pragma once

#include "python/ref.hpp"

#define PY_ARRAY_UNIQUE_SYMBOL quorin_numpy
#ifndef QUORIN_IMPORTS_NUMPY
#define NO_IMPORT_ARRAY
#endif
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <numpy/arrayobject.h>
#include <numpy/arrayscalars.h>
#pragma GCC diagnostic pop

namespace quorin {

// Connects to the numpy that the interpreter has imported. To be called once at start-up.
void connect_numpy();

inline PyArrayObject* as_array(Object array) noexcept {
    return reinterpret_cast<PyArrayObject*>(array.get());
}

// Exactly a numpy array, no subclass.
inline bool is_exact_array(Object value) noexcept {
    return Py_TYPE(value.get()) == &PyArray_Type;
}

// Exactly a str, or exactly an element of a fixed-width text array: both are read by int() and float() as text.
inline bool is_plain_text(Object value) noexcept {
    const PyTypeObject* type = Py_TYPE(value.get());
    return type == &PyUnicode_Type || type == &PyUnicodeArrType_Type;
}

// New arrays of one dimension. Allocating one is foreign code: numpy releases the GIL meanwhile. The elements of
// new_array() are not initialised, except that objects are None or null.
Ref new_array(std::size_t size, PyArray_Descr* dtype, Where where = Where::current());
Ref new_array(std::size_t size, int type, Where where = Where::current());
Ref new_zeros(std::size_t size, int type, Where where = Where::current());
// Elements that are objects are null, which numpy reads as None.
Ref new_nulls(std::size_t size, PyArray_Descr* dtype, Where where = Where::current());

// np.<name>, an alias of a built-in type that numpy has given up: where the numpy in use does not hold it, the
// built-in type itself, without numpy's warning or refusal.
Ref numpy_alias(At name, Object builtin);

}  // namespace quorin
