// Profile resolution: each reference adds the regions of a sketch, one region, or
// one face of a body with the body's edge names.
#include "geometry/ResolveProfile.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/SketchRegions.h"
#include "sketch/SketchObject.h"

#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace cad::geometry {

Result<Profile> resolveProfile(const Document& document, const std::vector<std::string>& references,
                               const ReferenceContext& context) {
    if (references.empty())
        return fail("Pick a profile: a sketch, a closed region of one, or a flat face.");
    Profile profile;
    for (const std::string& reference : references) {
        const std::string head = objectPart(reference);
        const std::size_t slash = reference.find('/');
        const DocumentObject* object = head.empty() ? nullptr : document.findByName(head);

        if (auto* sketch = dynamic_cast<const SketchObject*>(object)) {
            const bool single = reference.find("/Region(") != std::string::npos;
            Result<Profile> regions =
                buildSketchRegions(sketchPlane(*sketch), sketchEdges(*sketch), single);
            if (!regions) return Error(regions);
            if (slash == std::string::npos) {
                profile.append(*regions);
                continue;
            }
            std::optional<Profile> region = findRegion(*regions, reference.substr(slash + 1));
            if (!region) return fail(reference + " has no region bounded by those curves now.");
            profile.append(*region);
            continue;
        }

        Result<ResolvedReference> resolved = resolveReference(document, reference, context);
        if (!resolved) return Error(resolved);
        if (resolved->shape.IsNull() || resolved->shape.ShapeType() != TopAbs_FACE)
            return fail("'" + reference +
                        "' can't be a profile: use a sketch, a closed region of one, or a flat "
                        "face.");
        const TopoDS_Face& face = TopoDS::Face(resolved->shape);
        profile.faces.push_back(face);
        auto* body = dynamic_cast<const GeometryObject*>(object);
        Result<const NamedShape*> shape =
            body ? referencedBodyShape(document, *body, reference, context)
                 : Result<const NamedShape*>(fail(""));
        if (!shape) continue;
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
            std::string name = (*shape)->nameOf(e.Current());
            if (!name.empty()) profile.edgeNames.emplace_back(TopoDS::Edge(e.Current()), name);
        }
    }
    if (profile.faces.empty()) return fail("The profile has no closed regions.");
    return profile;
}

} // namespace cad::geometry
