// Handles signals inside long native loops.
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

// Runs the Python handlers of pending signals, which are foreign code; throws Interrupted if one raises. Then releases
// the GIL for a moment: handlers run in the main thread only, which may be waiting for it.
void answer_signals(Where where = Where::current());

// Answers signals at most once in 20 ms. Reading the clock takes about 30 ns, so a loop polls once in a few thousand
// rows.
class SignalTimer {
  public:
    void poll(Where where = Where::current());

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point last_ = Clock::now();
};

// Calls block(first, last) for consecutive ranges of at most `most_rows` rows, and answers signals between them.
// `block` must open the column in each call, because a handler may have changed it; it returns false to give up.
template <class Block>
bool in_blocks_of(std::size_t most_rows, std::size_t rows, Block block, Where where = Where::current()) {
    if (rows <= most_rows) return block(std::size_t{0}, rows);
    SignalTimer timer;
    for (std::size_t first = 0; first < rows; first += most_rows) {
        if (first != 0) timer.poll(where);
        if (!block(first, std::min(rows, first + most_rows))) return false;
    }
    return true;
}

// The same with ranges of a few milliseconds at most. A short column is one range.
constexpr std::size_t rows_between_signals = std::size_t{1} << 17U;

template <class Block>
bool in_blocks(std::size_t rows, Block block, Where where = Where::current()) {
    return in_blocks_of(rows_between_signals, rows, block, where);
}

}  // namespace quorin
