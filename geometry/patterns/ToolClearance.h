// Room round a cutting tool: the tool grown sideways by one clearance and at its
// ends, along an axis, by another, so a pin cut from a block leaves a looser hole.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <TopoDS_Shape.hxx>
#include <gp_Dir.hxx>

#include <optional>
#include <string>

namespace cad::geometry {

// The tool grown by `radial` all round, then its ends moved to `axial` past the
// tool's own (exact for prisms along the axis, such as pins). Its faces keep the
// tool's names; a failure is `failure`.
Result<NamedShape> grownTool(const NamedShape& tool, double radial, double axial,
                             const gp_Dir& axis, const std::string& failure);

// The axis of the tool's largest cylindrical face, if it has one.
std::optional<gp_Dir> ownAxis(const TopoDS_Shape& tool);

} // namespace cad::geometry
