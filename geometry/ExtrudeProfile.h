// Sweeping profile faces straight along a vector into named solids: the moved
// profile is F.start, the far cap F.end, each side F.side.<curve>.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/Profile.h"

#include <gp_Vec.hxx>

#include <string_view>

namespace cad::geometry {

Result<NamedShape> extrudeProfile(const Profile& profile, const gp_Vec& vector,
                                  std::string_view featureName,
                                  const gp_Vec& startOffset = gp_Vec());

} // namespace cad::geometry
