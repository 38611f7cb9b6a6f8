// Errors between C++ and the interpreter. A failing call throws PythonError; behind_wall() turns it back into the
// interpreter's null and adds an entry to the traceback.
#pragma once

#include "python/ref.hpp"

#include <exception>
#include <new>
#include <stdexcept>

namespace quorin {

// Sets SystemError, with the interpreter's message, if no exception is set. A C function may fail without setting one
// (numpy does if memory runs out), and CPython crashes if a traceback entry is added while no exception is set.
void require_exception() noexcept;

// A call failed. Invariant: while a PythonError is in flight, the interpreter's error indicator is set.
class PythonError {
  public:
    // `where` is the line of the call that failed.
    explicit PythonError(Where where) noexcept : where_(where) { require_exception(); }
    [[nodiscard]] Where where() const noexcept { return where_; }
    [[nodiscard]] static bool matches(PyObject* type) noexcept { return PyErr_ExceptionMatches(type) != 0; }

  private:
    Where where_;
};

struct Format {
    const char* text;
    Where where;
    Format(const char* format, Where line = Where::current()) noexcept : text(format), where(line) {}
};

// Raises an exception: fail(PyExc_NameError, "name '%U' is not defined", name). The format takes exact texts and
// numbers only (%U, %s, %zd), so that no foreign code runs.
template <class... Parts>
[[noreturn]] void fail(PyObject* type, Format format, Parts... parts) {
    PyErr_Format(type, format.text, parts...);
    throw PythonError(format.where);
}

// Raises an existing exception object.
[[noreturn]] void raise(Object exception, Where where = Where::current());

// Adds the entry "File <C++ file>, line <line>, in <routine>" to the traceback of the pending error.
void add_traceback(const char* routine, Where where) noexcept;

// An except block: while this is alive, the interpreter treats the exception as being handled, so an exception raised
// meanwhile has it as its context.
class Handling {
  public:
    // Takes over the error that is set and adds a traceback entry for `routine`.
    Handling(const PythonError& error, const char* routine);
    ~Handling();
    Handling(const Handling&) = delete;
    Handling& operator=(const Handling&) = delete;
    Handling(Handling&&) = delete;
    Handling& operator=(Handling&&) = delete;

    [[nodiscard]] Object exception() const noexcept { return exception_; }

  private:
    Ref exception_;
    PyObject* outer_type_ = nullptr;
    PyObject* outer_value_ = nullptr;
    PyObject* outer_traceback_ = nullptr;
};

// Counts one level of recursion. Foreign code that a routine runs may call the routine again, through a replaced name
// or an operator of a class, without limit.
class RecursionGuard {
  public:
    explicit RecursionGuard(Where where = Where::current()) {
        if (Py_EnterRecursiveCall(" while calling a Python object") != 0) throw PythonError(where);
#if PY_VERSION_HEX >= 0x030C0000
        // From 3.12 on the limit for C code is about ten times higher, which is too deep for our stack frames.
        if (++depth_ > Py_GetRecursionLimit()) {
            leave();
            fail(PyExc_RecursionError, Format("maximum recursion depth exceeded while calling a Python object", where));
        }
#endif
    }
    ~RecursionGuard() { leave(); }
    RecursionGuard(const RecursionGuard&) = delete;
    RecursionGuard& operator=(const RecursionGuard&) = delete;
    RecursionGuard(RecursionGuard&&) = delete;
    RecursionGuard& operator=(RecursionGuard&&) = delete;

  private:
    static void leave() noexcept {
        Py_LeaveRecursiveCall();
#if PY_VERSION_HEX >= 0x030C0000
        --depth_;
    }
    static inline thread_local int depth_ = 0;
#else
    }
#endif
};

// The boundary between C++ exceptions and the interpreter. Returns the result of `body`, a Ref, or null with an
// exception set. A BorrowViolation becomes SystemError.
template <class Body>
PyObject* behind_wall(const char* routine, Body&& body) noexcept {
    try {
        return body().give();
    } catch (const PythonError& error) {
        add_traceback(routine, error.where());
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
        add_traceback(routine, Where::current());
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_SystemError, error.what());
        add_traceback(routine, Where::current());
    }
    return nullptr;
}

}  // namespace quorin
