// Reads and replaces the elements of an object array.
#pragma once

#include <utility>

#include "python/inputs/array_column.hpp"

namespace quorin {

// The address of a row's element.
inline PyObject** object_slot(const ArrayColumn& column, std::size_t row) noexcept {
    return reinterpret_cast<PyObject**>(const_cast<char*>(column.at(row)));
}

// Puts an object into a slot and returns the old one. Releasing the old one may run its finalizer, which is foreign
// code: keep it until nothing is borrowed, unless its type is known.
inline Ref replace_object(PyObject** slot, Ref object) noexcept {
    return Ref::adopt(std::exchange(*slot, object.give()));
}

}  // namespace quorin
