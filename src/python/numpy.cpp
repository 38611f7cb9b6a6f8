#define QUORIN_IMPORTS_NUMPY
#include "python/numpy.hpp"

#include "python/borrow.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"

namespace quorin {

namespace {

void set_element_size(PyArray_Descr* dtype, std::size_t bytes) noexcept {
#if NPY_ABI_VERSION >= 0x02000000
    PyDataType_SET_ELSIZE(dtype, static_cast<npy_intp>(bytes));
#else
    dtype->elsize = static_cast<int>(bytes);
#endif
}

}  // namespace

void connect_numpy() {
    if (_import_array() < 0) throw PythonError(Where::current());
}

Ref new_array(std::size_t size, PyArray_Descr* dtype, Where where) {
    foreign_code_may_run(where);
    const npy_intp shape = static_cast<npy_intp>(size);
    // PyArray_Empty() steals a reference to the dtype.
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

Ref new_nulls(std::size_t size, PyArray_Descr* dtype, Where where) {
    foreign_code_may_run(where);
    const npy_intp shape = static_cast<npy_intp>(size);
    // PyArray_NewFromDescr() steals a reference to the dtype.
    static_cast<void>(Ref::share(reinterpret_cast<PyObject*>(dtype)).give());
    return Ref::take(PyArray_NewFromDescr(&PyArray_Type, dtype, 1, &shape, nullptr, nullptr, 0, nullptr), where);
}

Ref new_fixed_text(std::size_t size, std::size_t length, Where where) {
    foreign_code_may_run(where);
    // Not PyArray_New(): it copies the text dtype, and numpy 1.21 crashes if the copy cannot be allocated.
    PyArray_Descr* dtype = PyArray_DescrNewFromType(NPY_UNICODE);
    Ref owner = Ref::take(reinterpret_cast<PyObject*>(dtype), where);
    set_element_size(dtype, length * sizeof(std::uint32_t));
    const npy_intp shape = static_cast<npy_intp>(size);
    // PyArray_NewFromDescr() steals the reference to the dtype.
    static_cast<void>(owner.give());
    return Ref::take(PyArray_NewFromDescr(&PyArray_Type, dtype, 1, &shape, nullptr, nullptr, 0, nullptr), where);
}

Ref new_objects(std::span<const npy_intp> shape, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyArray_SimpleNew(static_cast<int>(shape.size()), shape.data(), NPY_OBJECT), where);
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
