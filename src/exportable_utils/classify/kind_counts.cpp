#include "exportable_utils/classify/kind_counts.hpp"

#include "python/operations.hpp"

namespace quorin::classify {

namespace {

constexpr auto missing = static_cast<std::size_t>(Kind::missing);

}  // namespace

Name name_of(Kind kind) {
    static const std::array<Name, core::kind_count> names = [] {
        std::array<Name, core::kind_count> interned{};
        for (std::size_t i = 0; i < core::kind_count; ++i) interned[i] = {intern(word_of(static_cast<Kind>(i)))};
        return interned;
    }();
    return names[static_cast<std::size_t>(kind)];
}

KindCounts::KindCounts(Object missing_rows) {
    for (Ref& count : rows_) count = whole(0);
    rows_[missing] = Ref::share(missing_rows);
}

void KindCounts::add(Kind kind, Py_ssize_t distinct, const Operand& rows) {
    distinct_[static_cast<std::size_t>(kind)] += distinct;
    Ref& count = rows_[static_cast<std::size_t>(kind)];
    count = add_in_place(count, rows);
}

bool KindCounts::any_missing_rows() const {
    return greater(rows_[missing], 0);
}

Ref KindCounts::distinct_by_word() const {
    Ref made = Ref::take(PyDict_New());
    for (std::size_t i = 0; i < core::kind_count; ++i) {
        const Name word = name_of(static_cast<Kind>(i));
        i == missing ? set_item(made, word, rows_[i]) : set_item(made, word, distinct_[i]);
    }
    return made;
}

Ref KindCounts::rows_by_word() const {
    Ref made = Ref::take(PyDict_New());
    for (std::size_t i = 0; i < core::kind_count; ++i) set_item(made, name_of(static_cast<Kind>(i)), rows_[i]);
    return made;
}

}  // namespace quorin::classify
