// Errors between C++ and the interpreter: a failing call throws, one wall turns the throw back into the
// interpreter's null, and every wall that an exception passes leaves an entry in its traceback.
#pragma once

#include "python/ref.hpp"

#include <exception>
#include <new>
#include <stdexcept>

namespace quorin {

// Thrown while the interpreter's error indicator is set. Knows the line of the call that failed.
class PythonError {
  public:
    explicit PythonError(Where where) noexcept : where_(where) {}
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

// Raises in one line, with the culprit in it: fail(PyExc_NameError, "name '%U' is not defined", name).
template <class... Parts>
[[noreturn]] void fail(PyObject* type, Format format, Parts... parts) {
    PyErr_Format(type, format.text, parts...);
    throw PythonError(format.where);
}

// Raises an exception object that was made beforehand.
[[noreturn]] void raise(Object exception, Where where = Where::current());

// Adds the entry "File <C++ file>, line <line>, in <routine>" to the traceback of the pending error.
void add_traceback(const char* routine, Where where) noexcept;

// The exception that a routine handles. While this lives the interpreter counts it as being handled: whatever is
// raised meanwhile names it as its context, as inside an except block.
class Handling {
  public:
    // Takes the pending error over; `routine` gets its entry in the traceback, as in any caller it passed.
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

// Counts one level of nesting. Code that runs foreign code may meet itself again without end: through a replaced name
// or through a class that has a routine for one of its operators.
class RecursionGuard {
  public:
    explicit RecursionGuard(Where where = Where::current()) {
        if (Py_EnterRecursiveCall(" while calling a Python object") != 0) throw PythonError(where);
#if PY_VERSION_HEX >= 0x030C0000
        // These interpreters allow C code ten times the depth, for levels that are smaller than ours.
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

// The wall. Runs `body`, which gives a Ref, for the interpreter.
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

// What `make` gives, or nothing where that fails or takes more memory than there is: the interpreter route is asked
// then, and its complaint is the one to be heard.
template <class Make>
Ref unless_it_fails(Make make) {
    try {
        return make();
    } catch (const PythonError&) {
        PyErr_Clear();
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch)
    } catch (const std::length_error&) {  // NOLINT(bugprone-empty-catch)
    }
    return {};
}

}  // namespace quorin
