// Copies of named shapes for patterns and mirrors: moved or mirrored, their faces
// renamed after the copy ("Pattern1.copy2.Extrude2.end"), and many copies made into
// one tool for a single boolean.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>

#include <string>
#include <vector>

namespace cad::geometry {

// The face names a copy starts from: a finished shape's final names (a body), else
// its naming entries with their tags (a feature's tool).
std::vector<NamingEntry> faceNamesToCopy(const NamedShape& source);

// The source under the motion, every face name prefixed. A rigid motion only moves
// the shape; a mirror builds it again, turned inside out the right way.
Result<NamedShape> copyUnder(const NamedShape& source, const std::vector<NamingEntry>& names,
                             const gp_Trsf& motion, const std::string& prefix);

// The copies as one tool: a compound when no two can touch, else fused first, so
// the boolean never meets overlapping pieces in one argument.
Result<NamedShape> oneTool(std::vector<NamedShape> copies);

// The centre of mass of a shape's solids (of its faces or edges when it has none).
gp_Pnt centreOf(const TopoDS_Shape& shape);

} // namespace cad::geometry
