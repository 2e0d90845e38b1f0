// Hollowing a body into walls of one thickness, open where the named faces were.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <string>
#include <vector>

namespace cad::geometry {

struct ShellWalls {
    std::vector<std::string> openings; // final face names in the body, removed
    double thickness = 0;
    bool outward = false; // walls grow out of the body instead of into it
    std::string feature;  // names the new faces: "<feature>.inner(<face>)", ".rim(...)"
};

// The hollowed body, checked to be one valid solid smaller than the body (inward).
Result<NamedShape> shellSolid(const NamedShape& body, const ShellWalls& walls);

} // namespace cad::geometry
