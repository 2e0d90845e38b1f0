// Final names of a shape's faces, edges and vertices, built from the naming entries
// features leave on a NamedShape, and the direction names of boxes and imports.
#pragma once

#include "core/NamedShape.h"

#include <string_view>

namespace cad::geometry {

// Rebuilds the index of final names for the shape's current topology: the first
// entry naming a face wins, duplicates are told apart by tag then centroid and
// numbered "[2]", "[3]"..., edges and vertices are named after the faces they join.
void finishNames(NamedShape& named);

// Names every planar face after the way it faces (prefix.top/.bottom/.front/.back/
// .left/.right), any other face prefix.face, then finishes.
NamedShape nameFacesByDirection(const TopoDS_Shape& shape, std::string_view prefix);

} // namespace cad::geometry
