#include "exportable_utils/classify/kinds.hpp"

namespace quorin::classify {

Name text(Kind kind) {
    switch (kind) {
        case Kind::missing:
            return "missing"_py;
        case Kind::char_str:
            return "char_str"_py;
        case Kind::date_str:
            return "date_str"_py;
        case Kind::int_str:
            return "int_str"_py;
        case Kind::float_str:
            return "float_str"_py;
        case Kind::float_num:
            return "float_num"_py;
        case Kind::float_int_num:
            return "float_int_num"_py;
        case Kind::int_num:
            return "int_num"_py;
        case Kind::boolean:
            return "boolean"_py;
        case Kind::unknown:
            break;
    }
    return "Unknown"_py;
}

}  // namespace quorin::classify
