// Loft: a solid blending through sections in order (one-region sketches, single
// regions, faces, or a point at either end), holes carried through when every
// section has as many.
#include "core/Document.h"
#include "geometry/Naming.h"
#include "geometry/ResolveProfile.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/SketchRegions.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ProfileFeatures.h"
#include "geometry/param/SweptSolid.h"
#include "sketch/SketchObject.h"

#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepGProp.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepTools.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Wire.hxx>

#include <functional>
#include <optional>

namespace cad {

using namespace geometry;

namespace {

constexpr const char* kNoLoft = "The geometry kernel could not loft through those sections.";

// One section: a point, or a face with the names of its edges.
struct Section {
    std::optional<gp_Pnt> point;
    TopoDS_Wire outer;
    std::vector<TopoDS_Wire> inner;
    Profile profile;
};

Section faceSection(const TopoDS_Face& face, Profile profile) {
    Section section;
    section.outer = BRepTools::OuterWire(face);
    for (TopExp_Explorer e(face, TopAbs_WIRE); e.More(); e.Next())
        if (!e.Current().IsSame(section.outer)) section.inner.push_back(TopoDS::Wire(e.Current()));
    section.profile = std::move(profile);
    return section;
}

Result<Section> readSection(const Document& document, const std::string& reference,
                            const ReferenceContext& context) {
    const std::string head = objectPart(reference);
    const auto* sketch =
        dynamic_cast<const SketchObject*>(head.empty() ? nullptr : document.findByName(head));
    if (sketch && reference.find('/') == std::string::npos) {
        Result<Profile> regions =
            buildSketchRegions(sketchPlane(*sketch), sketchEdges(*sketch), false);
        const std::size_t n = regions ? regions->faces.size() : 0;
        if (n != 1)
            return fail(sketch->id + " has " + std::to_string(n) +
                        " closed regions; a loft section needs exactly one.");
        const TopoDS_Face face = regions->faces.front();
        return faceSection(face, std::move(regions).value());
    }

    Result<ResolvedReference> resolved = resolveReference(document, reference, context);
    if (!resolved) return Error(resolved);
    const TopoDS_Shape& shape = resolved->shape;
    if (resolved->point && (shape.IsNull() || shape.ShapeType() == TopAbs_VERTEX)) {
        Section section;
        section.point = resolved->point;
        return section;
    }
    if (shape.IsNull() || shape.ShapeType() != TopAbs_FACE)
        return fail("'" + reference +
                    "' can't be a loft section (use a sketch, a face or a point).");
    // The profile carries the face's edge names (curves of a region, a body's edges).
    Result<Profile> profile = resolveProfile(document, {reference}, context);
    if (!profile) return Error(profile);
    const TopoDS_Face face = profile->faces.front();
    return faceSection(face, std::move(profile).value());
}

// The solid through one wire of every section (`wireOf`), its faces named
// F.<side>.<edge name>, and F.start and F.end for the outline.
Result<NamedShape> loftThrough(const std::vector<Section>& sections,
                               const std::function<TopoDS_Wire(const Section&)>& wireOf, bool ruled,
                               const std::string& feature, const std::string& side) {
    BRepOffsetAPI_ThruSections loft(Standard_True, ruled ? Standard_True : Standard_False, 1e-6);
    loft.CheckCompatibility(Standard_True);
    for (const Section& section : sections) {
        if (section.point)
            loft.AddVertex(BRepBuilderAPI_MakeVertex(*section.point).Vertex());
        else
            loft.AddWire(wireOf(section));
    }
    loft.Build();
    if (!loft.IsDone() || loft.Shape().IsNull()) return fail(kNoLoft);

    TopoDS_Shape solid = loft.Shape();
    GProp_GProps props;
    BRepGProp::VolumeProperties(solid, props);
    if (props.Mass() < 0) solid.Reverse();

    NamedShape result(solid);
    if (side == "side") {
        if (!loft.FirstShape().IsNull()) result.addName(loft.FirstShape(), feature + ".start");
        if (!loft.LastShape().IsNull()) result.addName(loft.LastShape(), feature + ".end");
    }
    for (const Section& section : sections) {
        if (section.point) continue;
        const TopoDS_Wire wire = wireOf(section);
        for (NamingEntry& entry :
             sideNames(loft, wire, edgeNamesOf(wire, section.profile), feature, side, ""))
            result.entries().push_back(std::move(entry));
    }
    return result;
}

} // namespace

Result<NamedShape> computeLoft(const Document& document, const nlohmann::json& parameters,
                               const NamedShape&, const std::string& featureName) {
    const std::vector<std::string> references =
        splitReferenceList(parameterText(parameters, "sections"));
    if (references.empty())
        return fail("Pick at least two sections (sketches, faces, or a point at an end).");
    if (references.size() < 2) return fail("A loft needs at least two sections.");

    const ReferenceContext context = featureContext(document, featureName);
    try {
        std::vector<Section> sections;
        for (std::size_t i = 0; i < references.size(); ++i) {
            Result<Section> section = readSection(document, references[i], context);
            if (!section) return Error(section);
            if (section->point && i != 0 && i + 1 != references.size())
                return fail("Only the first and last sections can be points.");
            sections.push_back(std::move(section).value());
        }
        const bool ruled = parameterFlag(parameters, "ruled", false);

        Result<NamedShape> outline = loftThrough(
            sections, [](const Section& s) { return s.outer; }, ruled, featureName, "side");
        if (!outline) return outline;

        // Holes only when every section has as many (a point has none).
        const std::size_t holes = sections.front().inner.size();
        bool matching = true;
        for (const Section& section : sections)
            matching = matching && section.inner.size() == holes;
        NamedShape result = std::move(outline).value();
        for (std::size_t k = 0; matching && k < holes; ++k) {
            Result<NamedShape> hole = loftThrough(
                sections, [k](const Section& s) { return s.inner[k]; }, ruled, featureName,
                "inner");
            if (!hole) return hole;
            Result<NamedShape> cut = shapeBoolean(result, *hole, BooleanKind::Cut);
            if (!cut) return fail(kNoLoft);
            result = std::move(cut).value();
        }
        if (holes == 0 || !matching) finishNames(result);
        return result;
    } catch (const Standard_Failure&) {
        return fail(kNoLoft);
    }
}

} // namespace cad
