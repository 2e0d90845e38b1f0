// Draws a sketch as wires and ball markers on its plane. Each piece keeps the
// sketch reference it came from so a click on it becomes "Sketch1/Line3".
#include "ui/presentation/SketchPresentation.h"

#include "geometry/Profile.h"
#include "geometry/SketchRegions.h"
#include "sketch/SketchCurves.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchReference.h"

#include <AIS_DisplayMode.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRep_Builder.hxx>
#include <GeomAPI.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <Prs3d_PointAspect.hxx>
#include <Quantity_Color.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Pln.hxx>

#include <array>

namespace cad::ui {

namespace {

Quantity_Color srgb(double r, double g, double b) {
    return Quantity_Color(r, g, b, Quantity_TOC_sRGB);
}

// The reference a curve piece of an entity stands for: the side of a rectangle or
// polygon, otherwise the entity itself.
std::string curveReference(const SketchEntity& entity, int piece) {
    static constexpr std::array<const char*, 4> kRectangleSides{"bottom", "right", "top", "left"};
    switch (entity.kind()) {
    case EntityKind::Rectangle:
        if (piece >= 0 && piece < 4) return entity.id + "." + kRectangleSides[piece];
        return entity.id;
    case EntityKind::Polygon:
        return entity.id + ".edge" + std::to_string(piece);
    default:
        return entity.id;
    }
}

} // namespace

SketchPartPresentation::SketchPartPresentation(Part part) : AIS_Shape(TopoDS_Shape()), part_(part) {
    const Handle(Prs3d_Drawer)& drawer = Attributes();
    switch (part_) {
    case Part::Curves:
        SetColor(srgb(0.90, 0.91, 0.93));
        SetWidth(2.0);
        break;
    case Part::Construction:
        SetColor(srgb(0.52, 0.66, 0.90));
        SetWidth(2.0);
        drawer->WireAspect()->SetTypeOfLine(Aspect_TOL_DASH);
        drawer->LineAspect()->SetTypeOfLine(Aspect_TOL_DASH);
        break;
    case Part::Points:
        SetColor(srgb(0.95, 0.95, 0.97));
        drawer->SetPointAspect(new Prs3d_PointAspect(Aspect_TOM_BALL, srgb(0.95, 0.95, 0.97), 2.6));
        break;
    case Part::Regions:
        SetColor(srgb(0.36, 0.56, 0.86));
        SetTransparency(0.85);
        drawer->SetFaceBoundaryDraw(false);
        break;
    }
    SetDisplayMode(displayMode());
}

int SketchPartPresentation::selectionMode() const {
    switch (part_) {
    case Part::Points:
        return AIS_Shape::SelectionMode(TopAbs_VERTEX);
    case Part::Regions:
        return AIS_Shape::SelectionMode(TopAbs_FACE);
    default:
        return AIS_Shape::SelectionMode(TopAbs_EDGE);
    }
}

int SketchPartPresentation::displayMode() const {
    return part_ == Part::Regions ? AIS_Shaded : AIS_WireFrame;
}

std::string SketchPartPresentation::referenceOf(const TopoDS_Shape& piece) const {
    const int index = pieces_.FindIndex(piece);
    return index > 0 ? references_[static_cast<std::size_t>(index - 1)] : std::string();
}

void SketchPartPresentation::rebuild(const SketchObject& sketch) {
    pieces_.Clear();
    references_.clear();
    BRep_Builder builder;
    TopoDS_Compound compound;
    builder.MakeCompound(compound);
    auto add = [&](const TopoDS_Shape& shape, std::string reference) {
        if (shape.IsNull() || pieces_.Contains(shape)) return;
        builder.Add(compound, shape);
        pieces_.Add(shape);
        references_.push_back(std::move(reference));
    };

    const gp_Ax3 plane = geometry::sketchPlane(sketch);
    switch (part_) {
    case Part::Curves:
    case Part::Construction: {
        const bool construction = part_ == Part::Construction;
        for (const SketchEntity& entity : sketch.entities) {
            if (entity.construction != construction) continue;
            for (const SketchCurve& c : entityCurves(entity, sketch.entities)) {
                if (c.curve.IsNull()) continue;
                try {
                    BRepBuilderAPI_MakeEdge edge(GeomAPI::To3d(c.curve, gp_Pln(plane)));
                    if (edge.IsDone()) add(edge.Edge(), curveReference(entity, c.piece));
                } catch (const Standard_Failure&) {
                    // A curve the kernel can't turn into an edge is simply not drawn.
                }
            }
        }
        break;
    }
    case Part::Points:
        for (const NamedPoint& p : namedPoints(sketch.entities)) {
            const Vec3 at = sketch.toModel(p.position);
            std::string reference = p.reference;
            // A point entity is referenced as a whole ("Point1").
            if (const SketchEntity* e = sketch.findEntity(reference.substr(0, reference.find('.')));
                e && e->kind() == EntityKind::Point)
                reference = e->id;
            add(BRepBuilderAPI_MakeVertex(gp_Pnt(at[0], at[1], at[2])).Vertex(),
                std::move(reference));
        }
        break;
    case Part::Regions: {
        Result<geometry::Profile> regions =
            geometry::buildSketchRegions(plane, geometry::sketchEdges(sketch), true);
        if (regions)
            for (const TopoDS_Face& face : regions->faces)
                if (std::string name = geometry::regionName(*regions, face); !name.empty())
                    add(face, std::move(name));
        break;
    }
    }
    SetShape(compound);
}

std::vector<Handle(SketchPartPresentation)> makeSketchParts(const SketchObject& sketch) {
    std::vector<Handle(SketchPartPresentation)> parts;
    for (auto part :
         {SketchPartPresentation::Part::Regions, SketchPartPresentation::Part::Construction,
          SketchPartPresentation::Part::Curves, SketchPartPresentation::Part::Points}) {
        Handle(SketchPartPresentation) p = new SketchPartPresentation(part);
        p->rebuild(sketch);
        parts.push_back(p);
    }
    return parts;
}

} // namespace cad::ui
