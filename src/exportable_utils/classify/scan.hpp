// Gathering: one walk over the distinct values of a column, which counts what it sees. The verdict is drawn elsewhere.
#pragma once

#include "exportable_utils/classify/kind_counts.hpp"

#include <cstddef>
#include <optional>
#include <vector>

namespace quorin::classify {

struct Scan {
    explicit Scan(Object missing_rows);

    // Walks over XX, ascending distinct values, and their numbers of occurrences. Values found to be markers are
    // appended to `missing_values_list`.
    void run(Object XX, Object xx_xounts, Object missing_values_list);

    Kind dtype_str = Kind::unknown;  // the running class: that of the last value classified
    bool found_nonmissing_flag = false;
    bool found_int_str_flag = false;
    bool found_float_str_flag = false;
    bool found_string_flag = false;
    KindCounts dtypes_cnt;           // by distinct value
    KindCounts dtypes_weighted_cnt;  // by occurrence
    Ref weird_new_missing_values_list;

    // The texts that stand beside number texts: candidates for markers. The walk over memory leaves them where they are
    // in XX until somebody asks, for there may be very many and most answers do not name them.
    [[nodiscard]] Ref start_missing_string_values(Object XX) const;

  private:
    // A copy of the running class and of the two lists that stops following them at some point. Kept for a rule that
    // decides by it; so far no result does.
    struct Frozen {
        Kind dtype_str3 = Kind::unknown;
        bool dtype_str3_stop_flag = false;
        Ref start_missing_string_values_list3;
        Ref weird_new_missing_values_list3;
    };

    // The same walk over memory: for texts, and for numbers that stand in an array of their own dtype. False, and
    // nothing done, for any other array.
    bool run_native(Object XX, Object xx_xounts, Object missing_values_list);

    bool is_marker(Object elt) const;
    void classify_text(Object XX, Py_ssize_t i, Object elt);
    void number_text_found(Kind kind, Object XX, Py_ssize_t i);
    void classify_value(Object elt);
    void value_found(Kind kind);
    void follow_kind();
    void apply_stop_rule();
    [[nodiscard]] bool number_text_seen() const { return found_int_str_flag || found_float_str_flag; }

    std::optional<Kind> dtype_str_found_;
    Ref start_missing_string_values_list_;
    std::size_t texts_below_ = 0;           // so many first ones of XX, not listed
    std::vector<std::size_t> texts_above_;  // behind those, not listed
    Frozen frozen_;
};

}  // namespace quorin::classify
