// The box primitive: one solid from a corner along +X, +Y and +Z.
#pragma once

#include "core/Result.h"

#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

namespace cad::geometry {

Result<TopoDS_Shape> makeBox(double width, double depth, double height, const gp_Pnt& corner);

} // namespace cad::geometry
