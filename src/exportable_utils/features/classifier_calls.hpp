// Calls of numpy_whatis and related routines that the methods of FCplus share.
#pragma once

#include "python/ref.hpp"

namespace quorin::features {

// setValueOrDefault(list, global_missing_values_reference_list): the caller's list, or the module's if that is None.
Ref markers_in_force(Object missing_values_reference_list, Where where = Where::current());

struct Classified {
    Ref misslist;   // the markers that occur in the column
    Ref dtype_str;  // the column's kind
};

// numpy_whatis. Classifier()(column, markers) looks it up before it evaluates the arguments, as a Python call does.
// Each object looks the name up once.
class Classifier {
  public:
    explicit Classifier(Where where = Where::current());
    Classified operator()(Object column, Object l_missing_values_reference_list, Where where = Where::current()) const;

  private:
    Ref numpy_whatis_;
};

// FCplus.is_column_categorical(column, missing_values_reference_list=...)
Ref is_categorical(Object column, Object missing_values_reference_list, Where where = Where::current());

// Whether dfc.values[0, 0] is a text.
bool first_cell_is_text(Object dfc, Where where = Where::current());

}  // namespace quorin::features
