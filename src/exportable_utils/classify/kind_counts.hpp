// How often each kind was seen.
#pragma once

#include <array>
#include <cstddef>

#include "exportable_utils/classify/kinds.hpp"

namespace quorin::classify {

// One Python number for each kind.
class KindCounts {
  public:
    // All zero but for the rows that are missing.
    explicit KindCounts(Object missing_rows);
    [[nodiscard]] Object operator[](Kind kind) const { return counts_[static_cast<std::size_t>(kind)]; }
    void add(Kind kind, const Operand& more);
    [[nodiscard]] bool any(Kind kind) const;
    [[nodiscard]] Ref dictionary() const;

  private:
    std::array<Ref, kinds> counts_;
};

}  // namespace quorin::classify
