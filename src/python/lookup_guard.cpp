#include "python/lookup_guard.hpp"

#include <algorithm>
#include <array>
#include <vector>

#include "python/errors.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

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

void keep(Scope scope) {
    watched = watch(scope.dictionary) && watched;
    scopes().push_back(std::move(scope));
}

void remember(Object dictionary, std::initializer_list<Name> names) {
    Scope scope{Ref::share(dictionary).give(), {}};
    for (const Name name : names) {
        PyObject* held = PyDict_GetItemWithError(dictionary.get(), name.text);
        if (held == nullptr && PyErr_Occurred() != nullptr) throw PythonError(Where::current());
        scope.entries.push_back({name.text, Ref::share(held).give(), false});
    }
    keep(std::move(scope));
}

// Names that no routine's answer depends on: what the interpreter itself keeps there, and channels for messages.
bool is_aside(Object name) {
    const auto among = [&](std::initializer_list<Name> names) {
        return std::any_of(names.begin(), names.end(), [&](Name other) { return equal(name, other); });
    };
    return truth(name.attr("startswith"_py)({"__"_py})) ||
           among({"random"_py, "time"_py, "traceback"_py, "logging"_py, "logger"_py, "DatasetS"_py});
}

enum class DateTest { among_others, all_of_it };

// FC and the method of FCplus that asks it. Its other tests are asked by name, whatever they are.
bool leads_to_date_test(Object name) {
    return equal(name, "FC"_py) || equal(name, "is_column_string_in_datetime_format"_py);
}

void remember_all(Object dictionary, DateTest date_test = DateTest::among_others) {
    Scope scope{Ref::share(dictionary).give(), {}};
    PyObject* name = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(dictionary.get(), &position, &name, &value) != 0) {
        if (is_aside(name)) continue;
        const bool on_the_way = date_test == DateTest::all_of_it || leads_to_date_test(name);
        scope.entries.push_back({Ref::share(name).give(), Ref::share(value).give(), on_the_way});
    }
    keep(std::move(scope));
}

// pandas before 3 has an option by which infinite numbers are null, too, and notes it where pd.isnull() looks.
void remember_null_option() {
    const Ref module = Ref::adopt(PyImport_GetModule("pandas.core.dtypes.missing"_py.text));
    if (!module || !PyModule_Check(module.get())) {
        PyErr_Clear();
        return;
    }
    PyObject* dictionary = PyModule_GetDict(module.get());
    PyObject* name = "INF_AS_NA"_py.text;
    if (PyDict_Contains(dictionary, name) == 1) keep({Ref::share(dictionary).give(), {{name, Py_False, false}}});
}

// The dictionary behind a class; vars() would give a view of it.
Object members_of(Object type) {
    return reinterpret_cast<PyTypeObject*>(type.get())->tp_dict;
}

// Whether FC says that its date test has no effect but its answer, so that nobody can tell whether it was asked.
bool date_test_is_pure(Object FC) {
    if (!PyType_Check(FC.get())) return false;
    PyObject* declared = PyDict_GetItemWithError(members_of(FC).get(), "side_effect_free"_py.text);
    if (declared == nullptr) return false;
    return contains(declared, "is_string_in_datetime_format"_py);
}

}  // namespace

void remember_originals() {
    scopes().clear();
    in_place = {};
    watched = true;
    const Object names = module_names();
    const Ref FC = item(names, "FC"_py);
    const std::array libraries = {item(names, "np"_py), item(names, "pd"_py), item(names, "six"_py),
                                  item(names, "numbers"_py), item(names, "hashlib"_py)};
    for (const Ref& library : libraries) {
        if (!PyModule_Check(library.get())) return;
    }
    const Ref Series = Ref::adopt(PyObject_GetAttr(libraries[1].get(), "Series"_py.text));
    if (!Series || !PyType_Check(Series.get())) {
        PyErr_Clear();
        return;
    }
    own_date_test_is_pure = date_test_is_pure(FC);

    remember_all(names);
    remember_all(members_of(item(names, "FCplus"_py)));
    if (PyType_Check(FC.get())) remember_all(members_of(FC), DateTest::all_of_it);
    const auto in_library = [&](std::size_t i) { return Object(PyModule_GetDict(libraries[i].get())); };
    remember(in_library(0),
             {"any"_py, "array"_py, "asarray"_py, "bool_"_py, "concatenate"_py, "empty"_py, "float"_py, "int"_py,
              "integer"_py, "nan"_py, "ndarray"_py, "putmask"_py, "unique"_py, "vectorize"_py, "zeros"_py});
    remember(in_library(1), {"Series"_py, "isnull"_py});
    remember(members_of(Series), {"unique"_py});
    remember(in_library(2), {"string_types"_py});
    remember(in_library(3), {"Integral"_py});
    remember(in_library(4), {"md5"_py});
    remember_null_option();
    if (!watched) {
        scopes().clear();
        return;
    }
    in_place = look_everything_up();
    settle();
}

bool originals_in_place() noexcept {
    look_again();
    return in_place.others;
}

bool date_test_in_place() noexcept {
    look_again();
    return in_place.date_test && in_place.others;
}

}  // namespace quorin
