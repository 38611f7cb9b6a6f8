// The frame of every native route: when it may run, and the one way in which it gives up.
#pragma once

#include "python/borrow.hpp"
#include "python/errors.hpp"
#include "python/lookup_guard.hpp"
#include "python/signals.hpp"

#include <new>
#include <stdexcept>

namespace quorin {

// Whether a route also stands in for the classifier's call of the date test, which an application may replace by one
// with side effects.
enum class DateTest { not_called, called };

// Returns what `body` returns. An empty Ref means that the route gives up and the caller takes the interpreter route:
// if a name that an interpreter route looks up no longer is bound to what start-up bound, if `body` returns an empty
// Ref, if memory runs out, or if the interpreter refuses to make an object (the interpreter route then raises the
// error). `body` calls no foreign code whose effects could be seen twice. Interrupted passes through.
template <DateTest date_test = DateTest::not_called, class Body>
Ref native_route(Body body) {
    if (!(date_test == DateTest::called ? lookups_and_date_test_unchanged() : lookups_unchanged())) return {};
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
