// The static methods of FCplus: tests of columns and of whole data sets.
#pragma once

#include "python/routine.hpp"

namespace quorin::features {

extern const Definition is_num_column_categorical;
extern const Definition is_column_categorical;
extern const Definition find_categorical_columns;
extern const Definition is_numerical;
extern const Definition find_numerical_columns;

extern const Definition is_dataset_for_classification;
extern const Definition is_dataset_preprocessed;
extern const Definition is_dataset_missing;
extern const Definition get_dataset_missing_columns;
extern const Definition is_dataset_numeric;
extern const Definition get_dataset_non_numeric_columns;

extern const Definition getClasses;

extern const Definition check_statistics;
extern const Definition is_column_sex;
extern const Definition is_column_height;
extern const Definition is_column_weight;
extern const Definition is_column_age;

extern const Definition is_column_datetime;
extern const Definition is_column_timestamp;
extern const Definition is_column_missing;
extern const Definition is_column_string;
extern const Definition is_column_positive;
extern const Definition is_column_non_negative;
extern const Definition is_column_not_all_non_negative;
extern const Definition is_column_lt80pc_unique_int;
extern const Definition is_column_categorical_mult_cats;
extern const Definition is_column_not_categorical;

extern const Definition is_column_constant;
extern const Definition is_column_string_in_datetime_format;
extern const Definition is_column_epoch;
extern const Definition is_column_longitude;
extern const Definition is_column_latitude;
extern const Definition is_column_distance;

}  // namespace quorin::features
