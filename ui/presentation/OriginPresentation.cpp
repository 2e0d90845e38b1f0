// Builds the origin's planes, axes and point. Planes share the look of reference
// planes so the two read as the same kind of thing.
#include "ui/presentation/OriginPresentation.h"

#include "core/OriginPlanes.h"
#include "ui/presentation/PlanePresentation.h"

#include <AIS_DisplayMode.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <Prs3d_PointAspect.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Ax3.hxx>

namespace cad::ui {

namespace {

Quantity_Color srgb(double r, double g, double b) {
    return Quantity_Color(r, g, b, Quantity_TOC_sRGB);
}

gp_Dir dir(const Vec3& v) { return gp_Dir(v[0], v[1], v[2]); }

Handle(AIS_Shape) planeItem(OriginPlane which, double size) {
    const PlaneFrame f = originPlaneFrame(which);
    const gp_Ax3 axes(gp_Pnt(f.origin[0], f.origin[1], f.origin[2]), dir(f.normal),
                      dir(f.xDirection));
    Handle(AIS_Shape) shape = new AIS_Shape(planeRectangle(axes, size / 2, size / 2));
    applyPlaneLook(*shape, referencePlaneColour());
    return shape;
}

Handle(AIS_Shape) axisItem(const gp_Dir& direction, const Quantity_Color& colour, double length) {
    Handle(AIS_Shape) shape =
        new AIS_Shape(BRepBuilderAPI_MakeEdge(
                          gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 0).Translated(gp_Vec(direction) * length))
                          .Edge());
    shape->SetColor(colour);
    shape->SetWidth(1.6);
    shape->Attributes()->WireAspect()->SetTypeOfLine(Aspect_TOL_DOTDASH);
    shape->SetDisplayMode(AIS_WireFrame);
    return shape;
}

} // namespace

std::vector<OriginItem> makeOriginItems(double size) {
    std::vector<OriginItem> items;
    for (OriginPlane plane : {OriginPlane::XY, OriginPlane::XZ, OriginPlane::YZ})
        items.push_back({std::string(originPlaneName(plane)), planeItem(plane, size)});
    const double length = size / 2;
    items.push_back({"X", axisItem(gp::DX(), srgb(0.90, 0.30, 0.28), length)});
    items.push_back({"Y", axisItem(gp::DY(), srgb(0.40, 0.80, 0.35), length)});
    items.push_back({"Z", axisItem(gp::DZ(), srgb(0.32, 0.52, 0.95), length)});

    Handle(AIS_Shape) point = new AIS_Shape(BRepBuilderAPI_MakeVertex(gp_Pnt(0, 0, 0)).Vertex());
    point->Attributes()->SetPointAspect(
        new Prs3d_PointAspect(Aspect_TOM_BALL, srgb(0.95, 0.95, 0.97), 2.6));
    point->SetDisplayMode(AIS_WireFrame);
    items.push_back({"Origin", point});
    return items;
}

} // namespace cad::ui
