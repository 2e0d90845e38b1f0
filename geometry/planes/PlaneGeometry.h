// The placement of a reference plane from its definition: each kind's construction
// from resolved references, the flip, and the half-width it is drawn with.
#pragma once

#include "core/Result.h"
#include "geometry/References.h"
#include "geometry/planes/PlaneObject.h"

#include <gp_Ax3.hxx>

#include <optional>
#include <string>

namespace cad {
class Document;
}

namespace cad::geometry {

struct PlacedPlane {
    gp_Ax3 placement; // right-handed: Y = normal x X
    double halfWidth = 10;
};

// Why a definition can't make a plane whatever its references say: an unknown kind,
// too few or too many references, a position off the curve. The sentences about
// reference counts read after a command's name ("add_plane: ").
std::optional<std::string> definitionProblem(const PlaneDefinition& definition);

// Fails with the kind's sentence ("The three points are in a line.") or the
// reference's own ("'Body1/Extrude1.end': Body1 has no element with that name now.").
Result<PlacedPlane> computePlane(const Document& document, const PlaneDefinition& definition);

// The plane of an origin plane, reference plane, sketch or flat face, right-handed
// and with the face's outward normal; none for anything else.
std::optional<gp_Ax3> flatPlane(const ResolvedReference& reference);

// Origin, normal and X direction equal to 1e-12.
bool samePlacement(const gp_Ax3& a, const gp_Ax3& b);

// The same placement turned round: the normal reversed, the X direction kept.
gp_Ax3 flipped(const gp_Ax3& placement);

} // namespace cad::geometry
