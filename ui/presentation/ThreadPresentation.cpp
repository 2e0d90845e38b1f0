// The cosmetic thread marks: helix polylines and end rings built from each thread's
// axis, major radius, pitch and length, drawn as thin accent lines.
#include "ui/presentation/ThreadPresentation.h"

#include <AIS_DisplayMode.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRep_Builder.hxx>
#include <Prs3d_Drawer.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Ax2.hxx>
#include <gp_Circ.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::ui {

namespace {

constexpr int kPointsPerTurn = 24;

// The helix and the two rings of one thread, added to the compound; false when the
// thread has no size to draw.
bool addMarks(const CosmeticThread& thread, BRep_Builder& builder, TopoDS_Compound& marks) {
    if (!(thread.radius > 1e-7) || !(thread.length > 1e-7) || !(thread.pitch > 1e-7)) return false;
    const gp_Ax2 frame(thread.axis.Location(), thread.axis.Direction());
    const gp_Vec along(thread.axis.Direction());
    const gp_Vec x(frame.XDirection()), y(frame.YDirection());
    const double turns = std::min(thread.length / thread.pitch, double(kMaxThreadTurns));
    const int steps = std::max(2, static_cast<int>(std::ceil(turns * kPointsPerTurn)));
    BRepBuilderAPI_MakePolygon helix;
    for (int i = 0; i <= steps; ++i) {
        const double share = double(i) / steps;
        const double angle = 2 * std::numbers::pi * turns * share;
        helix.Add(thread.axis.Location().Translated(along * (thread.length * share) +
                                                    x * (thread.radius * std::cos(angle)) +
                                                    y * (thread.radius * std::sin(angle))));
    }
    if (helix.IsDone()) builder.Add(marks, helix.Wire());
    for (double at : {0.0, thread.length}) {
        const gp_Ax2 ring(thread.axis.Location().Translated(along * at), frame.Direction(),
                          frame.XDirection());
        BRepBuilderAPI_MakeEdge edge(gp_Circ(ring, thread.radius));
        if (edge.IsDone()) builder.Add(marks, edge.Edge());
    }
    return true;
}

} // namespace

TopoDS_Shape threadMarks(const std::vector<CosmeticThread>& threads) {
    BRep_Builder builder;
    TopoDS_Compound marks;
    builder.MakeCompound(marks);
    bool any = false;
    for (const CosmeticThread& thread : threads) {
        try {
            any = addMarks(thread, builder, marks) || any;
        } catch (const Standard_Failure&) {
            // A thread that can't be drawn is left out; the others still show.
        }
    }
    return any ? TopoDS_Shape(marks) : TopoDS_Shape();
}

Handle(AIS_Shape) makeThreadPresentation(const TopoDS_Shape& marks, bool internal) {
    Handle(AIS_Shape) shape = new AIS_Shape(marks);
    // The accent, a little darker so the marks read on a lit face; inside the material
    // dimmer still, as hidden lines are.
    shape->SetColor(internal ? Quantity_Color(0.58, 0.37, 0.22, Quantity_TOC_sRGB)
                             : Quantity_Color(0.74, 0.44, 0.22, Quantity_TOC_sRGB));
    shape->SetWidth(internal ? 1.0 : 1.5);
    shape->SetDisplayMode(AIS_WireFrame);
    if (internal) shape->SetZLayer(Graphic3d_ZLayerId_Topmost);
    return shape;
}

} // namespace cad::ui
