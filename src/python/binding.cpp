#include "python/binding.hpp"

#include "python/errors.hpp"

namespace quorin {

namespace {

[[noreturn]] void wrong_number(const Signature& signature, Py_ssize_t given) {
    const bool too_few = given < signature.required;
    const Py_ssize_t expected = too_few ? signature.required : signature.parameters;
    const char* bound = too_few ? "at least" : "at most";
    if (signature.required == signature.parameters) bound = "exactly";
    fail(PyExc_TypeError, "%.200s() takes %.8s %zd positional argument%.1s (%zd given)", signature.name, bound,
         expected, expected == 1 ? "" : "s", given);
}

// The index of the parameter, or -1. Keyword names are interned in almost all calls, so identity is compared first.
Py_ssize_t position_of(const Signature& signature, PyObject* name) {
    for (Py_ssize_t i = 0; i < signature.parameters; ++i) {
        if (PyTuple_GET_ITEM(signature.names, i) == name) return i;
    }
    for (Py_ssize_t i = 0; i < signature.parameters; ++i) {
        const int order = PyUnicode_Compare(PyTuple_GET_ITEM(signature.names, i), name);
        if (order == -1 && PyErr_Occurred() != nullptr) throw PythonError(Where::current());
        if (order == 0) return i;
    }
    return -1;
}

void check_texts(GivenKeywords keywords) {
    for (Py_ssize_t k = 0; k < keywords.size; ++k) {
        if (!PyUnicode_Check(keywords.names[k])) fail(PyExc_TypeError, "keywords must be strings");
    }
}

void check_required(const Signature& signature, Py_ssize_t given, PyObject* const* bound) {
    for (Py_ssize_t i = given; i < signature.required; ++i) {
        if (bound[i] == nullptr) wrong_number(signature, i);
    }
}

}  // namespace

void bind(const Signature& signature, PyObject* const* positional, Py_ssize_t given, GivenKeywords keywords,
          PyObject** bound) {
    check_texts(keywords);
    if (given > signature.parameters) wrong_number(signature, given);
    for (Py_ssize_t i = 0; i < given; ++i) bound[i] = positional[i];
    for (Py_ssize_t i = given; i < signature.parameters; ++i) bound[i] = nullptr;

    // A missing argument is reported before a wrong keyword.
    PyObject* wrong = nullptr;
    bool twice = false;
    for (Py_ssize_t k = 0; k < keywords.size; ++k) {
        const Py_ssize_t i = position_of(signature, keywords.names[k]);
        if (i >= given) {
            bound[i] = keywords.values[k];
        } else if (wrong == nullptr) {
            wrong = keywords.names[k];
            twice = i >= 0;
        }
    }
    check_required(signature, given, bound);
    if (wrong != nullptr) {
        fail(PyExc_TypeError,
             twice ? "%.200s() got multiple values for keyword argument '%U'"
                   : "%.200s() got an unexpected keyword argument '%U'",
             signature.name, wrong);
    }
    for (Py_ssize_t i = signature.required; i < signature.parameters; ++i) {
        if (bound[i] == nullptr) bound[i] = PyTuple_GET_ITEM(signature.defaults, i - signature.required);
    }
}

void refuse_single(const char* name, Py_ssize_t given, Py_ssize_t keywords) {
    if (keywords != 0) fail(PyExc_TypeError, "%.200s() takes no keyword arguments", name);
    fail(PyExc_TypeError, "%.200s() takes exactly one argument (%zd given)", name, given);
}

}  // namespace quorin
