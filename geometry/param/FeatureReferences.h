// The references parametric features take, resolved for a feature: a profile (as
// extrude reads it), a straight axis, and a path of connected curves.
#pragma once

#include "core/Result.h"
#include "geometry/Profile.h"
#include "geometry/References.h"

#include <TopoDS_Wire.hxx>
#include <gp_Ax1.hxx>

#include <string>

namespace cad {
class Document;
}

namespace cad::geometry {

// The faces a profile reference list names; a lone sketch name that no longer
// names anything says so.
Result<Profile> featureProfile(const Document& document, const std::string& references,
                               const ReferenceContext& context);

// A sketch line, a straight edge or an origin axis, directed as the reference runs.
Result<gp_Ax1> straightAxis(const Document& document, const std::string& reference,
                            const ReferenceContext& context);

// The curves of a ';'-separated list, in any order, joined end to end into one wire.
Result<TopoDS_Wire> pathWire(const Document& document, const std::string& references,
                             const ReferenceContext& context);

} // namespace cad::geometry
