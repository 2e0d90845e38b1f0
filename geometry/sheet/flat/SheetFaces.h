// Reading a sheet's faces before it is laid flat: which are flat and which way they
// face, the largest of them, where two faces meet smoothly, and the face across the
// thickness from a flat face.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <optional>
#include <vector>

namespace cad::flat {

// The outward normal of a flat face as it lies in its solid; none for a curved face.
std::optional<gp_Dir> flatNormal(const TopoDS_Face& face);

double faceArea(const TopoDS_Shape& face);

// The largest flat face of the shape (the first of equals); null when it has none.
TopoDS_Face largestFlatFace(const TopoDS_Shape& shape);

// Points well inside the face (not on its boundary), from the middle of its
// parameter box outwards over finer grids; at most `wanted` of them.
std::vector<gp_Pnt> pointsInside(const TopoDS_Face& face, int wanted);

// Whether the two faces meet smoothly along the edge: the same outward normal on
// both sides at its middle, as a wall running into its bend does.
bool meetSmoothly(const TopoDS_Face& a, const TopoDS_Face& b, const TopoDS_Edge& edge);

// The flat face across the thickness from a flat face: straight through the
// material from inside the face, the first face met, flat and turned the other way.
// Several spots are tried and the distance most of them agree on wins, so a pocket
// under one spot doesn't decide it. None when no spot reaches such a face.
struct FaceAcross {
    TopoDS_Face face;
    double distance = 0;
};
std::optional<FaceAcross> faceAcross(const TopoDS_Shape& solid, const TopoDS_Face& face);

} // namespace cad::flat
