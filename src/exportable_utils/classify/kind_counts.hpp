// The number of distinct values and of rows of each kind.
#pragma once

#include <array>

#include "core/kinds.hpp"
#include "python/ref.hpp"

namespace quorin::classify {

using core::Kind;

Name name_of(Kind kind);

class KindCounts {
  public:
    // All counts are 0, except for the rows of Kind::missing.
    explicit KindCounts(Object missing_rows);
    void add(Kind kind, Py_ssize_t distinct, const Operand& rows);
    [[nodiscard]] Py_ssize_t distinct(Kind kind) const { return distinct_[static_cast<std::size_t>(kind)]; }
    [[nodiscard]] bool any_missing_rows() const;
    // Dictionaries from the word of each kind to its number of distinct values or of rows.
    [[nodiscard]] Ref distinct_by_word() const;
    [[nodiscard]] Ref rows_by_word() const;

  private:
    std::array<Py_ssize_t, core::kind_count> distinct_{};
    std::array<Ref, core::kind_count> rows_;  // numbers of any type, added with their own operators
};

}  // namespace quorin::classify
