// The classifier's progress texts, printed if `debug` is true.
#pragma once

#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

class Progress {
  public:
    explicit Progress(Object debug) : debug_(debug) {}

    void column(Object X);  // the first rows; starts the clock of the whole call
    void scan_starts(Object XX);
    void scan_ends(Object XX) const;
    void datetime_starts(Object check_limit);
    void datetime_ends(Object check_limit) const;
    // The texts of two checks that are not made.
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
