// Deciding: from what the scan counted to one kind for the column.
#pragma once

#include "exportable_utils/classify/scan.hpp"

namespace quorin::classify {

struct Verdict {
    Kind dtype_str1;                                     // by the counts
    bool start_missing_string_values_list_flag = false;  // number text was preferred to text
};

// `initial` is what stands where several kinds were found and none of the rules names one.
Verdict decide(const Scan& scan, Kind initial);

}  // namespace quorin::classify
