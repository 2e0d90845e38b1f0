// Turning a feature's profile references into faces: whole sketches, single regions
// by name, or flat faces of bodies.
#pragma once

#include "core/Result.h"
#include "geometry/Profile.h"
#include "geometry/References.h"

#include <string>
#include <vector>

namespace cad::geometry {

Result<Profile> resolveProfile(const Document& document, const std::vector<std::string>& references,
                               const ReferenceContext& context = {});

} // namespace cad::geometry
