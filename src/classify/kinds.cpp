#include "classify/kinds.hpp"

#include "interp/operations.hpp"

namespace quorin::classify {

Name text(Kind kind) {
    switch (kind) {
        case Kind::missing:
            return "missing"_py;
        case Kind::char_str:
            return "char_str"_py;
        case Kind::date_str:
            return "date_str"_py;
        case Kind::int_str:
            return "int_str"_py;
        case Kind::float_str:
            return "float_str"_py;
        case Kind::float_num:
            return "float_num"_py;
        case Kind::float_int_num:
            return "float_int_num"_py;
        case Kind::int_num:
            return "int_num"_py;
        case Kind::boolean:
            return "boolean"_py;
        case Kind::unknown:
            break;
    }
    return "Unknown"_py;
}

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
