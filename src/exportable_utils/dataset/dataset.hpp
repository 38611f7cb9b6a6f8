// DatasetS, the holder of one table.
#pragma once

#include "python/routine.hpp"

namespace quorin::dataset {

extern const Definition init_from_file;
extern const Definition init_from_table;
extern const Definition AddNewColumns;
extern const Definition GetTargetType;

}  // namespace quorin::dataset
