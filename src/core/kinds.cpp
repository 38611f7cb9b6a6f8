#include "core/kinds.hpp"

#include <array>

namespace quorin::core {

const char* word_of(Kind kind) noexcept {
    static constexpr std::array<const char*, kind_count> words{"missing",   "char_str",  "date_str",      "int_str",
                                                               "float_str", "float_num", "float_int_num", "int_num",
                                                               "boolean",   "Unknown"};
    return words[static_cast<std::size_t>(kind)];
}

}  // namespace quorin::core
