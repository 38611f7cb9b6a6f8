#include "python/routine.hpp"

#include "python/binding.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/native_lookups.hpp"
#include "python/operations.hpp"
#include "python/routine_object.hpp"

#include <cstddef>

namespace quorin {

namespace {

Ref run_body(const Definition& definition, PyObject* const* arguments) {
    if (!definition.counts_nesting) return definition.body(arguments);
    const RecursionGuard guard;
    return definition.body(arguments);
}

// The common cases first: most calls have no keyword arguments.
Ref run(const Routine* self, PyObject* const* positional, Py_ssize_t given, GivenKeywords keywords) {
    const Definition& definition = *self->definition;
    const auto parameters = static_cast<Py_ssize_t>(definition.body.arity());
    if (given == parameters && keywords.size == 0) return run_body(definition, positional);
    if (parameters == 1) refuse_single(definition.name, given, keywords.size);
    PyObject* bound[most_parameters];
    if (given >= self->required && given < parameters && keywords.size == 0) {
        // Loops, because memcpy() is slower for at most 7 pointers.
        for (Py_ssize_t i = 0; i < given; ++i) bound[i] = positional[i];
        for (Py_ssize_t i = given; i < parameters; ++i) bound[i] = self->default_values[i - self->required];
    } else {
        bind({definition.name, parameters, self->required, self->names, self->defaults}, positional, given, keywords,
             bound);
    }
    return run_body(definition, bound);
}

#if PY_VERSION_HEX >= 0x03080000

PyObject* call(PyObject* self, PyObject* const* arguments, std::size_t positional, PyObject* names) {
    return behind_wall(definition_of(self).name, [&] {
        const Py_ssize_t given = PyVectorcall_NARGS(positional);
        GivenKeywords keywords;
        if (names != nullptr) {
            keywords = {&PyTuple_GET_ITEM(names, 0), arguments + given, PyTuple_GET_SIZE(names)};
        }
        return run(routine_of(self), arguments, given, keywords);
    });
}

#else

// CPython 3.7 passes the arguments to a tp_call as a tuple and a dictionary.
PyObject* call(PyObject* self, PyObject* arguments, PyObject* keyword_dict) {
    return behind_wall(definition_of(self).name, [&] {
        Ref names;
        Ref values;
        GivenKeywords keywords;
        if (keyword_dict != nullptr && PyDict_Size(keyword_dict) != 0) {
            names = Ref::take(PyDict_Keys(keyword_dict));
            values = Ref::take(PyDict_Values(keyword_dict));
            keywords = {&PyList_GET_ITEM(names.get(), 0), &PyList_GET_ITEM(values.get(), 0),
                        PyList_GET_SIZE(names.get())};
        }
        return run(routine_of(self), &PyTuple_GET_ITEM(arguments, 0), PyTuple_GET_SIZE(arguments), keywords);
    });
}

#endif

// A routine that is an attribute of a class becomes a method, as a function does.
PyObject* bind_to_instance(PyObject* self, PyObject* instance, PyObject* /*type*/) {
    if (instance == nullptr || instance == Py_None) return Ref::share(self).give();
    return PyMethod_New(self, instance);
}

PyObject* represent(PyObject* self) {
    return PyUnicode_FromFormat("<routine %U.%U>", routine_of(self)->module, routine_of(self)->qualified);
}

// A routine is pickled and copied by reference, under its qualified name.
PyObject* reduce(PyObject* self, PyObject* /*unused*/) {
    return Ref::share(routine_of(self)->qualified).give();
}

int traverse(PyObject* self, visitproc visit, void* arg) {
    Routine* routine = routine_of(self);
    Py_VISIT(routine->defaults);
    Py_VISIT(routine->annotations);
    Py_VISIT(routine->dict);
    return 0;
}

// Only `dict` is cleared: the other references are read until the object is destroyed, and garbage collection can break
// a cycle through them elsewhere.
int clear(PyObject* self) {
    Py_CLEAR(routine_of(self)->dict);
    return 0;
}

void destroy(PyObject* self) {
    PyObject_GC_UnTrack(self);
    Routine* routine = routine_of(self);
    if (routine->weak != nullptr) PyObject_ClearWeakRefs(self);
    clear(self);
    for (PyObject* owned : {routine->names, routine->defaults, routine->annotations, routine->name, routine->qualified,
                            routine->module}) {
        Ref::adopt(owned);
    }
    PyObject_GC_Del(self);
}

Ref value_of(const Default& otherwise) {
    switch (otherwise.kind) {
        case Default::Kind::truth:
            return Ref::truth(otherwise.whole != 0);
        case Default::Kind::whole:
            return whole(otherwise.whole);
        case Default::Kind::real:
            return Ref::take(PyFloat_FromDouble(otherwise.real));
        case Default::Kind::text:
            return Ref::take(PyUnicode_InternFromString(otherwise.text));
        case Default::Kind::none:
        case Default::Kind::required:
            break;
    }
    return Ref::none();
}

void annotate(Object annotations, const char* name, Annotation annotation) {
    Ref value;
    switch (annotation) {
        case Annotation::none:
            return;
        case Annotation::ndarray:
            value = global("np"_py).attr("ndarray"_py);
            break;
        case Annotation::boolean:
            value = Ref::share(&PyBool_Type);
            break;
        case Annotation::set_text:
            value = Ref::share("set"_py.text);
            break;
    }
    set_item(annotations, Ref::take(PyUnicode_InternFromString(name)), value);
}

PyMethodDef methods[] = {
    {"__reduce__", reduce, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyTypeObject routine_type{};

}  // namespace

void ready_routine_type() {
    PyTypeObject& type = routine_type;
    if (type.tp_name != nullptr) return;
    const PyVarObject head[] = {PyVarObject_HEAD_INIT(nullptr, 0)};
    type.ob_base = head[0];
    type.tp_name = "quorin_libs.utils.exportable_utils.routine";
    type.tp_doc = "A routine of the module.";
    type.tp_basicsize = sizeof(Routine);
    type.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC;
    type.tp_dealloc = destroy;
    type.tp_traverse = traverse;
    type.tp_clear = clear;
    type.tp_repr = represent;
    type.tp_descr_get = bind_to_instance;
    type.tp_members = routine_members;
    type.tp_getset = routine_properties;
    type.tp_methods = methods;
    type.tp_dictoffset = offsetof(Routine, dict);
    type.tp_weaklistoffset = offsetof(Routine, weak);
#if PY_VERSION_HEX >= 0x03090000
    type.tp_flags |= Py_TPFLAGS_HAVE_VECTORCALL | Py_TPFLAGS_METHOD_DESCRIPTOR;
#elif PY_VERSION_HEX >= 0x03080000
    type.tp_flags |= _Py_TPFLAGS_HAVE_VECTORCALL | Py_TPFLAGS_METHOD_DESCRIPTOR;
#endif
#if PY_VERSION_HEX >= 0x03080000
    type.tp_vectorcall_offset = offsetof(Routine, vectorcall);
    type.tp_call = PyVectorcall_Call;
#else
    type.tp_call = call;
#endif
    if (PyType_Ready(&type) < 0) throw PythonError(Where::current());
}

Ref make_routine(const Definition& definition, const char* owner) {
    if (definition.parameters.size() != definition.body.arity()) {
        fail(PyExc_SystemError, "%s: the body takes another number of parameters", definition.name);
    }
    Ref made = Ref::take(reinterpret_cast<PyObject*>(PyObject_GC_New(Routine, &routine_type)));
    Routine* self = routine_of(made.get());
    // destroy() runs if anything below fails, so every field is initialised first.
#if PY_VERSION_HEX >= 0x03080000
    self->vectorcall = call;
#endif
    self->definition = &definition;
    self->required = 0;
    self->names = self->defaults = self->annotations = nullptr;
    self->default_values = nullptr;
    self->name = self->qualified = self->module = self->dict = self->weak = nullptr;

    const Ref names = list({});
    const Ref defaults = list({});
    Ref annotations = Ref::take(PyDict_New());
    for (const Parameter& parameter : definition.parameters) {
        append(names, Ref::take(PyUnicode_InternFromString(parameter.name)));
        annotate(annotations, parameter.name, parameter.annotation);
        if (parameter.otherwise.kind == Default::Kind::required) {
            ++self->required;
        } else {
            append(defaults, value_of(parameter.otherwise));
        }
    }
    annotate(annotations, "return", definition.returns);
    self->names = Ref::take(PyList_AsTuple(names.get())).give();
    self->defaults = length(defaults) == 0 ? Ref::none().give() : Ref::take(PyList_AsTuple(defaults.get())).give();
    if (length(defaults) != 0) self->default_values = &PyTuple_GET_ITEM(self->defaults, 0);
    self->annotations = annotations.give();
    self->name = Ref::take(PyUnicode_InternFromString(definition.name)).give();
    self->qualified = owner == nullptr ? Ref::share(self->name).give()
                                       : Ref::take(PyUnicode_FromFormat("%s.%U", owner, self->name)).give();
    self->module = item(module_names(), "__name__"_py).give();
    const char* qualified = PyUnicode_AsUTF8(self->qualified);
    if (qualified == nullptr) throw PythonError(Where::current());
    register_routine(qualified, definition);
    // Tracked last: gc.get_objects() must not return an incomplete routine.
    PyObject_GC_Track(made.get());
    return made;
}

}  // namespace quorin
