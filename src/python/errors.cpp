#include "python/errors.hpp"

#include "python/borrow.hpp"
#include "python/lifecycle.hpp"
#include "python/module_names.hpp"

#include <frameobject.h>

namespace quorin {

void require_exception() noexcept {
    if (PyErr_Occurred() == nullptr) PyErr_SetString(PyExc_SystemError, "error return without exception set");
}

void Ref::failed(Where where) {
    throw PythonError(where);
}

void raise(Object exception, Where where) {
    foreign_code_may_run(where);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(exception.get())), exception.get());
    throw PythonError(where);
}

void add_traceback(const char* routine, Where where) noexcept {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    const auto line = static_cast<int>(where.line());
    PyCodeObject* code = PyCode_NewEmpty(where.file_name(), routine, line);
    // The globals of the frame are visible in the traceback. They are empty before start-up, and in a second
    // interpreter, which must not see the objects of the first one.
    const Ref empty = Ref::adopt(PyDict_New());
    Object globals = empty;
    if (is_own_interpreter() && module_names()) globals = module_names();
    PyFrameObject* frame = nullptr;
    if (code != nullptr && empty) frame = PyFrame_New(PyThreadState_Get(), code, globals.get(), empty.get());
    // If the entry cannot be made, the error keeps its traceback without the entry.
    PyErr_Restore(type, value, traceback);
    if (frame != nullptr) {
#if PY_VERSION_HEX < 0x030B0000
        frame->f_lineno = line;
#endif
        PyTraceBack_Here(frame);
    }
    Ref::adopt(reinterpret_cast<PyObject*>(frame));
    Ref::adopt(reinterpret_cast<PyObject*>(code));
}

Handling::Handling(const PythonError& error, const char* routine) {
    foreign_code_may_run(error.where());
    add_traceback(routine, error.where());
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (traceback != nullptr) PyException_SetTraceback(value, traceback);
    exception_ = Ref::share(value);
    PyErr_GetExcInfo(&outer_type_, &outer_value_, &outer_traceback_);
    PyErr_SetExcInfo(type, value, traceback);
}

Handling::~Handling() {
    PyErr_SetExcInfo(outer_type_, outer_value_, outer_traceback_);
}

}  // namespace quorin
