// Which texts the interpreter's int() and float() accept.
#pragma once

#include <cstddef>

namespace quorin::kernels {

// Characters side by side, `width` bytes (1, 2 or 4) each.
struct TextView {
    const void* characters;
    std::size_t length;
    int width;
    // Of one byte each and ASCII alone, with sixteen bytes before the first that may be read as well, whatever they
    // hold; on little-endian machines only. So the last eight characters of a text, however short, are one read away.
    bool compact = false;
};

enum class NumberText {
    none,     // neither accepts it
    integer,  // int() and float() accept it
    real,     // float() alone accepts it
    ask       // only the interpreter can say: not ASCII, or more digits than every digit limit allows
};

NumberText classify_number(TextView text) noexcept;

}  // namespace quorin::kernels
