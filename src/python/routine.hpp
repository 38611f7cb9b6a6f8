// The definition of a routine: name, parameters, documentation, look-ups and body in one place. The callable that
// Python sees is made from it at start-up.
#pragma once

#include "python/ref.hpp"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <type_traits>
#include <utility>

namespace quorin {

class Default {
  public:
    enum class Kind { required, none, truth, whole, real, text };

    constexpr Default() = default;
    constexpr Default(std::nullptr_t) : kind(Kind::none) {}
    constexpr Default(bool value) : kind(Kind::truth), whole(value ? 1 : 0) {}
    constexpr Default(int value) : kind(Kind::whole), whole(value) {}
    constexpr Default(double value) : kind(Kind::real), real(value) {}
    constexpr Default(const char* value) : kind(Kind::text), text(value) {}

    Kind kind = Kind::required;
    int whole = 0;
    double real = 0.0;
    const char* text = nullptr;
};

// Annotations are documentation; nothing checks them. `set_text` is the text "set".
enum class Annotation { none, ndarray, boolean, set_text };

struct Parameter {
    constexpr Parameter() = default;
    constexpr Parameter(const char* parameter, Default value = {}, Annotation note = Annotation::none)
        : name(parameter), otherwise(value), annotation(note) {}

    const char* name = nullptr;
    Default otherwise;
    Annotation annotation = Annotation::none;
};

constexpr Default required{};
constexpr std::nullptr_t None = nullptr;

constexpr std::size_t most_parameters = 7;

class Parameters {
  public:
    constexpr Parameters(std::initializer_list<Parameter> list) {
        for (const Parameter& parameter : list) items_[size_++] = parameter;
    }
    [[nodiscard]] constexpr std::size_t size() const { return size_; }
    [[nodiscard]] constexpr const Parameter* begin() const { return items_.data(); }
    [[nodiscard]] constexpr const Parameter* end() const { return items_.data() + size_; }

  private:
    std::array<Parameter, most_parameters> items_{};
    std::size_t size_ = 0;
};

// A body takes one Object for each parameter and returns a Ref.
class Body {
  public:
    template <class Function>
    constexpr Body(Function) : Body(Function{}, &Function::operator()) {}

    [[nodiscard]] constexpr std::size_t arity() const { return arity_; }
    Ref operator()(PyObject* const* arguments) const { return run_(arguments); }

  private:
    template <class Function, class... Objects>
    constexpr Body(Function, Ref (Function::*)(Objects...) const)
        : arity_(sizeof...(Objects)), run_(&run<Function, sizeof...(Objects)>) {
        static_assert((std::is_same_v<Objects, Object> && ...));
    }
    template <class Function, std::size_t Arity>
    static Ref run(PyObject* const* arguments) {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return Function{}(Object(arguments[I])...);
        }(std::make_index_sequence<Arity>{});
    }

    std::size_t arity_;
    Ref (*run_)(PyObject* const*);
};

// Names that the interpreter route of a routine looks up at call time, and that its native route therefore depends on:
// dotted texts such as "numpy_isin", "np.any", "FCplus.check_statistics". If a name is a routine, the names of its
// definition are added. The attribute `_native_lookups` of a callable holds all of them; tests are generated from it.
class Lookups {
  public:
    constexpr Lookups() = default;
    constexpr Lookups(std::initializer_list<const char*> names) {
        for (const char* name : names) names_[size_++] = name;
    }
    [[nodiscard]] constexpr const char* const* begin() const { return names_.data(); }
    [[nodiscard]] constexpr const char* const* end() const { return names_.data() + size_; }

  private:
    static constexpr std::size_t most = 12;
    std::array<const char*, most> names_{};
    std::size_t size_ = 0;
};

struct Definition {
    const char* name;
    Parameters parameters;
    Annotation returns = Annotation::none;
    const char* doc;
    // False if the body runs no foreign code, or has its own RecursionGuard.
    bool counts_nesting = true;
    bool has_native_route = false;
    // Needed for a routine with a native route, and for the routines that it calls.
    Lookups lookups = {};  // NOLINT(readability-redundant-member-init): g++ warns about each definition without it
    Body body;
};

// The callable of a definition. `owner` is the class that it belongs to, or null for a routine of the module.
Ref make_routine(const Definition& definition, const char* owner);

// Initialises the type of all routines. Called before the first routine is made.
void ready_routine_type();

}  // namespace quorin
