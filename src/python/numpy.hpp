// numpy's C interface. The only header that includes numpy's; numpy.cpp imports it.
#pragma once

#include "python/ref.hpp"

#include <span>

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

// Imports numpy's C interface. Call it once, at start-up.
void connect_numpy();

inline PyArrayObject* as_array(Object array) noexcept {
    return reinterpret_cast<PyArrayObject*>(array.get());
}

// Exactly a numpy array, no subclass.
inline bool is_exact_array(Object value) noexcept {
    return Py_TYPE(value.get()) == &PyArray_Type;
}

// Whether value is exactly a str or exactly a numpy.str_: int() and float() read both as text.
inline bool is_plain_text(Object value) noexcept {
    const PyTypeObject* type = Py_TYPE(value.get());
    return type == &PyUnicode_Type || type == &PyUnicodeArrType_Type;
}

// New arrays of one dimension. Allocating an array is foreign code: numpy may release the GIL. The elements of
// new_array() are not initialised, except that objects are None or null.
Ref new_array(std::size_t size, PyArray_Descr* dtype, Where where = Where::current());
Ref new_array(std::size_t size, int type, Where where = Where::current());
Ref new_zeros(std::size_t size, int type, Where where = Where::current());
// For a dtype of objects: the elements are null, which numpy reads as None.
Ref new_nulls(std::size_t size, PyArray_Descr* dtype, Where where = Where::current());
// Texts of `length` characters each, length >= 1, not initialised.
Ref new_fixed_text(std::size_t size, std::size_t length, Where where = Where::current());
// Objects, with any number of dimensions; the elements are null.
Ref new_objects(std::span<const npy_intp> shape, Where where = Where::current());

// Returns np.<name>, an alias of a built-in type that newer versions of numpy have removed, or `builtin` if numpy does
// not have it. Avoids numpy's deprecation warning and AttributeError.
Ref numpy_alias(At name, Object builtin);

}  // namespace quorin
