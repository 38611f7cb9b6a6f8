// The vocabulary of the classifier: what a column or one of its values can be.
#pragma once

#include <cstddef>

#include "python/ref.hpp"

namespace quorin::classify {

// In the order in which counts are reported. `date_str` is kept free and never assigned.
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

}  // namespace quorin::classify
