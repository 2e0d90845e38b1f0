// One bend of a sheet laid flat: the cylindrical (or conical) face of the sheet's
// laid side turned into a flat strip as long as the bend's rules say, the move that
// lays the wall beyond it flat, and the way back from the flat strip to the bend.
#pragma once

#include "core/Result.h"
#include "geometry/sheet/metal/SheetRules.h"

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>

#include <array>

namespace cad::flat {

struct LaidBend {
    enum class Kind { Cylinder, Cone };

    TopoDS_Face bent; // the bend's face on the laid side
    TopoDS_Face flat; // that face laid flat: the strip, in the fixed face's plane
    Kind kind = Kind::Cylinder;
    gp_Ax3 surface;         // the cylinder's or cone's own placement
    double skinRadius = 0;  // the laid side's radius (a cone's at its reference circle)
    double semiAngle = 0;   // cones
    double startU = 0;      // where the wall it is reached from meets it
    double sweep = 0;       // from there to the far wall, signed, radians
    bool skinInside = true; // the laid side is the inside of the bend
    double thickness = 0;
    double neutralDepth = 0; // from the laid side to the layer that keeps its length
    gp_Trsf nearWall;        // lays the wall it is reached from flat
    gp_Trsf farWall;         // lays the walls beyond it flat

    // What the flat pattern reports.
    double angle = 0;       // between the two walls, degrees
    double innerRadius = 0; // mm
    double length = 0;      // the strip's width, mm
    bool up = true;         // the far wall rises toward the side the laid face looks at
    // The strip's two edges (the bend lines) and its middle, each from end to end.
    std::array<gp_Pnt, 2> nearLine, farLine, centreLine;
};

// Lays the bend `bend` of `solid` flat, reached from a wall along `edge` where the
// wall lies flat by `nearWall`. The laid side is the side of the bend face's own
// outward normal; `thickness` and the rules give the strip's length. Refuses a cone
// with no taper, a radius too small for the thickness and a strip that can't be made.
Result<LaidBend> layBendFlat(const TopoDS_Shape& solid, const TopoDS_Face& bend,
                             const TopoDS_Edge& edge, const gp_Trsf& nearWall, double thickness,
                             const sheet::SheetRules& rules);

// Where a point of the flat strip (or just past it), `depth` into the sheet from
// its laid side, lies on the bent part. Points before the strip stay with the near
// wall, points past it go with the far wall.
gp_Pnt bentPoint(const LaidBend& bend, const gp_Pnt& flatPoint);

} // namespace cad::flat
