// What revolve, sweep and loft share: the faces a swept profile makes named F.start,
// F.end and F.side.<edge> (joined by geometry/SweptPieces.h), and the check that the
// result is one valid solid.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/Profile.h"
#include "geometry/SweptPieces.h"

#include <BRepPrimAPI_MakeSweep.hxx>
#include <TopoDS_Face.hxx>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace cad::geometry {

// The names of the edges of a face or wire, in explorer order (empty when unnamed).
std::vector<std::string> edgeNamesOf(const TopoDS_Shape& shape, const Profile& profile);
// The smallest non-empty name, byte order: the tag that tells equal names of
// different regions apart.
std::string smallestName(const std::vector<std::string>& names);

// Entries "<feature>.<side>.<edge name>" (or ".edge" when unnamed) for the faces the
// operation generated from each edge of `swept` (a face or wire), `names` its edge
// names in explorer order.
std::vector<NamingEntry> sideNames(BRepBuilderAPI_MakeShape& operation, const TopoDS_Shape& swept,
                                   const std::vector<std::string>& names,
                                   const std::string& feature, const std::string& side,
                                   const std::string& tag);

// Sweeps every face of the profile with `make` (given the face as it is to be
// swept: `faces[i]` is the profile's i-th face moved where it starts). A piece with
// negative volume is swept again from the reversed face. With `ends`, the first and
// last shapes are named F.start and F.end. `kernelFailure` is the sentence when the
// kernel can't sweep a face.
using MakeSweep = std::function<std::unique_ptr<BRepPrimAPI_MakeSweep>(const TopoDS_Face&)>;
Result<std::vector<SweptPiece>> sweepFaces(const Profile& profile,
                                           const std::vector<TopoDS_Face>& faces,
                                           const MakeSweep& make, bool ends,
                                           const std::string& feature, const char* kernelFailure);

// The shape with its names finished, when it holds a solid and is valid; else
// `noSolid` or `invalid`.
Result<NamedShape> checkedSolid(NamedShape shape, const char* noSolid, const char* invalid);

} // namespace cad::geometry
