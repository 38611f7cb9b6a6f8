#include "python/lookup_guard.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"
#include "python/routine.hpp"

namespace quorin {

namespace {

// One dictionary and what some of its names stood for; null for a name that was not there.
struct Scope {
    struct Entry {
        PyObject* name;
        PyObject* value;
        bool date_test;  // on the way to the date test, and to nothing else that a native route stands in for
    };
    PyObject* dictionary;
    std::vector<Entry> entries;
#if PY_VERSION_HEX < 0x030C0000
    std::uint64_t version = 0;
#endif
};

// Lives as long as the process, as the objects it names do.
std::vector<Scope>& scopes() {
    static auto* const all = new std::vector<Scope>;
    return *all;
}

struct InPlace {
    bool date_test = false;
    bool others = false;
};
InPlace in_place;
bool own_date_test_is_pure = false;
bool watched = true;  // every dictionary; without that nobody knows what still stands

// Interpreters before 3.12 count the changes of every dictionary; later ones tell whoever watches it.
#if PY_VERSION_HEX < 0x030C0000

std::uint64_t version_of(PyObject* dictionary) noexcept {
    return reinterpret_cast<PyDictObject*>(dictionary)->ma_version_tag;
}

bool changed() noexcept {
    for (const Scope& scope : scopes()) {
        if (version_of(scope.dictionary) != scope.version) return true;
    }
    return false;
}

void settle() noexcept {
    for (Scope& scope : scopes()) scope.version = version_of(scope.dictionary);
}

bool watch(PyObject* /*dictionary*/) noexcept {
    return true;
}

#else

bool something_changed = true;

int on_change(PyDict_WatchEvent /*event*/, PyObject* /*dictionary*/, PyObject* /*key*/, PyObject* /*value*/) {
    something_changed = true;
    return 0;
}

bool changed() noexcept {
    return something_changed;
}

void settle() noexcept {
    something_changed = false;
}

// There are few watchers for all modules together.
bool watch(PyObject* dictionary) noexcept {
    static int watcher = -1;
    if (watcher < 0) watcher = PyDict_AddWatcher(on_change);
    if (watcher >= 0 && PyDict_Watch(watcher, dictionary) == 0) return true;
    PyErr_Clear();
    return false;
}

#endif

InPlace look_everything_up() noexcept {
    InPlace found{own_date_test_is_pure, true};
    for (const Scope& scope : scopes()) {
        for (const Scope::Entry& entry : scope.entries) {
            PyObject* held = PyDict_GetItemWithError(scope.dictionary, entry.name);
            if (held == nullptr) PyErr_Clear();
            if (held != entry.value) (entry.date_test ? found.date_test : found.others) = false;
        }
    }
    return found;
}

void look_again() noexcept {
    if (scopes().empty() || !changed()) return;
    in_place = look_everything_up();
    settle();
}

// The dictionary that the attributes of a module or of a class are looked up in; null for any other object.
PyObject* members_of(PyObject* owner) noexcept {
    if (PyModule_Check(owner)) return PyModule_GetDict(owner);
    // vars() of a class would be a view of it.
    return PyType_Check(owner) ? reinterpret_cast<PyTypeObject*>(owner)->tp_dict : nullptr;
}

Scope& scope_of(PyObject* dictionary) {
    for (Scope& scope : scopes()) {
        if (scope.dictionary == dictionary) return scope;
    }
    scopes().push_back({Ref::share(dictionary).give(), {}});
    watched = watch(dictionary) && watched;
    return scopes().back();
}

// Remembers what the name stands for, and returns it: null if it is not there.
PyObject* remember(PyObject* dictionary, Object name, bool date_test) {
    PyObject* held = PyDict_GetItemWithError(dictionary, name.get());
    if (held == nullptr && PyErr_Occurred() != nullptr) throw PythonError(Where::current());
    std::vector<Scope::Entry>& entries = scope_of(dictionary).entries;
    const bool known = std::any_of(entries.begin(), entries.end(),
                                   [&](const Scope::Entry& entry) { return entry.name == name.get(); });
    if (!known) entries.push_back({Ref::share(name).give(), Ref::share(held).give(), date_test});
    return held;
}

// The names on the way to the date test, and to nothing else that a native route stands in for.
bool leads_to_date_test(std::string_view dotted) {
    return dotted == "FC" || dotted.substr(0, 3) == "FC." || dotted == "FCplus.is_column_string_in_datetime_format";
}

// Every part of a dotted name, from the module's namespace on. False if a part is looked up in an object that is
// neither a module nor a class, whose changes cannot be seen.
bool remember_dotted(std::string_view dotted) {
    PyObject* dictionary = module_names().get();
    for (std::size_t end = 0; end != std::string_view::npos;) {
        const std::size_t start = end == 0 ? 0 : end + 1;
        end = dotted.find('.', start);
        const std::string part(dotted.substr(start, end - start));
        const Ref name = Ref::take(PyUnicode_InternFromString(part.c_str()));
        PyObject* held = remember(dictionary, name, leads_to_date_test(dotted.substr(0, end)));
        if (end == std::string_view::npos) return true;
        dictionary = held == nullptr ? nullptr : members_of(held);
        if (dictionary == nullptr) return false;
    }
    return true;
}

// The date test may call any method of its class.
void remember_date_tests_of(PyObject* FC) {
    PyObject* name = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    PyObject* dictionary = members_of(FC);
    while (dictionary != nullptr && PyDict_Next(dictionary, &position, &name, &value) != 0) {
        if (!truth(Object(name).attr("startswith"_py)({"__"_py}))) remember(dictionary, name, true);
    }
}

// pandas before 3 has an option by which infinite numbers are null, too, and notes it where pd.isnull() looks.
void remember_null_option() {
    const Ref module = Ref::adopt(PyImport_GetModule("pandas.core.dtypes.missing"_py.text));
    if (!module || !PyModule_Check(module.get())) {
        PyErr_Clear();
        return;
    }
    PyObject* dictionary = PyModule_GetDict(module.get());
    const Name name = "INF_AS_NA"_py;
    if (PyDict_Contains(dictionary, name.text) != 1) return;
    scope_of(dictionary).entries.push_back({name.text, Py_False, false});
}

// Whether FC says that its date test has no effect but its answer, so that nobody can tell whether it was asked.
bool date_test_is_pure(Object FC) {
    if (!PyType_Check(FC.get())) return false;
    PyObject* declared = PyDict_GetItemWithError(members_of(FC.get()), "side_effect_free"_py.text);
    if (declared == nullptr) return false;
    return contains(declared, "is_string_in_datetime_format"_py);
}

}  // namespace

void remember_lookups() {
    scopes().clear();
    in_place = {};
    watched = true;
    const Ref FC = item(module_names(), "FC"_py);
    own_date_test_is_pure = date_test_is_pure(FC);
    bool seen = true;
    for (const std::string& dotted : all_native_lookups()) seen = remember_dotted(dotted) && seen;
    remember_date_tests_of(FC.get());
    remember_null_option();
    if (!seen || !watched) {
        scopes().clear();
        return;
    }
    in_place = look_everything_up();
    settle();
}

bool lookups_unchanged() noexcept {
    look_again();
    return in_place.others;
}

bool lookups_and_date_test_unchanged() noexcept {
    look_again();
    return in_place.date_test && in_place.others;
}

}  // namespace quorin
