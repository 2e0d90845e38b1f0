// The shell: the kernel's thick solid by join, refused unless it is one valid solid
// that (inward) holds less than the body did. The walls' new faces are named after
// the faces they follow, the faces round an opening after the face removed there.
#include "geometry/ShellSolid.h"

#include "geometry/NameHistory.h"
#include "geometry/Naming.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepOffsetAPI_MakeThickSolid.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <gp_Pln.hxx>

#include <optional>

namespace cad::geometry {

namespace {

constexpr const char* kMayBeTooThick =
    "The shell couldn't be built: the walls may be too thick for the body's shape.";
constexpr const char* kTooThick =
    "The shell couldn't be built: the walls are too thick for the body's shape.";

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

std::optional<gp_Pln> planeOf(const TopoDS_Shape& face) {
    BRepAdaptor_Surface surface(TopoDS::Face(face), false);
    if (surface.GetType() != GeomAbs_Plane) return std::nullopt;
    return surface.Plane();
}

// A face lying in the plane: parallel or opposite normals, and on it.
bool liesIn(const TopoDS_Shape& face, const gp_Pln& plane) {
    std::optional<gp_Pln> own = planeOf(face);
    return own && own->Axis().IsParallel(plane.Axis(), 1e-9) &&
           plane.Distance(own->Location()) < 1e-6;
}

} // namespace

Result<NamedShape> shellSolid(const NamedShape& body, const ShellWalls& walls) {
    if (body.isNull()) return fail("A shell needs a body to hollow.");
    if (walls.openings.empty())
        return fail("Choose at least one face to remove (where the shell is open).");
    if (walls.thickness <= 1e-7) return fail("The shell thickness must be greater than zero.");

    try {
        TopTools_ListOfShape removed;
        std::vector<std::pair<gp_Pln, std::string>> openingPlanes;
        for (const std::string& name : walls.openings) {
            std::optional<TopoDS_Shape> found = body.findByName(name);
            if (!found || found->ShapeType() != TopAbs_FACE)
                return fail(name + " no longer exists: the geometry it was on has changed.");
            removed.Append(*found);
            if (std::optional<gp_Pln> plane = planeOf(*found))
                openingPlanes.emplace_back(*plane, name);
        }

        BRepOffsetAPI_MakeThickSolid builder;
        builder.MakeThickSolidByJoin(
            body.shape(), removed, walls.outward ? walls.thickness : -walls.thickness, 1e-4,
            BRepOffset_Skin, Standard_False, Standard_False, GeomAbs_Intersection, Standard_False);
        if (!builder.IsDone() || builder.Shape().IsNull()) return fail(kMayBeTooThick);
        const TopoDS_Shape& shape = builder.Shape();
        if (!BRepCheck_Analyzer(shape).IsValid()) return fail(kMayBeTooThick);
        int solids = 0;
        for (TopExp_Explorer e(shape, TopAbs_SOLID); e.More(); e.Next()) ++solids;
        const double volume = volumeOf(shape);
        if (solids != 1 || volume <= 1e-7 ||
            (!walls.outward && volume >= volumeOf(body.shape()) - 1e-7))
            return fail(kTooThick);

        // The removed faces pass nothing on: what the kernel makes of them is the rim.
        std::vector<NamingEntry> kept;
        for (const NamingEntry& entry : body.entries()) {
            bool opening = false;
            for (const TopoDS_Shape& face : removed)
                opening = opening || face.IsSame(entry.subShape);
            if (!opening) kept.push_back(entry);
        }
        NamedShape result(shape);
        result.entries() = carryNames(kept, builder);

        const std::string wall = walls.feature + (walls.outward ? ".outer(" : ".inner(");
        const NamedShape::Index& index = body.index();
        for (int f = 1; f <= index.faces.Extent(); ++f) {
            const std::string& name = index.faceNames[static_cast<std::size_t>(f - 1)];
            for (const TopoDS_Shape& made : builder.Generated(index.faces(f)))
                if (made.ShapeType() == TopAbs_FACE) result.addName(made, wall + name + ")");
        }
        for (TopExp_Explorer e(shape, TopAbs_FACE); e.More(); e.Next())
            for (const auto& [plane, name] : openingPlanes)
                if (liesIn(e.Current(), plane))
                    result.addName(e.Current(), walls.feature + ".rim(" + name + ")");
        finishNames(result);
        return result;
    } catch (const Standard_Failure&) {
        return fail(kMayBeTooThick);
    }
}

} // namespace cad::geometry
