// Planes of references for sketches: origin planes, sketches' planes, and flat
// faces of bodies (the face's outward normal, its surface's x direction).
#include "geometry/FacePlaneResolver.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"

#include <memory>

namespace cad::geometry {

Result<PlaneFrame> FacePlaneResolver::planeOf(const Document& document,
                                              std::string_view reference) const {
    // Only what a sketch can sit on: an origin plane, a reference plane, or a flat
    // face of a body; a sketch's plane or a region is something to sketch beside.
    const std::string notAPlane = "'" + std::string(reference) + "' isn't a plane or a flat face.";
    const bool origin = objectPart(reference).empty();
    if (!origin) {
        const DocumentObject* object = document.findByName(objectPart(reference));
        const bool face = dynamic_cast<const GeometryObject*>(object) &&
                          reference.find('/') != std::string_view::npos;
        const bool plane = object && object->typeName() == "Plane" &&
                           reference.find('/') == std::string_view::npos;
        if (!object) return fail(document.lookupError(objectPart(reference)));
        if (!face && !plane) return fail(notAPlane);
    }
    Result<ResolvedReference> resolved = resolveReference(document, reference);
    if (!resolved) return Error(resolved);
    if (!resolved->plane ||
        (!origin && !resolved->shape.IsNull() && resolved->shape.ShapeType() != TopAbs_FACE))
        return fail(notAPlane);
    const gp_Ax3& ax = *resolved->plane;
    PlaneFrame frame;
    frame.origin = {ax.Location().X(), ax.Location().Y(), ax.Location().Z()};
    frame.normal = {ax.Direction().X(), ax.Direction().Y(), ax.Direction().Z()};
    // Keep the frame right-handed: y = normal x x.
    gp_Dir x = ax.Direct() ? ax.XDirection() : ax.XDirection().Reversed();
    frame.xDirection = {x.X(), x.Y(), x.Z()};
    return frame;
}

void installFacePlaneResolver() {
    installSketchPlaneResolver(std::make_shared<FacePlaneResolver>());
}

} // namespace cad::geometry
