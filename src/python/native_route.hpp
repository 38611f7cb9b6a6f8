// Wraps every native route: checks the condition under which it runs, and turns each way to give up into an empty Ref.
#pragma once

#include "python/borrow.hpp"
#include "python/errors.hpp"
#include "python/lookup_guard.hpp"
#include "python/signals.hpp"

#include <new>
#include <stdexcept>

namespace quorin {

// `called`: the route also replaces the classifier's call of the date test. It then depends on the names of the date
// test, and on the declaration that the test has no side effects.
enum class DateTest { not_called, called };

// Returns what `body` returns. An empty Ref means that the route gives up and the caller takes the interpreter route. A
// route gives up if
//   - a name that the interpreter route looks up is not bound to the object that start-up bound, according to `known`,
//     which is valid until foreign code runs;
//   - `body` returns an empty Ref;
//   - memory runs out or the interpreter cannot make an object: the interpreter route then raises the error.
// Foreign code that `body` calls must not have visible effects, because the interpreter route would repeat them.
// Interrupted and BorrowViolation propagate.
template <DateTest date_test = DateTest::not_called, class Body>
Ref native_route(Body body, LookupState known = lookup_state()) {
    if (!(date_test == DateTest::called ? known.date_test_unchanged : known.unchanged)) return {};
    try {
        return body();
    } catch (const Interrupted&) {
        throw;
    } catch (const PythonError&) {
        PyErr_Clear();
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch)
    } catch (const std::length_error&) {  // NOLINT(bugprone-empty-catch)
    }
    return {};
}

}  // namespace quorin
