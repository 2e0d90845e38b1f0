// Profiles, axes and paths of parametric features, with the sentences that say
// what is wrong with a reference.
#include "geometry/param/FeatureReferences.h"

#include "core/Document.h"
#include "geometry/ResolveProfile.h"

#include <BRepAdaptor_Curve.hxx>
#include <ShapeAnalysis_FreeBounds.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_HSequenceOfShape.hxx>
#include <TopoDS.hxx>

namespace cad::geometry {

Result<Profile> featureProfile(const Document& document, const std::string& references,
                               const ReferenceContext& context) {
    const std::vector<std::string> items = splitReferenceList(references);
    if (items.size() == 1 && items.front().find('/') == std::string::npos &&
        !objectPart(items.front()).empty() && !document.findByName(items.front()))
        return fail("The sketch '" + references + "' no longer exists.");
    return resolveProfile(document, items, context);
}

Result<gp_Ax1> straightAxis(const Document& document, const std::string& reference,
                            const ReferenceContext& context) {
    Result<ResolvedReference> resolved = resolveReference(document, reference, context);
    if (!resolved) return Error(resolved);
    const std::string notStraight = "'" + reference + "' isn't a straight line or axis.";
    if (!resolved->axis) return fail(notStraight);
    const TopoDS_Shape& shape = resolved->shape;
    if (!shape.IsNull()) {
        if (shape.ShapeType() != TopAbs_EDGE) return fail(notStraight);
        if (BRepAdaptor_Curve(TopoDS::Edge(shape)).GetType() != GeomAbs_Line)
            return fail(notStraight);
    }
    return *resolved->axis;
}

Result<TopoDS_Wire> pathWire(const Document& document, const std::string& references,
                             const ReferenceContext& context) {
    const std::vector<std::string> items = splitReferenceList(references);
    if (items.empty()) return fail("Pick the path to sweep along.");
    Handle(TopTools_HSequenceOfShape) edges = new TopTools_HSequenceOfShape();
    for (const std::string& item : items) {
        Result<ResolvedReference> resolved = resolveReference(document, item, context);
        if (!resolved) return Error(resolved);
        const int before = edges->Length();
        if (!resolved->shape.IsNull())
            for (TopExp_Explorer e(resolved->shape, TopAbs_EDGE); e.More(); e.Next())
                edges->Append(e.Current());
        if (edges->Length() == before) return fail("'" + item + "' isn't a curve.");
    }
    if (edges->IsEmpty()) return fail("The path has no curves.");

    Handle(TopTools_HSequenceOfShape) wires = new TopTools_HSequenceOfShape();
    ShapeAnalysis_FreeBounds::ConnectEdgesToWires(edges, 1e-6, Standard_False, wires);
    if (wires.IsNull() || wires->Length() != 1 || wires->Value(1).ShapeType() != TopAbs_WIRE)
        return fail("The path's curves don't join end to end in one chain.");
    return TopoDS::Wire(wires->Value(1));
}

} // namespace cad::geometry
