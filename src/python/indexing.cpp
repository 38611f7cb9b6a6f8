#include "python/indexing.hpp"

#include "python/operations.hpp"

namespace quorin {

Ref row_count(Object X, Where where) {
    return item(X.attr(At("shape"_py, where)), 0, where);
}

Ref column_count(Object X, Where where) {
    return item(X.attr(At("shape"_py, where)), 1, where);
}

Ref matrix_column(Object X, Py_ssize_t j, Where where) {
    return item(X, tuple({every(where), j}, where), where);
}

Ref every(Where where) {
    return slice(Py_None, Py_None, where);
}

Ref capped_row_count(Object X, Where where) {
    return capped(row_count(X, where), where);
}

Ref capped(Object rows, Where where) {
    return less(rows, 50, where) ? Ref::share(rows) : whole(50, where);
}

Ref first_rows(Object X, Object limit, Where where) {
    return item(X, list_of(Object(&PyRange_Type)({limit}, {}, where), where), where);
}

}  // namespace quorin
