// The solid a feature adds or removes, made again on its own so that patterns and
// mirrors can place copies of it: extrudes, revolves, sweeps, lofts and holes.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/ShapeBoolean.h"

#include <string>

namespace cad {

class Document;

struct FeatureTool {
    geometry::NamedShape shape;
    geometry::BooleanKind kind = geometry::BooleanKind::Join; // join or cut, as the feature does
};

// The tool of the feature named `name`, as that feature makes it; `body` is the
// shape the copies go into (a through hole reaches past its far side).
Result<FeatureTool> featureTool(const Document& document, const std::string& name,
                                const geometry::NamedShape& body);

} // namespace cad
