#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/native_lookups.hpp"
#include "python/operations.hpp"
#include "python/routine_object.hpp"

#include <cstddef>

namespace quorin {

namespace {

PyObject* get_doc(PyObject* self, void* /*closure*/) {
    return PyUnicode_FromString(definition_of(self).doc);
}

PyObject* get_globals(PyObject* /*self*/, void* /*closure*/) {
    return Ref::share(module_names()).give();
}

// The default of a parameter, or null if it is required.
PyObject* default_of(PyObject* self, Py_ssize_t position) {
    const Routine* routine = routine_of(self);
    if (position < routine->required) return nullptr;
    return PyTuple_GET_ITEM(routine->defaults, position - routine->required);
}

// "(X, debug=False)". A single parameter is positional only.
PyObject* get_text_signature(PyObject* self, void* /*closure*/) {
    return behind_wall(definition_of(self).name, [&] {
        const Py_ssize_t parameters = PyTuple_GET_SIZE(routine_of(self)->names);
        Ref text = Ref::share("("_py.text);
        for (Py_ssize_t i = 0; i < parameters; ++i) {
            if (i > 0) text = concat({text, ", "_py});
            text = concat({text, Object(PyTuple_GET_ITEM(routine_of(self)->names, i))});
            if (PyObject* otherwise = default_of(self, i)) {
                text = concat({text, "="_py, Ref::take(PyObject_Repr(otherwise))});
            }
        }
        return concat({text, parameters == 1 ? ", /)"_py : ")"_py});
    });
}

PyObject* get_signature(PyObject* self, void* /*closure*/) {
    return behind_wall(definition_of(self).name, [&] {
        const Ref inspect = Ref::take(PyImport_ImportModule("inspect"));
        const Ref make_parameter = inspect.attr("Parameter"_py);
        const Ref empty = make_parameter.attr("empty"_py);
        const Object annotations = routine_of(self)->annotations;
        const Py_ssize_t size = PyTuple_GET_SIZE(routine_of(self)->names);
        const Ref kind = make_parameter.attr(size == 1 ? "POSITIONAL_ONLY"_py : "POSITIONAL_OR_KEYWORD"_py);
        const Ref parameters = list({});
        for (Py_ssize_t i = 0; i < size; ++i) {
            const Object name = PyTuple_GET_ITEM(routine_of(self)->names, i);
            PyObject* otherwise = default_of(self, i);
            append(parameters, make_parameter({name, kind},
                                              {{"default"_py, otherwise == nullptr ? Object(empty) : Object(otherwise)},
                                               {"annotation"_py, annotations.attr("get"_py)({name, empty})}}));
        }
        return inspect.attr("Signature"_py)(
            {parameters}, {{"return_annotation"_py, annotations.attr("get"_py)({"return"_py, empty})}});
    });
}

// A tuple of dotted names; empty for a routine without a native route. Tests replace each of these names and check that
// the routine then takes the interpreter route.
PyObject* get_native_lookups(PyObject* self, void* /*closure*/) {
    return behind_wall(definition_of(self).name, [&] {
        const Ref names = list({});
        for (const std::string& name : native_lookups(definition_of(self))) {
            append(names, Ref::take(PyUnicode_FromString(name.c_str())));
        }
        return Ref::take(PyList_AsTuple(names.get()));
    });
}

}  // namespace

PyMemberDef routine_members[] = {
    {"__name__", T_OBJECT, offsetof(Routine, name), READONLY, nullptr},
    {"__qualname__", T_OBJECT, offsetof(Routine, qualified), READONLY, nullptr},
    {"__module__", T_OBJECT, offsetof(Routine, module), READONLY, nullptr},
    {"__defaults__", T_OBJECT, offsetof(Routine, defaults), READONLY, nullptr},
    {"__annotations__", T_OBJECT, offsetof(Routine, annotations), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr},
};

PyGetSetDef routine_properties[] = {
    {"__doc__", get_doc, nullptr, nullptr, nullptr},
    {"__globals__", get_globals, nullptr, nullptr, nullptr},
    {"__signature__", get_signature, nullptr, nullptr, nullptr},
    {"_native_lookups", get_native_lookups, nullptr,
     "Names that the interpreter route looks up; if one is replaced, the native route is not taken.", nullptr},
    {"__text_signature__", get_text_signature, nullptr, nullptr, nullptr},
    {"__dict__", PyObject_GenericGetDict, PyObject_GenericSetDict, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

}  // namespace quorin
