// The helical ridge that makes a modeled thread: a trapezoid (or triangle) swept
// along a helix, shared by tapped holes and thread features.
#pragma once

#include "core/Result.h"

#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>

namespace cad {

// The ridge about the frame's axis, starting in the frame's XZ half-plane on the X
// side and rising by `length` along the axis. Its base (on the helix, radius r1) is
// as wide as the flanks at 60° and the crest flat need; its crest (radius r2) is
// `crestFlat` wide. The faces come divided into bands of about one turn each. More
// than 1,000 turns are refused: modeling them would take minutes.
Result<TopoDS_Shape> threadRidge(const gp_Ax3& frame, double length, double pitch, double r1,
                                 double r2, double crestFlat);

} // namespace cad
