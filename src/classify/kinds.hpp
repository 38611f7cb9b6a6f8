// What a column or one of its values can be, and how often each kind was seen.
#pragma once

#include "interp/ref.hpp"

#include <array>
#include <cstddef>

namespace quorin::classify {

// In the order in which the counts are reported. `date_str` is kept free and never assigned.
enum class Kind {
    missing,
    char_str,
    date_str,
    int_str,
    float_str,
    float_num,
    float_int_num,
    int_num,
    boolean,
    unknown
};

constexpr std::size_t kinds = 10;

Name text(Kind kind);

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
