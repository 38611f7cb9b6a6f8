// The progress messages of numpy_whatis, printed if `debug` is true.
#pragma once

#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

class Progress {
  public:
    explicit Progress(Object debug) : debug_(debug) {}

    void column(Object X);  // prints the first rows and starts the clock of the call
    void scan_starts(Object XX);
    void scan_ends(Object XX) const;
    void datetime_starts(Object check_limit);
    void datetime_ends(Object check_limit) const;
    // Prints the messages of two checks that no longer exist.
    void order_and_gaps(Object check_limit) const;
    void end() const;

  private:
    [[nodiscard]] bool wanted() const { return truth(debug_); }

    Object debug_;
    Local start_time_{"start_time"_py};
    Local dtype_start_time_{"dtype_start_time"_py};
    Local datetime_start_time_{"datetime_start_time"_py};
};

}  // namespace quorin::classify
