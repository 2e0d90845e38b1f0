// A bent sheet from an open chain of sketch lines: every line a flat wall of the
// thickness, every corner a cylindrical bend of the inner radius tangent to both
// walls, the cross-section run along the sketch's normal for the width.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <gp_Ax3.hxx>
#include <gp_Pnt2d.hxx>

#include <string>
#include <string_view>
#include <vector>

namespace cad::sheet {

// One line of the profile, on the sketch plane, as it was drawn.
struct ProfileLine {
    std::string name; // "Line1"
    gp_Pnt2d start, end;
};

// Where the thickness goes, walking the chain from its start: to the left of the
// lines, to their right, or half each way.
enum class ThicknessSide { Left, Right, Centre };

struct BentProfile {
    gp_Ax3 plane;                   // the sketch's plane; lines are in its (x, y)
    std::vector<ProfileLine> lines; // in sketch order, drawn either way
    double thickness = 1.5;
    double bendRadius = 1.5; // inner
    ThicknessSide side = ThicknessSide::Left;
    // Along the plane's normal, from `widthFrom` to `widthTo` (widthFrom < widthTo).
    double widthFrom = 0, widthTo = 0;
};

// The bent part, named after feature F: each wall's sheet faces F.<line> (on the
// line; the right-hand one when centred) and F.<line>.opposite, the bends
// F.Bend(<a>,<b>) and F.Bend(<a>,<b>).opposite, the chain's ends F.start_cap and
// F.end_cap, the width's ends F.cap (where the width starts) and F.cap.opposite.
// The chain starts at the free end of the first line drawn. Refuses lines that
// aren't one chain, a closed chain, lines with no length, lines folding right
// back and lines too short for the bends at their ends, each in its own sentence.
Result<geometry::NamedShape> makeBentProfile(const BentProfile& profile,
                                             std::string_view featureName);

} // namespace cad::sheet
