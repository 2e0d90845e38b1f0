// The hole feature: holes drilled at a sketch's points into its body, simple,
// counterbored or countersunk, blind or through, plain, tapped or clearance-sized.
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"
#include "geometry/holes/ResolvedHole.h"
#include "sketch/SketchEntity.h"

#include <gp_Ax1.hxx>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cad {

class SketchObject;

// Where holes go in a sketch: the named points, or when none are named every point
// and circle centre that isn't construction geometry; points that coincide count once.
Result<std::vector<std::pair<std::string, Point2>>>
sketchHolePoints(const SketchObject& sketch, const std::vector<std::string>& names);

class HoleFeature : public FeatureObject {
public:
    std::string_view typeName() const override { return "Hole"; }
    // The sketch whose points place the holes.
    std::vector<std::string> references() const override;
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;

    // One hole: the sketch point it is drilled at and its axis, from the point into
    // the body.
    struct Placement {
        std::string point;
        gp_Ax1 axis;
    };
    Result<std::vector<Placement>> placements(const Document& document) const;

    std::string sketch;              // the sketch's ID
    std::vector<std::string> points; // point or circle names; empty = every one
    bool flip = false;               // drill along the sketch normal instead of into the face
    HoleOptions options;
};

} // namespace cad
