// What the methods share: the marker list in force, the classifier's short answer for a column, a look at its first
// cell.
#pragma once

#include "python/ref.hpp"

namespace quorin::features {

// The caller's list of missing-value markers, or the module's where the caller gives None.
Ref markers_in_force(Object missing_values_reference_list, Where where = Where::current());

struct Classified {
    Ref misslist;   // the markers that occur in the column
    Ref dtype_str;  // its kind
};

// numpy_whatis, looked up for one call: Classifier()(column, markers) makes the column after that, as any call does.
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
