// The column and the reference list of a call of numpy_whatis, read once for all native steps.
#pragma once

#include <optional>

#include "exportable_utils/references/references.hpp"
#include "python/inputs/column_source.hpp"

namespace quorin::classify {

using references::References;

struct NativeArguments {
    NativeArguments(Object X, Object missing_values_reference_list)
        : column(ColumnSource::single(X)),
          references(column ? references::read_references(missing_values_reference_list, *column) : std::nullopt) {}

    // Whether native routes can read both.
    [[nodiscard]] bool known() const noexcept { return references.has_value(); }

    std::optional<ColumnSource> column;
    std::optional<References> references;
    // Set by the short answer if both a text and a number occur that are not references: a native sort of them would
    // fail.
    bool mixed = false;
};

}  // namespace quorin::classify
