// The scan: one pass over the distinct values of a column, in ascending order, that gathers the facts for the verdict.
#pragma once

#include <cstddef>
#include <vector>

#include "core/verdict.hpp"
#include "exportable_utils/classify/kind_counts.hpp"

namespace quorin::classify {

struct Scan {
    explicit Scan(Object missing_rows);

    KindCounts counts;
    Kind running = Kind::unknown;  // see core::VerdictFacts
    bool integer_texts = false;
    bool real_texts = false;
    Ref weird_new_missing_values_list;  // the end marker, if there is one

    // Texts that are markers if number texts decide the kind. The native scan stores only their positions in XX,
    // because there may be many texts and few results contain them.
    Ref start_missing_string_values_list;
    std::size_t texts_below = 0;           // XX[:texts_below]
    std::vector<std::size_t> texts_above;  // positions after those

    [[nodiscard]] core::VerdictFacts facts(bool other_rows) const;
    [[nodiscard]] Ref start_missing_string_values(Object XX) const;
};

// Scans the distinct values XX, with xx_xounts rows each. Appends the end marker to `missing_values_list`.
Scan scan_distinct_values(Object XX, Object xx_xounts, Object missing_values_list, Object missing_rows);

// The native route of the scan, for texts, arrays of numbers and Python numbers. Returns false, with `scan` unchanged,
// to give up.
bool scan_memory(Object XX, Object xx_xounts, Object missing_values_list, Scan& scan);

}  // namespace quorin::classify
