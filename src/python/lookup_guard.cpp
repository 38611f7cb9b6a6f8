#include "python/lookup_guard.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "python/dictionary_changes.hpp"
#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/native_lookups.hpp"
#include "python/operations.hpp"

namespace quorin {

namespace {

// A name of a dictionary and the object that it was bound to; null if the dictionary did not hold it.
struct Entry {
    Ref name;
    Ref value;
    bool date_test;  // looked up for the date test only
};

struct Scope {
    WatchedDictionary dictionary;
    std::vector<Entry> entries;
};

// Never destroyed, as the module is not.
std::vector<Scope>& scopes() {
    static auto* const all = new std::vector<Scope>;
    return *all;
}

LookupState current;
bool own_date_test_is_pure = false;

bool any_changed() noexcept {
#if PY_VERSION_HEX >= 0x030C0000
    return WatchedDictionary::changed();
#else
    const std::vector<Scope>& all = scopes();
    return std::any_of(all.begin(), all.end(), [](const Scope& scope) { return scope.dictionary.changed(); });
#endif
}

LookupState look_up_all() noexcept {
    LookupState found{.unchanged = true, .date_test_unchanged = own_date_test_is_pure};
    for (const Scope& scope : scopes()) {
        for (const Entry& entry : scope.entries) {
            PyObject* held = PyDict_GetItemWithError(scope.dictionary.get(), entry.name.get());
            if (held == nullptr) PyErr_Clear();
            if (held == entry.value.get()) continue;
            found.date_test_unchanged = false;
            if (!entry.date_test) found.unchanged = false;
        }
    }
    return found;
}

Scope& scope_of(Object dictionary) {
    for (Scope& scope : scopes()) {
        if (scope.dictionary.get() == dictionary.get()) return scope;
    }
    scopes().push_back({WatchedDictionary(dictionary), {}});
    return scopes().back();
}

// Records and returns the object that a dictionary binds a name to; null if it does not hold the name.
PyObject* remember(Object dictionary, Object name, bool date_test) {
    PyObject* held = PyDict_GetItemWithError(dictionary.get(), name.get());
    if (held == nullptr && PyErr_Occurred() != nullptr) throw PythonError(Where::current());
    std::vector<Entry>& entries = scope_of(dictionary).entries;
    const bool known =
        std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.name.is(name); });
    if (!known) entries.push_back({Ref::share(name), Ref::share(held), date_test});
    return held;
}

// The dictionary of a class. vars() of a class is only a view of it.
Ref dictionary_of(PyTypeObject* type) {
#if PY_VERSION_HEX >= 0x030C0000
    return Ref::adopt(PyType_GetDict(type));
#else
    return Ref::share(type->tp_dict);
#endif
}

// The dictionaries in which an attribute of a module or of a class is searched, in this order. Empty for any other
// object.
std::vector<Ref> dictionaries_of(PyObject* owner) {
    std::vector<Ref> found;
    if (PyModule_Check(owner)) {
        found.push_back(Ref::share(PyModule_GetDict(owner)));
    } else if (PyType_Check(owner)) {
        PyObject* classes = reinterpret_cast<PyTypeObject*>(owner)->tp_mro;
        for (Py_ssize_t i = 0; classes != nullptr && i < PyTuple_GET_SIZE(classes); ++i) {
            PyObject* type = PyTuple_GET_ITEM(classes, i);
            if (PyType_Check(type)) found.push_back(dictionary_of(reinterpret_cast<PyTypeObject*>(type)));
        }
    }
    found.erase(std::remove_if(found.begin(), found.end(), [](const Ref& dictionary) { return !dictionary; }),
                found.end());
    return found;
}

// Whether a name is looked up for the date test only.
bool leads_to_date_test(std::string_view dotted) {
    return dotted == "FC" || dotted.starts_with("FC.") || dotted == "FCplus.is_column_string_in_datetime_format";
}

// Records every part of a dotted name. Returns false if a part cannot be watched: it is an attribute of an object that
// is neither a module nor a class, or of a name that is not bound. A last part that is not bound, such as np.float in
// numpy 2, is recorded as not bound.
bool remember_dotted(std::string_view dotted) {
    std::vector<Ref> dictionaries;
    dictionaries.push_back(Ref::share(module_names()));
    for (std::size_t start = 0; start <= dotted.size();) {
        const std::size_t end = std::min(dotted.find('.', start), dotted.size());
        if (dictionaries.empty()) return false;
        const std::string part(dotted.substr(start, end - start));
        const Ref name = Ref::take(PyUnicode_InternFromString(part.c_str()));
        PyObject* held = nullptr;
        for (const Ref& dictionary : dictionaries) {
            held = remember(dictionary, name, leads_to_date_test(dotted.substr(0, end)));
            if (held != nullptr) break;
        }
        if (end == dotted.size()) return true;
        dictionaries = held == nullptr ? std::vector<Ref>() : dictionaries_of(held);
        start = end + 1;
    }
    return true;
}

// The date test may call any method of its class.
void remember_date_tests_of(Object FC) {
    const Ref of_object = dictionary_of(&PyBaseObject_Type);
    for (const Ref& dictionary : dictionaries_of(FC.get())) {
        if (dictionary.is(of_object)) continue;
        const Ref names = Ref::take(PyDict_Keys(dictionary.get()));
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(names.get()); ++i) {
            PyObject* name = PyList_GET_ITEM(names.get(), i);
            if (!PyUnicode_Check(name)) continue;
            if (PyUnicode_Tailmatch(name, "__"_py.text, 0, PY_SSIZE_T_MAX, -1) != 1) remember(dictionary, name, true);
        }
    }
}

// Before version 3, pandas has an option that makes infinite numbers null. It stores it in this dictionary.
void remember_null_option() {
    const Ref module = Ref::adopt(PyImport_GetModule("pandas.core.dtypes.missing"_py.text));
    if (!module || !PyModule_Check(module.get())) {
        PyErr_Clear();
        return;
    }
    PyObject* dictionary = PyModule_GetDict(module.get());
    const Name name = "INF_AS_NA"_py;
    if (PyDict_Contains(dictionary, name.text) != 1) return;
    scope_of(dictionary).entries.push_back({Ref::share(name.text), Ref::truth(false), false});
}

// Whether FC declares that its date test has no side effects.
bool date_test_is_pure(Object FC) {
    for (const Ref& dictionary : dictionaries_of(FC.get())) {
        PyObject* declared = PyDict_GetItemWithError(dictionary.get(), "side_effect_free"_py.text);
        if (declared != nullptr) return contains(declared, "is_string_in_datetime_format"_py);
        PyErr_Clear();
    }
    return false;
}

bool all_watched() noexcept {
    const std::vector<Scope>& all = scopes();
    return std::all_of(all.begin(), all.end(), [](const Scope& scope) { return scope.dictionary.watched(); });
}

}  // namespace

void remember_lookups() {
    scopes().clear();
    current = {};
    const Ref FC = item(module_names(), "FC"_py);
    own_date_test_is_pure = date_test_is_pure(FC);
    bool complete = true;
    for (const std::string& dotted : all_native_lookups()) complete = remember_dotted(dotted) && complete;
    remember_date_tests_of(FC);
    remember_null_option();
    if (!complete || !all_watched()) {
        scopes().clear();
        return;
    }
    for (Scope& scope : scopes()) scope.dictionary.seen();
    current = look_up_all();
}

// Marks the dictionaries as seen before it looks the names up, because a look-up may call the `==` of a key, which may
// change a dictionary again.
LookupState lookup_state() noexcept {
    if (!scopes().empty() && any_changed()) {
        for (Scope& scope : scopes()) scope.dictionary.seen();
        current = look_up_all();
    }
    return current;
}

}  // namespace quorin
