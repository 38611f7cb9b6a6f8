#define QUORIN_IMPORTS_NUMPY
#include "python/numpy.hpp"

#include "python/borrow.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"

namespace quorin {

void connect_numpy() {
    if (_import_array() < 0) throw PythonError(Where::current());
}

Ref new_array(std::size_t size, PyArray_Descr* dtype, Where where) {
    foreign_code_may_run(where);
    const npy_intp shape = static_cast<npy_intp>(size);
    // PyArray_Empty() takes a reference over.
    static_cast<void>(Ref::share(reinterpret_cast<PyObject*>(dtype)).give());
    return Ref::take(PyArray_Empty(1, &shape, dtype, 0), where);
}

Ref new_array(std::size_t size, int type, Where where) {
    foreign_code_may_run(where);
    const npy_intp shape = static_cast<npy_intp>(size);
    return Ref::take(PyArray_SimpleNew(1, &shape, type), where);
}

Ref new_zeros(std::size_t size, int type, Where where) {
    foreign_code_may_run(where);
    const npy_intp shape = static_cast<npy_intp>(size);
    return Ref::take(PyArray_ZEROS(1, &shape, type, 0), where);
}

Ref new_objects(PyArrayObject* like, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyArray_SimpleNew(PyArray_NDIM(like), PyArray_DIMS(like), NPY_OBJECT), where);
}

Ref new_fixed_text(std::size_t size, std::size_t length, Where where) {
    foreign_code_may_run(where);
    const npy_intp shape = static_cast<npy_intp>(size);
    const int width = static_cast<int>(length * sizeof(Py_UCS4));
    return Ref::take(PyArray_New(&PyArray_Type, 1, &shape, NPY_UNICODE, nullptr, nullptr, width, 0, nullptr), where);
}

Ref numpy_alias(At name, Object builtin) {
    foreign_code_may_run(name.where);
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
