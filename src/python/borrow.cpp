#include "python/borrow.hpp"

#include <string>

namespace quorin {

BorrowViolation::BorrowViolation(Where where)
    : std::logic_error(std::string("foreign code would run while memory is borrowed: ") + where.file_name() + ":" +
                       std::to_string(where.line())) {}

void fail_borrowed(Where where) {
    throw BorrowViolation(where);
}

}  // namespace quorin
