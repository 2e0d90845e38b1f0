// The reference plane object: what it depends on, and its recompute, which keeps
// the last placement when a reference it is defined from has gone.
#include "geometry/planes/PlaneObject.h"

#include "geometry/References.h"
#include "geometry/planes/PlaneGeometry.h"

namespace cad {

const std::vector<std::string>& planeKinds() {
    static const std::vector<std::string> kinds = {"offset",  "angle",   "midplane", "three_points",
                                                   "through", "tangent", "normal"};
    return kinds;
}

std::vector<std::string> PlaneObject::dependencies() const {
    return geometry::referencedObjects(definition.references);
}

bool PlaneObject::recompute(const Document& document) {
    Result<geometry::PlacedPlane> result = geometry::computePlane(document, definition);
    if (!result) {
        const bool changed = error != result.error();
        error = result.error();
        return changed;
    }
    const gp_Ax3& now = result->placement;
    const bool changed = !placed || !error.empty() || halfWidth != result->halfWidth ||
                         !geometry::samePlacement(placement, now);
    placement = now;
    halfWidth = result->halfWidth;
    placed = true;
    error.clear();
    return changed;
}

} // namespace cad
