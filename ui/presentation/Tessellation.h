// How finely bodies are meshed for display: tied to each body's size.
#pragma once

#include <Prs3d_Drawer.hxx>
#include <TopoDS_Shape.hxx>

namespace cad::ui {

// 5 degrees between neighbouring facets at most.
inline constexpr double kTessellationAngle = 0.0873;

// Meshes the shape with the deviation its size calls for and sets the drawer to the
// same values, so the presentation uses that mesh as it is.
void applyTessellation(const TopoDS_Shape& shape, const Handle(Prs3d_Drawer) & drawer);

} // namespace cad::ui
