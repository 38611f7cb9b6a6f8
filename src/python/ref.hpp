// References to Python objects.
//
// `Object` is a borrowed reference. `Ref` owns one; it is the only class that changes reference counts. A function that
// can fail throws PythonError (python/errors.hpp) with the line of its caller.
#pragma once

#include "python/interpreter.hpp"

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <utility>

namespace quorin {

class Ref;
struct Operand;
struct Keyword;

// An interned text, kept until the process ends. Written "ndim"_py.
struct Name {
    PyObject* text;
};

// A name and the line that uses it, for the traceback of a failed look-up.
struct At {
    Name name;
    Where where;
    At(Name used, Where line = Where::current()) noexcept : name(used), where(line) {}
};

using Positional = std::initializer_list<Operand>;
using Keywords = std::initializer_list<Keyword>;

class Object {
  public:
    constexpr Object() noexcept = default;
    constexpr Object(PyObject* borrowed) noexcept : pointer_(borrowed) {}
    Object(PyTypeObject* type) noexcept : pointer_(reinterpret_cast<PyObject*>(type)) {}

    [[nodiscard]] PyObject* get() const noexcept { return pointer_; }
    explicit operator bool() const noexcept { return pointer_ != nullptr; }
    [[nodiscard]] bool is(Object other) const noexcept { return pointer_ == other.pointer_; }
    [[nodiscard]] bool is_none() const noexcept { return pointer_ == Py_None; }

    [[nodiscard]] Ref attr(At name) const;
    // X.attr("reshape"_py)({-1}) looks the method up before it evaluates the arguments, as Python does.
    Ref operator()(Positional positional = {}, Keywords keywords = {}, Where where = Where::current()) const;

  protected:
    PyObject* pointer_ = nullptr;
};

class Ref : public Object {
  public:
    constexpr Ref() noexcept = default;
    Ref(Ref&& other) noexcept : Object(std::exchange(other.pointer_, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept {
        // The old object is released last, because its finalizer may read this reference.
        PyObject* old = std::exchange(pointer_, std::exchange(other.pointer_, nullptr));
        Py_XDECREF(old);
        return *this;
    }
    Ref(const Ref&) = delete;
    Ref& operator=(const Ref&) = delete;
    ~Ref() { Py_XDECREF(pointer_); }

    // Takes over the new reference that a call returned. Throws PythonError if it is null.
    static Ref take(PyObject* fresh, Where where = Where::current()) {
        if (fresh == nullptr) failed(where);
        return Ref(fresh);
    }
    // Takes over a reference. For calls in which null is not a failure.
    static Ref adopt(PyObject* owned) noexcept { return Ref(owned); }
    // Adds a reference to a borrowed object.
    static Ref share(Object borrowed) noexcept {
        Py_XINCREF(borrowed.get());
        return Ref(borrowed.get());
    }
    static Ref none() noexcept { return share(Py_None); }
    static Ref truth(bool value) noexcept { return share(value ? Py_True : Py_False); }

    // Releases ownership to the caller.
    [[nodiscard]] PyObject* give() noexcept { return std::exchange(pointer_, nullptr); }

  private:
    explicit Ref(PyObject* owned) noexcept : Object(owned) {}
    [[noreturn]] static void failed(Where where);
};

// An argument of a call or of an operator: an object, a text or a C++ number.
struct Operand {
    Ref owned;
    Object object;
    Operand(Object view) noexcept : object(view) {}
    Operand(PyObject* view) noexcept : object(view) {}
    Operand(const Ref& view) noexcept : object(view) {}
    Operand(Ref&& value) noexcept : owned(std::move(value)), object(owned) {}
    Operand(Name text) noexcept : object(text.text) {}
    Operand(PyTypeObject* type) noexcept : object(type) {}
    // Exactly a bool, since a pointer converts to bool as well.
    Operand(std::same_as<bool> auto value) noexcept : object(value ? Py_True : Py_False) {}
    Operand(int value) : Operand(static_cast<Py_ssize_t>(value)) {}
    Operand(Py_ssize_t value) : owned(Ref::take(PyLong_FromSsize_t(value))), object(owned) {}
    Operand(double value) : owned(Ref::take(PyFloat_FromDouble(value))), object(owned) {}
};

struct Keyword {
    Name name;
    Operand value;
};

template <std::size_t N>
struct Literal {
    char text[N]{};
    consteval Literal(const char (&literal)[N]) {
        for (std::size_t i = 0; i < N; ++i) text[i] = literal[i];
    }
};

PyObject* intern(const char* text);

// Interns the text at the first use; later uses cost a guarded load.
template <Literal Text>
Name name_of() {
    static PyObject* const interned = intern(Text.text);
    return Name{interned};
}

template <Literal Text>
Name operator""_py() {
    return name_of<Text>();
}

}  // namespace quorin
