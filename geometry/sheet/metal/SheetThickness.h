// How thick a sheet is, measured on its shape: from a flat face straight through to
// the face across from it, for the whole body (its largest flat face) or at one spot.
#pragma once

#include "core/Result.h"

#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <optional>

class IntCurvesFace_ShapeIntersector;

namespace cad::sheet {

// The outward normal of a flat face as it lies in its shape; none for a curved face.
std::optional<gp_Dir> flatFaceNormal(const TopoDS_Face& face);

// Along the ray from `from` in `direction`, the first face the loaded intersector
// meets past its start, and how far away; none when it meets nothing.
struct FaceMet {
    TopoDS_Face face;
    double distance = 0;
};
std::optional<FaceMet> firstFaceMet(IntCurvesFace_ShapeIntersector& hits, const gp_Pnt& from,
                                    const gp_Dir& direction);

// From a point inside the solid, straight along `direction` to the first face met:
// its distance when that face is flat and faces `direction` (the sheet's other
// side), else none. None too when the point isn't inside.
std::optional<double> distanceAcross(const TopoDS_Shape& shape, const gp_Pnt& from,
                                     const gp_Dir& direction);

// The sheet's thickness: from its largest flat face to the face across from it.
// "This body isn't a sheet: there's no face across from its largest face. Give the
// thickness." when there is none.
Result<double> measureSheetThickness(const TopoDS_Shape& shape);

} // namespace cad::sheet
