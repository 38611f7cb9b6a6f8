#include "python/operations.hpp"

#include "python/borrow.hpp"
#include "python/errors.hpp"

#include <vector>

namespace quorin {

namespace {

// The arguments of one call are contiguous, on the stack.
constexpr std::size_t most_arguments = 8;

Ref call_with(PyObject* callee, Positional positional, Keywords keywords, Where where) {
    foreign_code_may_run(where);
    if (positional.size() + keywords.size() > most_arguments) {
        fail(PyExc_SystemError, Format("more arguments than a call inside the module can carry", where));
    }
    std::array<PyObject*, most_arguments> arguments{};
    std::size_t filled = 0;
    for (const Operand& argument : positional) arguments[filled++] = argument.object.get();
    Ref names;
    if (keywords.size() != 0) {
        names = Ref::take(PyTuple_New(static_cast<Py_ssize_t>(keywords.size())), where);
        Py_ssize_t position = 0;
        for (const Keyword& keyword : keywords) {
            PyTuple_SET_ITEM(names.get(), position++, Ref::share(keyword.name.text).give());
            arguments[filled++] = keyword.value.object.get();
        }
    }
    return Ref::take(vectorcall(callee, arguments.data(), positional.size(), names.get()), where);
}

// For functions that return -1 if they fail, and otherwise 0 or 1.
bool checked(int result, Where where) {
    if (result < 0) throw PythonError(where);
    return result != 0;
}

}  // namespace

PyObject* intern(const char* text) {
    PyObject* interned = PyUnicode_InternFromString(text);
    if (interned == nullptr) throw PythonError(Where::current());
    return interned;
}

Ref Object::attr(At name) const {
    foreign_code_may_run(name.where);
    return Ref::take(PyObject_GetAttr(pointer_, name.name.text), name.where);
}

Ref Object::operator()(Positional positional, Keywords keywords, Where where) const {
    return call_with(pointer_, positional, keywords, where);
}

bool truth(Object value, Where where) {
    foreign_code_may_run(where);
    return checked(PyObject_IsTrue(value.get()), where);
}

Ref compare(const Operand& left, int operation, const Operand& right, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyObject_RichCompare(left.object.get(), right.object.get(), operation), where);
}

bool equal(const Operand& left, const Operand& right, Where where) {
    return truth(compare(left, Py_EQ, right, where), where);
}

bool less(const Operand& left, const Operand& right, Where where) {
    return truth(compare(left, Py_LT, right, where), where);
}

bool greater(const Operand& left, const Operand& right, Where where) {
    return truth(compare(left, Py_GT, right, where), where);
}

Ref add(const Operand& left, const Operand& right, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_Add(left.object.get(), right.object.get()), where);
}

Ref subtract(const Operand& left, const Operand& right, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_Subtract(left.object.get(), right.object.get()), where);
}

Ref multiply(const Operand& left, const Operand& right, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_Multiply(left.object.get(), right.object.get()), where);
}

Ref absolute(const Operand& value, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_Absolute(value.object.get()), where);
}

Ref add_in_place(const Operand& left, const Operand& right, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_InPlaceAdd(left.object.get(), right.object.get()), where);
}

Ref either(const Operand& left, const Operand& right, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_Or(left.object.get(), right.object.get()), where);
}

Ref inverted(const Operand& value, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyNumber_Invert(value.object.get()), where);
}

Ref item(Object container, const Operand& key, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyObject_GetItem(container.get(), key.object.get()), where);
}

void set_item(Object container, const Operand& key, const Operand& value, Where where) {
    foreign_code_may_run(where);
    checked(PyObject_SetItem(container.get(), key.object.get(), value.object.get()), where);
}

void set_attr(Object owner, At name, const Operand& value) {
    foreign_code_may_run(name.where);
    checked(PyObject_SetAttr(owner.get(), name.name.text, value.object.get()), name.where);
}

bool contains(Object container, const Operand& value, Where where) {
    foreign_code_may_run(where);
    return checked(PySequence_Contains(container.get(), value.object.get()), where);
}

Py_ssize_t length(Object value, Where where) {
    foreign_code_may_run(where);
    const Py_ssize_t size = PyObject_Size(value.get());
    if (size < 0) throw PythonError(where);
    return size;
}

Py_ssize_t count(Object number, Where where) {
    foreign_code_may_run(where);
    const Ref index = Ref::take(PyNumber_Index(number.get()), where);
    const Py_ssize_t value = PyLong_AsSsize_t(index.get());
    if (value == -1 && PyErr_Occurred() != nullptr) throw PythonError(where);
    return value;
}

bool is_instance(Object value, Object type, Where where) {
    foreign_code_may_run(where);
    return checked(PyObject_IsInstance(value.get(), type.get()), where);
}

bool is_text(Object value, Where where) {
    return is_instance(value, &PyUnicode_Type, where);
}

Ref text_of(Object value, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyObject_Str(value.get()), where);
}

Ref concat(Positional texts, Where where) {
    Ref whole_text;
    for (const Operand& text : texts) {
        whole_text = whole_text ? Ref::take(PyUnicode_Concat(whole_text.get(), text.object.get()), where)
                                : Ref::share(text.object);
    }
    return whole_text;
}

Ref tuple(Positional items, Where where) {
    foreign_code_may_run(where);
    Ref made = Ref::take(PyTuple_New(static_cast<Py_ssize_t>(items.size())), where);
    Py_ssize_t position = 0;
    for (const Operand& value : items) PyTuple_SET_ITEM(made.get(), position++, Ref::share(value.object).give());
    return made;
}

Ref list(Positional items, Where where) {
    foreign_code_may_run(where);
    Ref made = Ref::take(PyList_New(static_cast<Py_ssize_t>(items.size())), where);
    Py_ssize_t position = 0;
    for (const Operand& value : items) PyList_SET_ITEM(made.get(), position++, Ref::share(value.object).give());
    return made;
}

Ref list_holding(std::span<Ref> items, Where where) {
    foreign_code_may_run(where);
    Ref made = Ref::take(PyList_New(static_cast<Py_ssize_t>(items.size())), where);
    Py_ssize_t position = 0;
    for (Ref& value : items) PyList_SET_ITEM(made.get(), position++, value.give());
    return made;
}

Ref untracked_pair(Ref first, Ref second, Where where) {
    foreign_code_may_run(where);
    Ref made = Ref::take(PyTuple_New(2), where);
    PyTuple_SET_ITEM(made.get(), 0, first.give());
    PyTuple_SET_ITEM(made.get(), 1, second.give());
    PyObject_GC_UnTrack(made.get());
    return made;
}

ListUnderConstruction::ListUnderConstruction(std::size_t size, Where where) {
    foreign_code_may_run(where);
    list_ = Ref::take(PyList_New(static_cast<Py_ssize_t>(size)), where);
    PyObject_GC_UnTrack(list_.get());
}

Ref dictionary(Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyDict_New(), where);
}

Ref or_new_list(Object value) {
    return value.is_none() ? list({}) : Ref::share(value);
}

Ref list_of(Object iterable, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PySequence_List(iterable.get()), where);
}

Ref set_of(Object iterable, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PySet_New(iterable.get()), where);
}

Ref slice(const Operand& start, const Operand& stop, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PySlice_New(start.object.get(), stop.object.get(), nullptr), where);
}

Ref whole(Py_ssize_t value, Where where) {
    return Ref::take(PyLong_FromSsize_t(value), where);
}

void append(Object list, Object value, Where where) {
    foreign_code_may_run(where);
    checked(PyList_Append(list.get(), value.get()), where);
}

Ref iterate(Object iterable, Where where) {
    foreign_code_may_run(where);
    return Ref::take(PyObject_GetIter(iterable.get()), where);
}

Ref next(Object iterator, Where where) {
    foreign_code_may_run(where);
    Ref value = Ref::adopt(PyIter_Next(iterator.get()));
    if (!value && PyErr_Occurred() != nullptr) throw PythonError(where);
    return value;
}

void unpack_into(Ref* targets, Py_ssize_t expected, Object value, Where where) {
    foreign_code_may_run(where);
    if (Py_TYPE(value.get())->tp_iter == nullptr && PySequence_Check(value.get()) == 0) {
        fail(PyExc_TypeError, Format("cannot unpack non-iterable %.200s object", where), Py_TYPE(value.get())->tp_name);
    }
    const Ref iterator = iterate(value, where);
    for (Py_ssize_t got = 0; got < expected; ++got) {
        targets[got] = next(iterator, where);
        if (!targets[got]) {
            fail(PyExc_ValueError, Format("not enough values to unpack (expected %zd, got %zd)", where), expected, got);
        }
    }
    if (next(iterator, where)) {
        fail(PyExc_ValueError, Format("too many values to unpack (expected %zd)", where), expected);
    }
}

}  // namespace quorin
