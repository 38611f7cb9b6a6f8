#include "exportable_utils/classify/progress.hpp"

#include "python/indexing.hpp"

namespace quorin::classify {

namespace {

Ref elapsed_since(const Local& stamp) {
    const Ref end = now();
    return text_of(subtract(end, stamp.get()));
}

Ref rows_of(Object column) {
    return text_of(row_count(column));
}

}  // namespace

void Progress::column(Object X) {
    if (!wanted()) return;
    const Ref shown = first_rows(X, capped_row_count(X));
    print(concat({"numpy_whatis(): Starting. Column: "_py, text_of(shown), "\n\n"_py}));
    start_time_ = now();
}

void Progress::scan_starts(Object XX) {
    if (!wanted()) return;
    dtype_start_time_ = now();
    print(concat({"numpy_whatis():Start finding dtype on"_py, rows_of(XX), " rows"_py}));
}

void Progress::scan_ends(Object XX) const {
    if (!wanted()) return;
    print(concat({"numpy_whatis():Ending finding dtype on"_py, rows_of(XX),
                  " rows\nelapsed_time: numpy_isin_elapsed_end(s): "_py, elapsed_since(dtype_start_time_)}));
}

void Progress::datetime_starts(Object check_limit) {
    if (!wanted()) return;
    print(concat({"numpy_whatis():Starting checking datetime property  on"_py, text_of(check_limit), " rows"_py}));
    datetime_start_time_ = now();
}

void Progress::datetime_ends(Object check_limit) const {
    if (!wanted()) return;
    print(concat({"numpy_whatis():Ending checking datetime property  on"_py, text_of(check_limit),
                  " rows\nelapsed_time(s): "_py, elapsed_since(datetime_start_time_)}));
}

void Progress::order_and_gaps(Object check_limit) const {
    const auto check = [&](Name starting, Name ending, Name stamp) {
        if (!wanted()) return;
        Local started{stamp};
        print(concat({starting, text_of(check_limit), " rows"_py}));
        started = now();
        print(concat({ending, text_of(check_limit), " rows\nelapsed_time(s): "_py, elapsed_since(started)}));
    };
    check("numpy_whatis():Starting checking monotonic property  on "_py,
          "numpy_whatis():Ending checking monotonic property on "_py, "monotonic_start_time"_py);
    check("numpy_whatis():Starting checking contiguous property  on "_py,
          "numpy_whatis():Ending checking contiguous property on "_py, "contiguous_start_time"_py);
}

void Progress::end() const {
    if (!wanted()) return;
    print(concat({"numpy_whatis():Ending_\nelapsed_time(s): "_py, elapsed_since(start_time_)}));
}

}  // namespace quorin::classify
