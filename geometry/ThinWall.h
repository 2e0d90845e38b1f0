// Thin walls: a band of the given thickness along a profile's boundaries (inside,
// outside or centred) and along open curves, as faces ready to be extruded.
#pragma once

#include "core/Result.h"
#include "geometry/Profile.h"
#include "geometry/SketchRegions.h"

#include <gp_Ax3.hxx>

#include <string_view>
#include <vector>

namespace cad::geometry {

enum class ThinSide { Inside = 0, Outside = 1, Center = 2 };

// "outside" 1, "center" 2, anything else inside.
ThinSide parseThinSide(std::string_view text);

// The wall faces. Open chains are banded to their left for inside, to their right
// for outside, half each way for center. The wall's edges are named after the
// nearest of `curves`: on a curve its name, a thickness away name.offset, the caps
// that close a band name.end.
Result<Profile> makeThinWall(const gp_Ax3& plane, const Profile& regions,
                             const std::vector<NamedEdge>& openChains, double thickness,
                             ThinSide side, const std::vector<NamedEdge>& curves);

} // namespace cad::geometry
