// The callable object of a routine and its attributes.
#pragma once

#include "python/routine.hpp"

#include <structmember.h>

namespace quorin {

// The callable that Python sees. All fields except `dict` and `weak` are set by make_routine() and never change.
struct Routine {
    PyObject_HEAD
#if PY_VERSION_HEX >= 0x03080000
        vectorcallfunc vectorcall;
#endif
    const Definition* definition;
    Py_ssize_t required;
    PyObject* names;                  // tuple of interned texts
    PyObject* defaults;               // tuple, or None if no parameter has a default
    PyObject* const* default_values;  // the items of the tuple
    PyObject* annotations;            // dict
    PyObject* name;
    PyObject* qualified;
    PyObject* module;
    PyObject* dict;
    PyObject* weak;
};

inline Routine* routine_of(PyObject* self) {
    return reinterpret_cast<Routine*>(self);
}

inline const Definition& definition_of(PyObject* self) {
    return *routine_of(self)->definition;
}

// Attributes such as `__name__` and properties such as `__doc__`, each table terminated by an empty entry.
extern PyMemberDef routine_members[];
extern PyGetSetDef routine_properties[];

}  // namespace quorin
