// What the view draws for a section analysis on one body: the cut plane, the body
// with the cut-away side removed, and the faces where the plane cuts its material
// (the caps to fill and hatch).
#pragma once

#include "core/Result.h"
#include "geometry/planes/SectionObject.h"

#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>

namespace cad::geometry {

struct SectionCut {
    gp_Ax3 plane;      // the cut; its normal points to the side cut away
    TopoDS_Shape kept; // the body without that side (null when nothing is left)
    TopoDS_Shape caps; // a compound of the faces on the cut plane (empty when it misses)
};

// The body cut along `plane`.
Result<SectionCut> cutAlong(const gp_Ax3& plane, const TopoDS_Shape& body);
// The body cut along the section's last computed plane.
Result<SectionCut> cutAlong(const SectionObject& section, const TopoDS_Shape& body);

} // namespace cad::geometry
