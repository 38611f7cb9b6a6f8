#define QUORIN_IMPORTS_NUMPY
#include "interp/numpy.hpp"

#include "interp/errors.hpp"
#include "interp/space.hpp"

namespace quorin {

void connect_numpy() {
    if (_import_array() < 0) throw PythonError(Where::current());
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
