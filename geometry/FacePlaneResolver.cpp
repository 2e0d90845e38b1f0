// Planes of references for sketches: origin planes, sketches' planes, and flat
// faces of bodies (the face's outward normal, its surface's x direction).
#include "geometry/FacePlaneResolver.h"

#include "geometry/References.h"

#include <memory>

namespace cad::geometry {

Result<PlaneFrame> FacePlaneResolver::planeOf(const Document& document,
                                              std::string_view reference) const {
    Result<ResolvedReference> resolved = resolveReference(document, reference);
    if (!resolved) return Error(resolved);
    if (!resolved->plane)
        return fail("'" + std::string(reference) + "' isn't a plane or a flat face.");
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
