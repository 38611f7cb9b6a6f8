#include "python/native_lookups.hpp"

#include <algorithm>
#include <string_view>

namespace quorin {

namespace {

struct Registered {
    std::string qualified;
    const Definition* definition;
};

// Never destroyed, as the definitions are not.
std::vector<Registered>& registered_routines() {
    static auto* const all = new std::vector<Registered>;
    return *all;
}

Registered* find_routine(std::string_view qualified) {
    auto& all = registered_routines();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Registered& entry) { return entry.qualified == qualified; });
    return found == all.end() ? nullptr : &*found;
}

void add_lookups(const Definition& definition, std::vector<std::string>& names) {
    for (const char* name : definition.lookups) {
        if (std::find(names.begin(), names.end(), name) != names.end()) continue;
        names.emplace_back(name);
        if (const Registered* called = find_routine(name)) add_lookups(*called->definition, names);
    }
}

}  // namespace

void register_routine(const char* qualified, const Definition& definition) {
    if (Registered* known = find_routine(qualified)) {
        known->definition = &definition;
    } else {
        registered_routines().push_back({qualified, &definition});
    }
}

std::vector<std::string> native_lookups(const Definition& definition) {
    std::vector<std::string> names;
    if (definition.has_native_route) add_lookups(definition, names);
    return names;
}

std::vector<std::string> all_native_lookups() {
    std::vector<std::string> names;
    for (const Registered& entry : registered_routines()) {
        if (entry.definition->has_native_route) add_lookups(*entry.definition, names);
    }
    return names;
}

}  // namespace quorin
