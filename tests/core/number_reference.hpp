// A reference implementation of the number grammar: two regular expressions, written from the documentation of int()
// and float(), not from the kernel.
#pragma once

#include <regex>
#include <string>

#include "core/text/number_text.hpp"

namespace quorin::tests {

// For ASCII texts with fewer digits than the least limit of the interpreter.
inline core::NumberText number_by_reference(const std::string& text) {
    static const std::string space = "[ \\t\\n\\v\\f\\r]*";
    static const std::string digits = "[0-9](?:_?[0-9])*";
    static const std::regex integer(space + "[-+]?" + digits + space);
    static const std::regex real(space + "[-+]?(?:(?:" + digits + "(?:\\.(?:" + digits + ")?)?|\\." + digits +
                                 ")(?:[eE][-+]?" + digits + ")?|[iI][nN][fF](?:[iI][nN][iI][tT][yY])?|[nN][aA][nN])" +
                                 space);
    if (std::regex_match(text, integer)) return core::NumberText::integer;
    if (std::regex_match(text, real)) return core::NumberText::real;
    return core::NumberText::none;
}

}  // namespace quorin::tests
