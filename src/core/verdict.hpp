// From the facts about a column to its kind. Every way of gathering facts ends here: the scan of the distinct values,
// through the interpreter or in memory, and the short answers, which visit rows in any order.
#pragma once

#include "core/kinds.hpp"

namespace quorin::core {

// What the verdict depends on. Counted values are the distinct values that are not reference values; if there is an end
// marker, only those below it. The end marker is the least lone text above the least number text.
//
// A fact that cannot change the verdict may be left out: which number texts occur beside two distinct plain texts if
// there is no end marker; which other numbers occur beside a fraction.
struct VerdictFacts {
    bool missing_rows = false;  // any row equals a reference value
    bool other_rows = true;     // any row does not
    KindSet kinds;              // of the counted values; neither `missing` nor `unknown`
    bool one_text = false;      // exactly one counted value is of the kind char_str
    bool end_marker = false;
    // For the rule by the last value only.
    Kind running = Kind::unknown;    // of the greatest counted value, but a whole number does not replace a fraction
    bool both_number_texts = false;  // integer texts and real texts are counted
};

enum class Rule { by_counts, by_last_value };

struct Verdict {
    Kind kind = Kind::unknown;
    // The texts that are counted beside number texts stand for missing values.
    bool texts_are_markers = false;
};

Verdict decide(const VerdictFacts& facts, Rule rule) noexcept;

}  // namespace quorin::core
