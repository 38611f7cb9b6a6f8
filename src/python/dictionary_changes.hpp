// Detects changes of a dictionary, at the cost of one or two loads.
#pragma once

#include <cstdint>

#include "python/ref.hpp"

namespace quorin {

class WatchedDictionary {
  public:
    explicit WatchedDictionary(Object dictionary);

    [[nodiscard]] PyObject* get() const noexcept { return dictionary_.get(); }

#if PY_VERSION_HEX < 0x030C0000
    // Interpreters before 3.12 give every dictionary a new version number at each change.
    // NOLINTNEXTLINE(readability-convert-member-functions-to-static): not static in the branch for 3.12
    [[nodiscard]] bool watched() const noexcept { return true; }
    [[nodiscard]] bool changed() const noexcept { return version() != seen_version_; }
    void seen() noexcept { seen_version_ = version(); }

  private:
    [[nodiscard]] std::uint64_t version() const noexcept {
        return reinterpret_cast<const PyDictObject*>(dictionary_.get())->ma_version_tag;
    }
    std::uint64_t seen_version_ = 0;
#else
    // From 3.12 on the interpreter calls a watcher at each change. All dictionaries share one flag. watched() is false
    // if no watcher was free: the interpreter has only a few, which all modules share.
    [[nodiscard]] bool watched() const noexcept { return watched_; }
    [[nodiscard]] static bool changed() noexcept { return any_changed_; }
    static void seen() noexcept { any_changed_ = false; }

  private:
    static int on_change(PyDict_WatchEvent event, PyObject* dictionary, PyObject* key, PyObject* value);
    static inline bool any_changed_ = true;
    bool watched_ = false;
#endif
    Ref dictionary_;
};

}  // namespace quorin
