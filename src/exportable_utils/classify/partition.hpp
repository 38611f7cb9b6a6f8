// A column, partition into rows that are missing and distinct values of the others.
#pragma once

#include "python/module_names.hpp"

namespace quorin::classify {

struct Partition {
    Local cum_missing_mask_arr{"cum_missing_mask_arr"_py};
    Ref missing_values_list;  // the caller's, copied
    Ref missing_reference_values_exist_list;
    Ref X;  // the column, flattened where that is not for memory to say
    Ref non_missing_rows;
    Ref XX;
    Ref xx_xounts;
    bool natively = false;  // straight from the column's memory
};

Partition partition_column(Object column, Object missing_values_reference_list, Object stop_at_one_missing_value_flag,
                           Object debug);

}  // namespace quorin::classify
