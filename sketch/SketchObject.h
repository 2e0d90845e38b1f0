// A sketch: flat geometry on a plane in space with the constraints and dimensions
// that hold it, and the patterns that regenerate copies of it.
#pragma once

#include "core/CommandRecord.h"
#include "core/DocumentObject.h"
#include "core/OriginPlanes.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"
#include "sketch/SketchProjectionHook.h"

#include <string>
#include <string_view>
#include <vector>

namespace cad {

// A pattern made in the sketch: the command and arguments that made it, and the
// IDs of its copies, so that an edit can make them again.
struct SketchPattern {
    std::string id; // "Pattern1"
    CommandRecord record;
    std::vector<std::string> copies;
};

class SketchObject : public DocumentObject {
public:
    std::string_view typeName() const override { return "Sketch"; }
    // The objects named by the support and by the sources of projected entities.
    std::vector<std::string> dependencies() const override;
    // Follows a support plane or face, then brings projected entities up to date
    // with their sources; true when the plane or any entity moved.
    bool recompute(const Document& document) override;

    // Dimensions typed as expressions, keyed by the dimension's ID; re-evaluating
    // sets their values and solves the sketch again.
    std::vector<std::pair<std::string, units::Expression>> valueExpressions() const override;
    void renameInExpressions(std::string_view from, std::string_view to) override;
    bool reevaluateExpressions(std::vector<std::string>& problems) override;
    std::any valuesSnapshot() const override;
    void restoreValues(const std::any& snapshot) override;

    PlaneFrame frame() const { return {origin, normal, xDirection}; }
    void setFrame(const PlaneFrame& frame);
    // Sketch point (u, v) in model space.
    Vec3 toModel(Point2 p) const;

    const SketchEntity* findEntity(std::string_view entityId) const;
    const SketchConstraint* findConstraint(std::string_view constraintId) const;

    Vec3 origin{0, 0, 0};
    Vec3 normal{0, 0, 1};
    Vec3 xDirection{1, 0, 0};
    // What the sketch sits on: a body (face sketches), a flat face ("Body1/Extrude1.end")
    // or a plane ("Plane1", "XY"); empty when it was placed by origin and normal alone.
    std::string support;
    std::vector<SketchEntity> entities;
    std::vector<SketchConstraint> constraints;
    std::vector<SketchPattern> patterns;
    // What the last recompute couldn't bring up to date: projected entities whose
    // sources are gone or changed, constraints that can't follow the projections.
    std::vector<ProjectionProblem> projectionProblems;
    // The sentences of those problems that still apply (an entity deleted or
    // redrawn since has none), joined; empty when there are none.
    std::string error() const;
};

inline std::string nextEntityId(const SketchObject& sketch, std::string_view prefix) {
    return nextEntityId(sketch.entities, prefix);
}

} // namespace cad
