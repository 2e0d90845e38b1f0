// How the view draws planes: reference planes as a translucent square on their
// placement with the plane's own x and y axes across it, picked as a whole; the
// origin's planes and section planes share the translucent look.
#pragma once

#include <AIS_Shape.hxx>
#include <Quantity_Color.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>

namespace cad::ui {

// The reference planes' orange.
Quantity_Color referencePlaneColour();

// A face on the placement's plane spanning -halfX..halfX along its x direction
// and -halfY..halfY along its y direction, centred on the placement's origin.
TopoDS_Shape planeRectangle(const gp_Ax3& placement, double halfX, double halfY);

// A square `halfWidth` either side of the placement's origin plus the two axis lines
// across it, as one compound.
TopoDS_Shape referencePlaneShape(const gp_Ax3& placement, double halfWidth);

// Shaded, 0.82 transparent in `colour`, outlined 1.4 wide in the same colour.
void applyPlaneLook(AIS_Shape& plane, const Quantity_Color& colour);

// A reference plane's shape with the plane look and its axis lines 1.6 wide,
// dash-dot.
Handle(AIS_Shape) makeReferencePlanePresentation(const TopoDS_Shape& shape);

} // namespace cad::ui
