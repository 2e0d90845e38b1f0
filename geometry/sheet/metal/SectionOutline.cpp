// Cross-sections of sheet parts: edges joined through shared vertices into one wire,
// a planar face on it, and a prism whose faces take the edges' names.
#include "geometry/sheet/metal/SectionOutline.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRep_Tool.hxx>
#include <ElSLib.hxx>
#include <GC_MakeArcOfCircle.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace cad::sheet {

namespace {

constexpr double kSamePoint = 1e-9;

} // namespace

void SectionOutline::start(const gp_Pnt2d& p) {
    first_ = last_ = BRepBuilderAPI_MakeVertex(ElSLib::PlaneValue(p.X(), p.Y(), plane_)).Vertex();
    firstPoint_ = p;
}

TopoDS_Vertex SectionOutline::vertexAt(const gp_Pnt2d& p) const {
    if (p.Distance(firstPoint_) < kSamePoint) return first_;
    return BRepBuilderAPI_MakeVertex(ElSLib::PlaneValue(p.X(), p.Y(), plane_)).Vertex();
}

void SectionOutline::lineTo(const gp_Pnt2d& p, std::string name) {
    const TopoDS_Vertex next = vertexAt(p);
    BRepBuilderAPI_MakeEdge edge(last_, next);
    if (!edge.IsDone()) throw Standard_Failure("edge");
    edges_.emplace_back(edge.Edge(), std::move(name));
    last_ = next;
}

void SectionOutline::arcTo(const gp_Pnt2d& through, const gp_Pnt2d& p, std::string name) {
    const TopoDS_Vertex next = vertexAt(p);
    GC_MakeArcOfCircle arc(BRep_Tool::Pnt(last_),
                           ElSLib::PlaneValue(through.X(), through.Y(), plane_),
                           BRep_Tool::Pnt(next));
    if (!arc.IsDone()) throw Standard_Failure("arc");
    BRepBuilderAPI_MakeEdge edge(arc.Value(), last_, next);
    if (!edge.IsDone()) throw Standard_Failure("edge");
    edges_.emplace_back(edge.Edge(), std::move(name));
    last_ = next;
}

void SectionOutline::close(std::string name) { lineTo(firstPoint_, std::move(name)); }

Result<geometry::NamedShape> sweepOutline(const SectionOutline& outline, const gp_Vec& vector,
                                          const SweptEnds& ends, const std::string& failure) {
    try {
        BRepBuilderAPI_MakeWire wire;
        for (const auto& edge : outline.edges()) wire.Add(edge.first);
        if (!wire.IsDone()) return fail(failure);
        BRepBuilderAPI_MakeFace makeFace(gp_Pln(outline.plane()), wire.Wire(), Standard_True);
        if (!makeFace.IsDone()) return fail(failure);
        TopoDS_Face face = makeFace.Face();
        // A face turned against the vector makes a solid inside out: turn it round.
        for (int attempt = 0; attempt < 2; ++attempt) {
            BRepPrimAPI_MakePrism prism(face, vector, Standard_False, Standard_True);
            prism.Build();
            if (!prism.IsDone()) return fail(failure);
            GProp_GProps props;
            BRepGProp::VolumeProperties(prism.Shape(), props);
            if (props.Mass() < 0) {
                face = TopoDS::Face(face.Reversed());
                continue;
            }
            geometry::NamedShape solid(prism.Shape());
            solid.addName(prism.FirstShape(), ends.start, ends.startTag);
            solid.addName(prism.LastShape(), ends.end, ends.endTag);
            for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
                std::string name;
                for (const auto& [edge, edgeName] : outline.edges())
                    if (edge.IsSame(e.Current())) name = edgeName;
                if (name.empty()) continue;
                for (const TopoDS_Shape& made : prism.Generated(e.Current()))
                    if (made.ShapeType() == TopAbs_FACE) solid.addName(made, name);
            }
            return solid;
        }
        return fail(failure);
    } catch (const Standard_Failure&) {
        return fail(failure);
    }
}

} // namespace cad::sheet
