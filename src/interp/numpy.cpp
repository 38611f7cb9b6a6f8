#include "interp/numpy.hpp"

#include "interp/errors.hpp"
#include "interp/space.hpp"

#include <numpy/arrayobject.h>
#include <numpy/arrayscalars.h>

namespace quorin {

void connect_numpy() {
    if (_import_array() < 0) throw PythonError(Where::current());
}

bool is_plain_text(Object value) noexcept {
    const PyTypeObject* type = Py_TYPE(value.get());
    return type == &PyUnicode_Type || type == &PyUnicodeArrType_Type;
}

Ref numpy_alias(At name, Object builtin) {
    const Ref np = global(At("np"_py, name.where));
    if (PyModule_Check(np.get())) {
        PyObject* held = PyDict_GetItemWithError(PyModule_GetDict(np.get()), name.name.text);
        if (held == nullptr && PyErr_Occurred() != nullptr) throw PythonError(name.where);
        return Ref::share(held == nullptr ? builtin : Object(held));
    }
    Ref held = Ref::adopt(PyObject_GetAttr(np.get(), name.name.text));
    if (held) return held;
    if (!PythonError::matches(PyExc_AttributeError)) throw PythonError(name.where);
    PyErr_Clear();
    return Ref::share(builtin);
}

}  // namespace quorin
