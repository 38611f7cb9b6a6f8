// The classifier's column and list, read once for all native steps of a call.
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

    // Whether native routes know both.
    [[nodiscard]] bool known() const noexcept { return references.has_value(); }

    std::optional<ColumnSource> column;
    std::optional<References> references;
    // Set by the short answer: a text and a number are left beside the references, so that no native sort succeeds.
    bool mixed = false;
};

}  // namespace quorin::classify
