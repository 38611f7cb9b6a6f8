// Answering signals inside long native loops.
#pragma once

#include "python/errors.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace quorin {

// A signal handler raised an exception such as KeyboardInterrupt. It ends the call: the interpreter route is not tried.
class Interrupted : public PythonError {
  public:
    using PythonError::PythonError;
};

// Runs the Python handlers of the signals that have arrived, which are foreign code; throws Interrupted if one raises.
// Handlers run in the main thread only. In every other thread this lets the main thread have the GIL.
void answer_signals(Where where = Where::current());

// Answers signals at most once in 20 ms. Reading the clock takes about 30 ns, so a loop polls every few thousand rows.
class SignalTimer {
  public:
    void poll(Where where = Where::current());

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point last_ = Clock::now();
};

// Calls block(first, last) for consecutive ranges of rows [first, last) and answers signals between them. `block` opens
// the column anew in each call, since a handler may have changed it, and returns false to give up: in_blocks() then
// returns false. A column of up to rows_between_signals rows is one range, without a signal answered.
constexpr std::size_t rows_between_signals = std::size_t{1} << 17U;

template <class Block>
bool in_blocks(std::size_t rows, Block block, Where where = Where::current()) {
    if (rows <= rows_between_signals) return block(std::size_t{0}, rows);
    SignalTimer timer;
    for (std::size_t first = 0; first < rows; first += rows_between_signals) {
        if (first != 0) timer.poll(where);
        if (!block(first, std::min(rows, first + rows_between_signals))) return false;
    }
    return true;
}

}  // namespace quorin
