#include "python/signals.hpp"

#include "python/borrow.hpp"

namespace quorin {

void answer_signals(Where where) {
    foreign_code_may_run(where);
    if (PyErr_CheckSignals() < 0) throw Interrupted(where);
    Py_BEGIN_ALLOW_THREADS  // NOLINT(misc-const-correctness)
        Py_END_ALLOW_THREADS
}

void SignalTimer::poll(Where where) {
    constexpr auto interval = std::chrono::milliseconds(20);
    const Clock::time_point now = Clock::now();
    if (now - last_ < interval) return;
    answer_signals(where);
    last_ = Clock::now();
}

}  // namespace quorin
