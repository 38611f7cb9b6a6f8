#include "python/borrow.hpp"

#include <string>

namespace quorin {

BorrowViolation::BorrowViolation(Where where)
    : std::logic_error(std::string("foreign code would run while memory is borrowed: ") + where.file_name() + ":" +
                       std::to_string(where.line())) {}

void fail_borrowed(Where where) {
    const BorrowViolation violation(where);
#ifndef NDEBUG
    Py_FatalError(violation.what());
#else
    throw violation;
#endif
}

}  // namespace quorin
