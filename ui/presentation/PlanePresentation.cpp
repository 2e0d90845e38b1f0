// Builds reference planes as the view shows them: a square face with the plane's
// axes across it in one shape, so a click anywhere on it takes the plane.
#include "ui/presentation/PlanePresentation.h"

#include <AIS_DisplayMode.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRep_Builder.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Edge.hxx>
#include <gp_Pln.hxx>

namespace cad::ui {

Quantity_Color referencePlaneColour() {
    return Quantity_Color(0.98, 0.66, 0.22, Quantity_TOC_sRGB);
}

TopoDS_Shape planeRectangle(const gp_Ax3& placement, double halfX, double halfY) {
    return BRepBuilderAPI_MakeFace(gp_Pln(placement), -halfX, halfX, -halfY, halfY).Face();
}

TopoDS_Shape referencePlaneShape(const gp_Ax3& placement, double halfWidth) {
    BRep_Builder builder;
    TopoDS_Compound compound;
    builder.MakeCompound(compound);
    builder.Add(compound, planeRectangle(placement, halfWidth, halfWidth));
    const gp_Pnt& centre = placement.Location();
    for (const gp_Dir& along : {placement.XDirection(), placement.YDirection()}) {
        const gp_Vec half = gp_Vec(along) * halfWidth;
        builder.Add(
            compound,
            BRepBuilderAPI_MakeEdge(centre.Translated(-half), centre.Translated(half)).Edge());
    }
    return compound;
}

void applyPlaneLook(AIS_Shape& plane, const Quantity_Color& colour) {
    plane.SetColor(colour);
    plane.SetTransparency(0.82);
    const Handle(Prs3d_Drawer)& drawer = plane.Attributes();
    drawer->SetFaceBoundaryDraw(true);
    drawer->SetFaceBoundaryAspect(new Prs3d_LineAspect(colour, Aspect_TOL_SOLID, 1.4));
    plane.SetDisplayMode(AIS_Shaded);
}

Handle(AIS_Shape) makeReferencePlanePresentation(const TopoDS_Shape& shape) {
    Handle(AIS_Shape) plane = new AIS_Shape(shape);
    applyPlaneLook(*plane, referencePlaneColour());
    // The axes are the shape's free edges, drawn with the wire aspect.
    plane->SetWidth(1.6);
    plane->Attributes()->WireAspect()->SetTypeOfLine(Aspect_TOL_DOTDASH);
    plane->Attributes()->SetFaceBoundaryAspect(
        new Prs3d_LineAspect(referencePlaneColour(), Aspect_TOL_SOLID, 1.4));
    // Picked, the whole plane lights up.
    plane->SetHilightMode(AIS_Shaded);
    return plane;
}

} // namespace cad::ui
