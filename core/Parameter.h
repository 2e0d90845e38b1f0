// A named parameter of a document: an expression other values can use by name.
#pragma once

#include "core/units/Length.h"

#include <string>

namespace cad {

struct Parameter {
    std::string name;                                // unique in the document; letter case matters
    std::string expression;                          // as entered, never empty
    units::Length unit = units::Length::Millimeters; // bare numbers meeting lengths are read in it
    bool isLength = false;                           // whether the last evaluation was a length
    std::string comment;
};

} // namespace cad
