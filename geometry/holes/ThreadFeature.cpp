// Laying a thread out on a cylindrical face (inside or outside, which end is free,
// which size) and, for a modeled thread, cutting its ridge from the body.
#include "geometry/ShapeBoolean.h"
#include "geometry/holes/ThreadFeature.h"

#include "geometry/holes/ThreadRidge.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepTools.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Ax3.hxx>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace cad {

using geometry::NamedShape;

namespace {

// The ISO external thread's minor diameter lies 1.226869 pitches below the major.
constexpr double kExternalMinorFactor = 1.226869;
constexpr double kTan30 = 0.5773503;

bool outsideMaterial(const TopoDS_Shape& body, const gp_Pnt& p) {
    BRepClass3d_SolidClassifier classifier(body, p, 1e-6);
    return classifier.State() == TopAbs_OUT;
}

} // namespace

Result<ThreadLayout> layOutThread(const NamedShape& body, std::string_view faceName,
                                  std::string_view sizeName, double length) {
    const std::string name(faceName);
    std::optional<TopoDS_Shape> found = body.findByName(faceName);
    if (!found || found->ShapeType() != TopAbs_FACE)
        return fail(name + " no longer exists: the geometry it was on has changed.");
    const TopoDS_Face face = TopoDS::Face(*found);
    BRepAdaptor_Surface surface(face);
    if (surface.GetType() != GeomAbs_Cylinder)
        return fail(name + " isn't cylindrical; threads go on round faces.");
    const gp_Cylinder cylinder = surface.Cylinder();
    double u1 = 0, u2 = 0, v1 = 0, v2 = 0;
    BRepTools::UVBounds(face, u1, u2, v1, v2);
    if (!(v2 - v1 > 1e-7)) return fail(name + " has no length to thread.");

    ThreadLayout layout;
    layout.radius = cylinder.Radius();
    const gp_Ax1 axis = cylinder.Axis();
    auto onAxis = [&](double v) {
        return axis.Location().Translated(gp_Vec(axis.Direction()) * v);
    };
    // A hole's axis runs through air; a boss's through material.
    layout.internal = outsideMaterial(body.shape(), onAxis((v1 + v2) / 2));

    // The free end is the one with air beyond it, looked at just inside the face's radius.
    const double offset = std::max(0.2, 0.2 * layout.radius);
    const gp_Pnt onFace = surface.Value((u1 + u2) / 2, (v1 + v2) / 2);
    const gp_Vec radial = gp_Vec(onAxis((v1 + v2) / 2), onFace) * 0.9;
    const bool topFree = outsideMaterial(body.shape(), onAxis(v2 + offset).Translated(radial));
    const bool bottomFree = outsideMaterial(body.shape(), onAxis(v1 - offset).Translated(radial));
    bool fromV1 = bottomFree && !topFree;
    if (bottomFree == topFree) {
        // Free at both ends (or neither): thread from the upper end, as a bolt stands.
        const gp_Pnt a = onAxis(v1), b = onAxis(v2);
        fromV1 = std::make_tuple(a.Z(), a.Y(), a.X()) > std::make_tuple(b.Z(), b.Y(), b.X());
    }
    layout.axis = fromV1 ? gp_Ax1(onAxis(v1), axis.Direction())
                         : gp_Ax1(onAxis(v2), axis.Direction().Reversed());

    if (!sizeName.empty()) {
        layout.size = findThreadSize(sizeName);
        if (!layout.size)
            return fail("'" + std::string(sizeName) +
                        "' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC).");
    } else {
        Result<const ThreadSize*> matched = matchThreadSize(2 * layout.radius, layout.internal);
        if (!matched) return Error(matched);
        layout.size = *matched;
    }
    const double whole = v2 - v1;
    layout.length = length > 0 && length <= whole ? length : whole;
    return layout;
}

Result<NamedShape> ThreadFeature::apply(const NamedShape& input, const Document&) const {
    if (input.isNull())
        return fail(face + " no longer exists: the geometry it was on has changed.");
    try {
        Result<ThreadLayout> layout = layOutThread(input, face, size, length);
        if (!layout) return Error(layout);
        // A cosmetic thread leaves the shape alone; the view draws it.
        if (!modeled) return input;

        const double pitch = layout->size->pitch;
        const double major = layout->size->major;
        double r1 = 0, r2 = 0, crest = 0;
        if (layout->internal) {
            r1 = layout->radius - 0.05;
            r2 = major / 2;
            crest = pitch / 8;
            if (!(r2 > r1))
                return fail(layout->size->name + " thread doesn't fit this hole's size.");
        } else {
            r1 = layout->radius + 0.05;
            r2 = (major - kExternalMinorFactor * pitch) / 2;
            crest = 0.875 * pitch - 2 * 0.6134 * pitch * kTan30;
            if (!(r2 < r1))
                return fail(layout->size->name + " thread doesn't fit this cylinder's size.");
        }
        // The helix starts 0.05 mm before the free end so the thread runs out cleanly.
        const gp_Dir along = layout->axis.Direction();
        const gp_Pnt start = layout->axis.Location().Translated(gp_Vec(along) * -0.05);
        Result<TopoDS_Shape> ridge =
            threadRidge(gp_Ax3(start, along), layout->length + 0.05, pitch, r1, r2, crest);
        if (!ridge) return Error(ridge);

        NamedShape tool(*ridge);
        const std::string name = id + ".thread(" + face + ")";
        for (TopExp_Explorer e(*ridge, TopAbs_FACE); e.More(); e.Next())
            tool.addName(e.Current(), name);
        return geometry::shapeBoolean(input, tool, geometry::BooleanKind::Cut,
                                      geometry::kKernelAttemptLimit, geometry::MergeFaces::No);
    } catch (const Standard_Failure&) {
        return fail("The thread couldn't be swept.");
    }
}

} // namespace cad
