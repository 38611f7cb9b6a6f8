// Gathers the facts for the short answer, for each storage of a column. Each function returns false to give up.
#pragma once

#include <vector>

#include "core/verdict.hpp"
#include "exportable_utils/classify/native_arguments.hpp"

namespace quorin::classify {

using core::Kind;
using references::ReferenceBits;

struct ShortFacts {
    // A text that is a marker but not a reference.
    struct Discovered {
        Ref text;
        bool scalar = false;  // to be converted to numpy.str_
    };

    core::VerdictFacts verdict;
    ReferenceBits references = 0;  // the references that occur
    // The texts that are markers by the verdict, ascending.
    std::vector<Discovered> texts;
    Discovered end_marker;  // if there is one
};

// For objects of which the first that is neither null nor a reference is a text.
bool gather_object_texts(NativeArguments& arguments, ShortFacts& facts);
bool gather_fixed_texts(NativeArguments& arguments, ShortFacts& facts);
// For objects that are numbers, nulls or references.
bool gather_number_objects(NativeArguments& arguments, ShortFacts& facts);
bool gather_floats(NativeArguments& arguments, ShortFacts& facts);
bool gather_integers(NativeArguments& arguments, ShortFacts& facts);

}  // namespace quorin::classify
