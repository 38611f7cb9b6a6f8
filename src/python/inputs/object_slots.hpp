// The places in an array of objects.
#pragma once

#include <utility>

#include "python/inputs/array_column.hpp"

namespace quorin {

// The place of a row's object in the array itself.
inline PyObject** object_slot(const ArrayColumn& column, std::size_t row) noexcept {
    return reinterpret_cast<PyObject**>(const_cast<char*>(column.at(row)));
}

// Puts an object into a place and returns the one that was there. Dropping the old one may run a __del__, which is
// foreign code: keep it until nothing is borrowed, unless its type is known.
inline Ref replace_object(PyObject** slot, Ref object) noexcept {
    return Ref::adopt(std::exchange(*slot, object.give()));
}

}  // namespace quorin
