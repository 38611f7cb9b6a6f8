// Rows and columns of objects that have a shape and are indexed like numpy's arrays.
#pragma once

#include "python/ref.hpp"

namespace quorin {

Ref row_count(Object X, Where where = Where::current());                    // X.shape[0]
Ref column_count(Object X, Where where = Where::current());                 // X.shape[1]
Ref matrix_column(Object X, Py_ssize_t j, Where where = Where::current());  // X[:, j]
Ref every(Where where = Where::current());                                  // the index : of one axis

// min(rows, 50), the number of rows in messages and samples.
Ref capped_row_count(Object X, Where where = Where::current());
Ref capped(Object rows, Where where = Where::current());
Ref first_rows(Object X, Object limit, Where where = Where::current());  // X[list(range(limit))]

}  // namespace quorin
