#include "exportable_utils/classify/kind_counts.hpp"

#include "python/operations.hpp"

namespace quorin::classify {

KindCounts::KindCounts(Object missing_rows) {
    for (Ref& count : counts_) count = whole(0);
    counts_[static_cast<std::size_t>(Kind::missing)] = Ref::share(missing_rows);
}

void KindCounts::add(Kind kind, const Operand& more) {
    Ref& count = counts_[static_cast<std::size_t>(kind)];
    count = add_in_place(count, more);
}

bool KindCounts::any(Kind kind) const {
    return greater((*this)[kind], 0);
}

Ref KindCounts::dictionary() const {
    Ref made = Ref::take(PyDict_New());
    for (std::size_t i = 0; i < kinds; ++i) set_item(made, text(static_cast<Kind>(i)), counts_[i]);
    return made;
}

}  // namespace quorin::classify
