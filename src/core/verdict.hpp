// Decides the kind of a column from facts about it. The facts come from the scan of the distinct values (interpreter or
// native route) or from the short answer, which visits the rows in any order.
#pragma once

#include "core/kinds.hpp"

namespace quorin::core {

// The facts that the verdict depends on. Counted values are the distinct values that are not reference values; if there
// is an end marker, only those below it. The end marker is the least lone text above the least number text.
//
// Facts that cannot change the verdict may be missing: which number texts occur beside two distinct plain texts if
// there is no end marker; which other numbers occur beside a fraction.
struct VerdictFacts {
    bool missing_rows = false;  // a row equals a reference value
    bool other_rows = true;     // a row equals no reference value
    KindSet kinds;              // kinds of the counted values; neither `missing` nor `unknown`
    bool one_text = false;      // exactly one counted value is of the kind char_str
    bool end_marker = false;
    // For Rule::by_last_value only.
    Kind running = Kind::unknown;    // kind of the greatest counted value; float_int_num does not replace float_num
    bool both_number_texts = false;  // integer texts and real texts are counted
};

enum class Rule { by_counts, by_last_value };

struct Verdict {
    Kind kind = Kind::unknown;
    // Counted texts that are not number texts stand for missing values.
    bool texts_are_markers = false;
};

Verdict decide(const VerdictFacts& facts, Rule rule) noexcept;

}  // namespace quorin::core
