// Building a hole's tool: the closed half profile of (radius, depth) points, each
// starting one labelled segment, revolved a full turn; faces named by their
// geometry; a modeled thread's ridge fused on at the first clearance and turn that
// joins cleanly and adds material.
#include "geometry/ShapeBoolean.h"
#include "geometry/holes/HoleTool.h"

#include "geometry/holes/ThreadRidge.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Ax3.hxx>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

namespace cad {

using geometry::NamedShape;

namespace {

constexpr double kAbove = 0.05; // the tool starts this far above the face

double halfAngleTan(double includedDegrees) {
    return std::tan(includedDegrees / 2 * std::numbers::pi / 180);
}

bool pointed(const ResolvedHole& s) { return !s.through && s.tipAngle != 0; }

int count(const TopoDS_Shape& shape, TopAbs_ShapeEnum type) {
    int n = 0;
    for (TopExp_Explorer e(shape, type); e.More(); e.Next()) ++n;
    return n;
}

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

// The depth of a point below the face, along the hole's axis.
double depthOf(const gp_Ax1& axis, const gp_Pnt& p) {
    return gp_Vec(axis.Location(), p).Dot(gp_Vec(axis.Direction()));
}

// The role whose expected value lies nearest.
const char* nearest(double value, const std::vector<std::pair<double, const char*>>& roles) {
    const char* best = roles.front().second;
    double distance = std::numeric_limits<double>::infinity();
    for (auto [at, role] : roles)
        if (std::abs(value - at) < distance) {
            distance = std::abs(value - at);
            best = role;
        }
    return best;
}

// Planes by their depth, cylinders by their radius, cones by their apex.
std::string roleOf(const TopoDS_Face& face, const ResolvedHole& s, const gp_Ax1& axis, double depth) {
    BRepAdaptor_Surface surface(face, Standard_False);
    switch (surface.GetType()) {
    case GeomAbs_Plane: {
        std::vector<std::pair<double, const char*>> roles{{-kAbove, "top"}};
        if (s.kind == "counterbore") roles.emplace_back(s.counterboreDepth, "floor");
        if (!pointed(s)) roles.emplace_back(depth, "bottom");
        return nearest(depthOf(axis, surface.Plane().Location()), roles);
    }
    case GeomAbs_Cylinder:
        return std::abs(surface.Cylinder().Radius() - s.diameter / 2) < 1e-6 ? "wall"
                                                                             : "counterbore";
    case GeomAbs_Cone:
        if (s.kind != "countersink") return "tip";
        if (!pointed(s)) return "countersink";
        return nearest(
            depthOf(axis, surface.Cone().Apex()),
            {{s.countersinkDiameter / 2 / halfAngleTan(s.countersinkAngle), "countersink"},
             {depth + s.diameter / 2 / halfAngleTan(s.tipAngle), "tip"}});
    default:
        return {};
    }
}

} // namespace

double throughDepth(const TopoDS_Shape& body, const gp_Ax1& axis, const ResolvedHole& drill) {
    Bnd_Box box;
    BRepBndLib::Add(body, box);
    double farthest = 0;
    if (!box.IsVoid()) {
        double x[2], y[2], z[2];
        box.Get(x[0], y[0], z[0], x[1], y[1], z[1]);
        farthest = -std::numeric_limits<double>::infinity();
        for (double cx : x)
            for (double cy : y)
                for (double cz : z)
                    farthest = std::max(farthest, depthOf(axis, gp_Pnt(cx, cy, cz)));
    }
    return farthest + 1 + (drill.modeled ? 2 * drill.threadPitch : 0);
}

double holeThreadLength(const ResolvedHole& drill, double depth) {
    const double available = depth - wallStart(drill);
    return drill.threadLength > 0 ? std::min(drill.threadLength, available) : available;
}

Result<NamedShape> holeTool(const ResolvedHole& s, const gp_Ax1& axis, double depth,
                            std::string_view feature) {
    const double r = s.diameter / 2;
    const double wall = wallStart(s);
    const bool tip = pointed(s);
    if (!(wall < depth) || !std::isfinite(depth) || (tip && !(s.tipAngle > 0 && s.tipAngle < 180)))
        return fail("The hole's profile couldn't be built; check its sizes.");

    // (radius, depth) corners in order; each starts one segment of the outline.
    std::vector<std::pair<double, double>> corners{{0, -kAbove}};
    if (s.kind == "counterbore") {
        corners.insert(corners.end(), {{s.counterboreDiameter / 2, -kAbove},
                                       {s.counterboreDiameter / 2, s.counterboreDepth},
                                       {r, s.counterboreDepth}});
    } else if (s.kind == "countersink") {
        corners.insert(
            corners.end(),
            {{s.countersinkDiameter / 2 + kAbove * halfAngleTan(s.countersinkAngle), -kAbove},
             {r, wall}});
    } else {
        corners.emplace_back(r, -kAbove);
    }
    corners.emplace_back(r, depth);
    corners.emplace_back(0, tip ? depth + r / halfAngleTan(s.tipAngle) : depth);

    try {
        const gp_Ax3 frame(axis.Location(), axis.Direction());
        BRepBuilderAPI_MakePolygon outline;
        for (auto [radius, down] : corners)
            outline.Add(frame.Location().Translated(gp_Vec(frame.XDirection()) * radius +
                                                    gp_Vec(frame.Direction()) * down));
        outline.Close();
        if (!outline.IsDone())
            return fail("The hole's profile couldn't be built; check its sizes.");
        BRepBuilderAPI_MakeFace face(outline.Wire(), Standard_True);
        if (!face.IsDone()) return fail("The hole's profile couldn't be built; check its sizes.");
        BRepPrimAPI_MakeRevol revolved(face.Face(), axis, 2 * std::numbers::pi);
        if (!revolved.IsDone()) return fail("The hole's shape couldn't be built; check its sizes.");

        NamedShape tool(revolved.Shape());
        for (TopExp_Explorer e(tool.shape(), TopAbs_FACE); e.More(); e.Next()) {
            std::string role = roleOf(TopoDS::Face(e.Current()), s, axis, depth);
            if (!role.empty()) tool.addName(e.Current(), std::string(feature) + "." + role);
        }
        return tool;
    } catch (const Standard_Failure&) {
        return fail("The hole's shape couldn't be built; check its sizes.");
    }
}

Result<NamedShape> threadedHoleTool(const NamedShape& tool, const ResolvedHole& s, const gp_Ax1& axis,
                                    double depth, std::string_view feature,
                                    std::string_view point) {
    const double length = holeThreadLength(s, depth);
    const gp_Pnt start = axis.Location().Translated(gp_Vec(axis.Direction()) * wallStart(s));
    const std::string name = std::string(feature) + ".thread(" + std::string(point) + ")";
    const double before = volumeOf(tool.shape());

    std::vector<double> clearances{0.05};
    if (0.1 * s.threadPitch > 0.05) clearances.push_back(0.1 * s.threadPitch);
    std::string ridgeError;
    bool anyRidge = false;
    for (double clearance : clearances) {
        for (double turn : {0.0, 0.37, 0.81, 1.23}) {
            gp_Ax3 frame(start, axis.Direction());
            frame.Rotate(gp_Ax1(start, axis.Direction()), turn);
            Result<TopoDS_Shape> ridge =
                threadRidge(frame, length, s.threadPitch, s.diameter / 2 - clearance,
                            s.threadMajor / 2, s.threadPitch / 8);
            if (!ridge) {
                if (ridgeError.empty()) ridgeError = ridge.error();
                continue;
            }
            anyRidge = true;
            NamedShape named(*ridge);
            for (TopExp_Explorer e(*ridge, TopAbs_FACE); e.More(); e.Next())
                named.addName(e.Current(), name);
            Result<NamedShape> joined = geometry::shapeBoolean(
                tool, named, geometry::BooleanKind::Join, geometry::kKernelAttemptLimit,
                geometry::MergeFaces::No);
            if (joined && count(joined->shape(), TopAbs_SOLID) == 1 &&
                volumeOf(joined->shape()) - before > 1e-6)
                return joined;
        }
    }
    if (!anyRidge && !ridgeError.empty()) return fail(ridgeError);
    return fail("The thread couldn't be joined to the hole.");
}

} // namespace cad
