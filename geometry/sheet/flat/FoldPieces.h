// Work done on a blank while it lay flat, carried back onto the bent part: what was
// cut away and what was added, each split by the walls and bends it lies in and
// moved (or bent) to where that wall or bend is on the part.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/sheet/flat/Unfolding.h"

#include <string>
#include <vector>

namespace cad::flat {

// Each piece on its own: pieces of one cut touch where a wall meets its bend, and
// the kernel takes no touching solids inside one tool.
struct CarriedWork {
    std::vector<geometry::NamedShape> cuts;  // to cut from the bent part
    std::vector<geometry::NamedShape> added; // to join to it
};

// Compares the flat part after the work (`worked`) with the blank. Faces of the
// cuts keep the names they had on the worked part; cuts across a bend are named
// <feature>.cut. Refuses, each in its own sentence, cuts outside the blank, cuts
// across a bend that don't go right through, and material added outside the blank
// or across a bend.
Result<CarriedWork> carryBack(const Unfolding& unfolding, const geometry::NamedShape& worked,
                              const std::string& featureName);

} // namespace cad::flat
