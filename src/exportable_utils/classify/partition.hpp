// Partitions a column into the rows that are missing and the distinct values of the others.
#pragma once

#include "exportable_utils/classify/native_arguments.hpp"
#include "python/module_names.hpp"

namespace quorin::classify {

struct Partition {
    Local cum_missing_mask_arr{"cum_missing_mask_arr"_py};
    Ref missing_values_list;  // a copy of the caller's list
    Ref missing_reference_values_exist_list;
    Ref X;  // the column: the caller's object in the native route, flattened in the interpreter route
    Ref non_missing_rows;
    Ref XX;
    Ref xx_xounts;
    bool natively = false;
};

// The arguments of a call of numpy_whatis.
struct Question {
    Object X;
    Object missing_values_reference_list;
    Object stop_at_one_missing_value_flag;
    Object debug;
    Object use_dtype_str1_flag;
    Object return_stats_flag;

    // Whether native routes may replace the steps up to the distinct values.
    [[nodiscard]] bool plain() const noexcept {
        return debug.is(Py_False) && PyBool_Check(stop_at_one_missing_value_flag.get());
    }
    [[nodiscard]] bool first_only() const noexcept { return stop_at_one_missing_value_flag.is(Py_True); }
};

Partition partition_column(const Question& question, const NativeArguments& arguments);

}  // namespace quorin::classify
