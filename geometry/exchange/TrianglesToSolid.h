// Sewing loose triangles into a shape: every closed shell becomes a solid, open
// shells stay as they are, and coplanar triangles merge into larger faces.
#pragma once

#include "core/Result.h"

#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

#include <array>
#include <vector>

namespace cad::exchange {

using Triangle = std::array<gp_Pnt, 3>;

// The sewing tolerance for a mesh: its bounding box's diagonal times 0.0001, over
// the triangles with finite coordinates only.
double sewingTolerance(const std::vector<Triangle>& triangles);

// Sews the triangles with `tolerance`. Triangles with an edge shorter than 1e-9,
// corners in a line, or a coordinate that is not a finite number are skipped; when none is left:
// "There are no usable triangles.". The answer is a solid, a shell, or a compound
// of them when the triangles fall apart into several pieces.
Result<TopoDS_Shape> trianglesToSolid(const std::vector<Triangle>& triangles, double tolerance);

} // namespace cad::exchange
