#include "python/module_names.hpp"

#include "python/borrow.hpp"
#include "python/errors.hpp"
#include "python/operations.hpp"

namespace quorin {

namespace {

PyObject* names = nullptr;

// Returns a borrowed reference, or null without an error set.
PyObject* look_up(PyObject* dictionary, At name) {
    PyObject* found = PyDict_GetItemWithError(dictionary, name.name.text);
    if (found == nullptr && PyErr_Occurred() != nullptr) throw PythonError(name.where);
    return found;
}

// Built-in names come from the module's own `__builtins__`, as in a Python function, not from the caller's.
PyObject* look_up_builtin(At name) {
    PyObject* builtins = look_up(names, At("__builtins__"_py, name.where));
    if (builtins == nullptr) return nullptr;
    return look_up(PyModule_Check(builtins) ? PyModule_GetDict(builtins) : builtins, name);
}

// Since CPython 3.10 the exception holds the name.
[[noreturn]] void fail_unknown(At name) {
    const Ref message = Ref::take(PyUnicode_FromFormat("name '%U' is not defined", name.name.text));
    const Ref exception = Object(PyExc_NameError)({message});
#if PY_VERSION_HEX >= 0x030A0000
    if (PyObject_SetAttrString(exception.get(), "name", name.name.text) < 0) throw PythonError(name.where);
#endif
    raise(exception, name.where);
}

}  // namespace

Object module_names() noexcept {
    return names;
}

void use_module_names(Object dictionary) noexcept {
    const Ref old = Ref::adopt(std::exchange(names, Ref::share(dictionary).give()));
}

Ref global(At name) {
    foreign_code_may_run(name.where);
    PyObject* found = look_up(names, name);
    if (found == nullptr) found = look_up_builtin(name);
    if (found == nullptr) fail_unknown(name);
    return Ref::share(found);
}

void print(const Operand& what, Where where) {
    global(At("print"_py, where))({what.object}, {}, where);
}

Ref now(Where where) {
    return global(At("time"_py, where)).attr(At("time"_py, where))();
}

void fail_unbound(Name variable, Where where) {
    fail(PyExc_UnboundLocalError, Format("local variable '%U' referenced before assignment", where), variable.text);
}

Object Local::get(Where where) const {
    if (!value_) fail_unbound(name_, where);
    return value_;
}

}  // namespace quorin
