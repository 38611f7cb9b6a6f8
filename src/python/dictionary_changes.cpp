#include "python/dictionary_changes.hpp"

namespace quorin {

#if PY_VERSION_HEX < 0x030C0000

WatchedDictionary::WatchedDictionary(Object dictionary) : dictionary_(Ref::share(dictionary)) {}

#else

WatchedDictionary::WatchedDictionary(Object dictionary) : dictionary_(Ref::share(dictionary)) {
    static int watcher = -1;
    if (watcher < 0) watcher = PyDict_AddWatcher(on_change);
    watched_ = watcher >= 0 && PyDict_Watch(watcher, dictionary.get()) == 0;
    if (!watched_) PyErr_Clear();
}

int WatchedDictionary::on_change(PyDict_WatchEvent /*event*/, PyObject* /*dictionary*/, PyObject* /*key*/,
                                 PyObject* /*value*/) {
    any_changed_ = true;
    return 0;
}

#endif

}  // namespace quorin
