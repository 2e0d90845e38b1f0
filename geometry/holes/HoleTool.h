// The solid a hole cuts: the hole's half profile revolved about its axis, its faces
// named by role, with a modeled thread's ridge joined to it when there is one.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/holes/ResolvedHole.h"

#include <TopoDS_Shape.hxx>
#include <gp_Ax1.hxx>

#include <string>
#include <string_view>

namespace cad {

// How deep a through hole goes from `axis`'s start: past the far side of the body's
// bounding box by 1 mm, and by two pitches more for a modeled thread to run out.
double throughDepth(const TopoDS_Shape& body, const gp_Ax1& axis, const ResolvedHole& drill);

// The hole's tool: starts 0.05 mm above the face so the cut is clean; faces are named
// "<feature>.top", ".wall", ".bottom", ".tip", ".counterbore", ".floor", ".countersink".
Result<geometry::NamedShape> holeTool(const ResolvedHole& drill, const gp_Ax1& axis, double depth,
                                      std::string_view feature);

// The tool with a modeled thread's ridge joined on, its faces named
// "<feature>.thread(<point>)".
Result<geometry::NamedShape> threadedHoleTool(const geometry::NamedShape& tool,
                                              const ResolvedHole& drill, const gp_Ax1& axis,
                                              double depth, std::string_view feature,
                                              std::string_view point);

// The length a tapped hole's thread runs from where the full diameter starts.
double holeThreadLength(const ResolvedHole& drill, double depth);

} // namespace cad
