// Gathering the facts of a short answer, for each storage of a column. Each function returns false to give up.
#pragma once

#include <vector>

#include "core/verdict.hpp"
#include "exportable_utils/classify/native_arguments.hpp"

namespace quorin::classify {

using core::Kind;
using references::ReferenceBits;

struct ShortFacts {
    // A text that is a marker although it is not a reference.
    struct Discovered {
        Ref text;
        bool scalar = false;  // to be converted into an element of a fixed-width text array
    };

    core::VerdictFacts verdict;
    ReferenceBits references = 0;  // that occur
    // If the verdict is that texts are markers: these, ascending.
    std::vector<Discovered> texts;
    Discovered end_marker;  // if there is one
};

// Objects of which the first that is neither null nor a reference is a text.
bool gather_object_texts(NativeArguments& arguments, ShortFacts& facts);
bool gather_fixed_texts(NativeArguments& arguments, ShortFacts& facts);
// Objects that are numbers, nulls or references.
bool gather_number_objects(NativeArguments& arguments, ShortFacts& facts);
bool gather_floats(NativeArguments& arguments, ShortFacts& facts);
bool gather_integers(NativeArguments& arguments, ShortFacts& facts);

}  // namespace quorin::classify
