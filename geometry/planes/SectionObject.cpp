// The section object and its cut plane, computed from its reference like a
// reference plane and keeping the last cut when the reference goes.
#include "geometry/planes/SectionObject.h"

#include "geometry/References.h"
#include "geometry/planes/PlaneGeometry.h"

#include <Standard_Failure.hxx>

#include <numbers>

namespace cad {

namespace geometry {

Result<gp_Ax3> computeSection(const Document& document, const SectionDefinition& definition) {
    const char* notFlat = "A section is cut along a plane or a flat face.";
    if (definition.references.empty()) return fail(notFlat);
    if (definition.references.size() > 1)
        return fail("A section is cut along one plane or flat face.");
    Result<ResolvedReference> reference = resolveReference(document, definition.references[0]);
    if (!reference) return Error(reference);
    std::optional<gp_Ax3> base = flatPlane(*reference);
    if (!base) return fail(notFlat);
    try {
        const double toRadians = std::numbers::pi / 180.0;
        const gp_Pnt origin = base->Location();
        gp_Ax3 cut = *base;
        cut.Rotate(gp_Ax1(origin, base->XDirection()), definition.tilt * toRadians);
        cut.Rotate(gp_Ax1(origin, base->YDirection()), definition.turn * toRadians);
        cut.Translate(gp_Vec(base->Direction()) * definition.distance);
        return definition.flip ? flipped(cut) : cut;
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not place the section.");
    }
}

} // namespace geometry

std::vector<std::string> SectionObject::dependencies() const {
    return geometry::referencedObjects(definition.references);
}

bool SectionObject::recompute(const Document& document) {
    Result<gp_Ax3> cut = geometry::computeSection(document, definition);
    if (!cut) {
        const bool changed = error != cut.error();
        error = cut.error();
        return changed;
    }
    const bool changed = !placed || !error.empty() || !geometry::samePlacement(placement, *cut);
    placement = *cut;
    placed = true;
    error.clear();
    return changed;
}

} // namespace cad
