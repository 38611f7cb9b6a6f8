// The scan: one walk over the distinct values of a column, in ascending order, that gathers the facts of the verdict.
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

    // Texts that are markers if number texts decide the kind. The scan in memory keeps positions in XX only, because
    // there may be many and few results name them.
    Ref start_missing_string_values_list;
    std::size_t texts_below = 0;           // the first ones of XX
    std::vector<std::size_t> texts_above;  // after those

    [[nodiscard]] core::VerdictFacts facts(bool other_rows) const;
    [[nodiscard]] Ref start_missing_string_values(Object XX) const;
};

// Scans XX, with the number of rows of each value. Appends the end marker to `missing_values_list`.
Scan scan_distinct_values(Object XX, Object xx_xounts, Object missing_values_list, Object missing_rows);

// The same in memory, for texts, for numbers in an array of their own dtype and for Python's numbers. Returns false,
// with `scan` unchanged, if it gives up.
bool scan_memory(Object XX, Object xx_xounts, Object missing_values_list, Scan& scan);

}  // namespace quorin::classify
