// A flat solid seen square to a plane, as a drawing: the outside of what it covers
// on CUT_OUTSIDE, openings right through on CUT_INSIDE, and the outlines of pockets
// in its two faces (engraving) on ENGRAVE. Lines, arcs and circles stay exact; other
// curves become polylines within a micrometre.
#pragma once

#include "core/Result.h"
#include "sketch/drawing/Drawing.h"

#include <TopoDS_Edge.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pnt.hxx>

#include <string>

namespace cad::flat {

struct FlatOutline {
    drawing::Drawing drawing; // mm, in the plane's own x and y
    int holes = 0;            // openings right through
};

// `solid` lies behind `plane` (its main direction looks out of the material), its
// flat faces parallel to it `thickness` apart. "The flat pattern came out empty."
// when nothing faces the plane; "The sheet's outline doesn't close." and "The
// sheet's outline isn't flat." for an outline that can't be cut.
Result<FlatOutline> drawFlat(const TopoDS_Shape& solid, const gp_Ax3& plane, double thickness);

// A point in the plane's own x and y.
drawing::DrawingPoint onPlane(const gp_Ax3& plane, const gp_Pnt& point);

// The edge, lying in the plane, as drawing items on `layer`.
void drawEdge(const TopoDS_Edge& edge, const gp_Ax3& plane, const std::string& layer,
              drawing::Drawing& into);

} // namespace cad::flat
