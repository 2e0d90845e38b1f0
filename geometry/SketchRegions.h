// From a sketch's curves to closed planar regions: the curves split a big face on
// the sketch plane, and the pieces fill even-odd from the outside in, so a loop
// inside a loop is a hole and a loop inside the hole is solid again.
#pragma once

#include "core/Result.h"
#include "geometry/Profile.h"

#include <gp_Ax3.hxx>

#include <string>
#include <vector>

namespace cad {
class SketchObject;
}

namespace cad::geometry {

// One sketch curve in model space with the name its faces and regions carry.
struct NamedEdge {
    TopoDS_Edge edge;
    std::string name; // "Line1", "Rectangle1.top", "Polygon1.edge2", "Slot1"
};

gp_Ax3 sketchPlane(const SketchObject& sketch);
// The sketch's profile curves (construction geometry left out) as edges on its plane.
std::vector<NamedEdge> sketchEdges(const SketchObject& sketch);

// The closed regions of the curves. With allBounded, the holes (faces of level 0
// other than the outside) are regions too, so a hole can be picked on its own.
Result<Profile> buildSketchRegions(const gp_Ax3& plane, const std::vector<NamedEdge>& curves,
                                   bool allBounded);

// The curves that bound no region (open lines, dangling strokes), in sketch order.
Result<std::vector<NamedEdge>> openCurves(const gp_Ax3& plane,
                                          const std::vector<NamedEdge>& curves);

} // namespace cad::geometry
