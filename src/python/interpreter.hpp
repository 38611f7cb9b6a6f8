// Python.h, and wrappers for the functions that differ between versions of the interpreter.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstdint>
#include <source_location>

namespace quorin {

using Where = std::source_location;

// `names` is a tuple of keyword names; the keyword values follow the positional arguments in `arguments`.
inline PyObject* vectorcall(PyObject* callee, PyObject* const* arguments, std::size_t positional, PyObject* names) {
#if PY_VERSION_HEX >= 0x03090000
    return PyObject_Vectorcall(callee, arguments, positional, names);
#elif PY_VERSION_HEX >= 0x03080000
    return _PyObject_Vectorcall(callee, arguments, positional, names);
#else
    return _PyObject_FastCallKeywords(callee, arguments, static_cast<Py_ssize_t>(positional), names);
#endif
}

// The running interpreter's number, unique in the process; -1 with an error set if it fails.
inline std::int64_t running_interpreter() {
#if PY_VERSION_HEX >= 0x03090000
    return PyInterpreterState_GetID(PyInterpreterState_Get());
#else
    return PyInterpreterState_GetID(PyThreadState_Get()->interp);
#endif
}

// An int of unsigned big-endian bytes; null with an error set if it fails.
inline PyObject* whole_from_bytes(const unsigned char* bytes, std::size_t size) {
#if PY_VERSION_HEX >= 0x030D0000
    return PyLong_FromUnsignedNativeBytes(bytes, size, Py_ASNATIVEBYTES_BIG_ENDIAN);
#else
    return _PyLong_FromByteArray(bytes, size, 0, 0);
#endif
}

// The contiguous characters of a text.
struct Characters {
    const void* data = nullptr;  // null with an error set if PyUnicode_READY() fails (before CPython 3.12)
    Py_ssize_t length = 0;
    int width = 0;  // bytes per character
};

// The interpreter's macros expand to C casts.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#if PY_VERSION_HEX < 0x030C0000
inline bool is_ready_text(PyObject* text) {
    return PyUnicode_IS_READY(text) != 0;
}
#endif
inline Characters characters_of(PyObject* text) {
#if PY_VERSION_HEX < 0x030C0000
    if (PyUnicode_READY(text) < 0) return {};
#endif
    return {PyUnicode_DATA(text), PyUnicode_GET_LENGTH(text), static_cast<int>(PyUnicode_KIND(text))};
}
#pragma GCC diagnostic pop

}  // namespace quorin
